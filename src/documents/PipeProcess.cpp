#include "documents/PipeProcess.h"

#include "documents/ConnectionErrors.h"

#include <QElapsedTimer>
#include <QFile>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

QString reason(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

PipeProcess::PipeProcess(const QStringList& command, const QString& workingFolder) {
    if (command.isEmpty())
        throw BrixError(ConnectionErrors::CommandFailed, QStringLiteral("No command line is set."));
    program_ = command.first();
    int pair[2] = {-1, -1};
    int errors[2] = {-1, -1};
    // Close-on-exec on our side: a program started later must not keep the conversation open.
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0 ||
        ::pipe2(errors, O_CLOEXEC) != 0) {
        const int error = errno;
        for (int fd : {pair[0], pair[1], errors[0], errors[1]})
            if (fd >= 0)
                ::close(fd);
        throw BrixError(ConnectionErrors::CommandFailed,
                        QStringLiteral("Can't start \"%1\": %2.").arg(program_, reason(error)));
    }
    std::vector<QByteArray> words;
    for (const QString& word : command)
        words.push_back(QFile::encodeName(word));
    std::vector<char*> argv;
    for (QByteArray& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    const QByteArray folder = QFile::encodeName(workingFolder);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pair[1], 0);
    posix_spawn_file_actions_adddup2(&actions, pair[1], 1);
    posix_spawn_file_actions_adddup2(&actions, errors[1], 2);
    if (!folder.isEmpty())
        posix_spawn_file_actions_addchdir_np(&actions, folder.constData());
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none, defaults;
    sigemptyset(&none);
    sigemptyset(&defaults);
    for (int s : {SIGPIPE, SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGCHLD})
        sigaddset(&defaults, s);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    // Its own process group: a Ctrl-C meant for us doesn't reach it, and a stop reaches all.
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                              POSIX_SPAWN_SETSIGDEF);
    const int spawned =
        ::posix_spawnp(&pid_, argv.front(), &actions, &attributes, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    ::close(pair[1]);
    ::close(errors[1]);
    socket_ = pair[0];
    errors_ = errors[0];
    if (spawned != 0) {
        pid_ = -1;
        throw BrixError(ConnectionErrors::CommandFailed,
                        QStringLiteral("Can't start \"%1\": %2.").arg(program_, reason(spawned)));
    }
    ::fcntl(errors_, F_SETFL, ::fcntl(errors_, F_GETFL) | O_NONBLOCK);
}

PipeProcess::~PipeProcess() {
    if (socket_ >= 0) {
        ::shutdown(socket_, SHUT_RDWR);
        ::close(socket_);
    }
    if (pid_ > 0) {
        // Its input has ended: a well-behaved program goes by itself at once.
        QElapsedTimer waited;
        waited.start();
        bool gone = false;
        while (!gone && waited.elapsed() < 1000) {
            gone = ::waitpid(pid_, nullptr, WNOHANG) == pid_;
            if (!gone)
                ::usleep(2000);
        }
        if (!gone) {
            ::kill(-pid_, SIGKILL);
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
    }
    if (errors_ >= 0)
        ::close(errors_);
}

void PipeProcess::drainErrors() {
    char chunk[4096];
    for (;;) {
        const ssize_t n = ::read(errors_, chunk, sizeof chunk);
        if (n <= 0)
            return;
        // Only the last words matter for a message.
        errorText_ = (errorText_ + QByteArray(chunk, n)).right(2000);
    }
}

QByteArray PipeProcess::Errors() {
    drainErrors();
    return errorText_;
}

bool PipeProcess::Quiet() {
    if (pid_ <= 0)
        return false;
    pollfd fd{socket_, POLLIN, 0};
    if (::poll(&fd, 1, 0) != 0)
        return false;
    if (::waitpid(pid_, nullptr, WNOHANG) != pid_)
        return true;
    pid_ = -1;
    return false;
}

void PipeProcess::fail(const QString& why) {
    drainErrors();
    const QStringList lines =
        QString::fromLocal8Bit(errorText_).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    failure_ = lines.isEmpty() ? why : lines.last().trimmed();
}

bool PipeProcess::wait(short events, int timeoutMs) {
    pollfd fds[2] = {{socket_, events, 0}, {errors_, POLLIN, 0}};
    for (;;) {
        const int ready = ::poll(fds, errors_ >= 0 ? 2 : 1, timeoutMs);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready == 0) {
            timedOut_ = true;
            fail(QStringLiteral("\"%1\" did not answer within %2 seconds.")
                     .arg(program_)
                     .arg(timeoutMs / 1000));
            return false;
        }
        if (ready < 0) {
            fail(reason(errno));
            return false;
        }
        if (fds[1].revents & POLLIN)
            drainErrors();
        if (fds[1].revents & (POLLHUP | POLLERR)) {
            // Nothing more to say on its errors: stop watching them.
            fds[1].fd = -1;
        }
        if (fds[0].revents)
            return true;
    }
}

bool PipeProcess::Write(const QByteArray& bytes, int timeoutMs) {
    timedOut_ = false;
    qsizetype done = 0;
    while (done < bytes.size()) {
        if (!wait(POLLOUT, timeoutMs))
            return false;
        const ssize_t n =
            ::send(socket_, bytes.constData() + done, static_cast<size_t>(bytes.size() - done),
                   MSG_NOSIGNAL | MSG_DONTWAIT);
        if (n < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (n < 0) {
            fail(QStringLiteral("\"%1\" has ended.").arg(program_));
            return false;
        }
        done += n;
    }
    return true;
}

bool PipeProcess::Read(char* into, qsizetype size, int timeoutMs) {
    timedOut_ = false;
    qsizetype done = 0;
    while (done < size) {
        if (!wait(POLLIN, timeoutMs))
            return false;
        const ssize_t n =
            ::recv(socket_, into + done, static_cast<size_t>(size - done), MSG_DONTWAIT);
        if (n < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (n <= 0) {
            fail(QStringLiteral("\"%1\" has ended.").arg(program_));
            return false;
        }
        done += n;
    }
    return true;
}
