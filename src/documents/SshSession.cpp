#include "documents/SshSession.h"

#include <QElapsedTimer>
#include <algorithm>
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

// The host's side: reads "<script bytes> <input bytes>" lines, each followed by the script
// and its input, and answers "<exit code> <output bytes> <error bytes>" and the two. The
// input goes to a file first, so a script that reads none of it can't leave it in the way.
const char kLoop[] = "export LC_ALL=C\n"
                     "w=$(mktemp -d \"${TMPDIR:-/tmp}/brix.XXXXXX\") || exit 1\n"
                     "trap 'rm -rf \"$w\"' EXIT\n"
                     "trap 'exit 1' HUP TERM\n"
                     "while IFS=' ' read -r s n; do\n"
                     "  c=$(head -c \"$s\")\n"
                     "  if [ \"$n\" -gt 0 ]; then head -c \"$n\" >\"$w/i\"; else : >\"$w/i\"; fi\n"
                     "  sh -c \"$c\" brix <\"$w/i\" >\"$w/o\" 2>\"$w/e\"\n"
                     "  r=$?\n"
                     "  set -- $(stat -c %s \"$w/o\" \"$w/e\")\n"
                     "  printf '%s %s %s\\n' \"$r\" \"$1\" \"$2\"\n"
                     "  cat \"$w/o\" \"$w/e\"\n"
                     "done\n";

QByteArray shellWord(const QByteArray& word) {
    QByteArray quoted = word;
    quoted.replace('\'', "'\\''");
    return '\'' + quoted + '\'';
}

void closeFd(int& fd) {
    if (fd >= 0)
        ::close(fd);
    fd = -1;
}

} // namespace

SshSession::SshSession(QStringList sshCommand) : command_(std::move(sshCommand)) {}

SshSession::~SshSession() {
    end(false);
}

bool SshSession::start() {
    int in[2] = {-1, -1}, out[2] = {-1, -1}, err[2] = {-1, -1};
    // A socket for the input: writing to it after the client died fails with EPIPE instead of
    // raising SIGPIPE in the whole program.
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, in) != 0 ||
        ::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) {
        for (int* pair : {in, out, err}) {
            closeFd(pair[0]);
            closeFd(pair[1]);
        }
        diagnostics_ = "Can't make the pipes for the ssh client.";
        return false;
    }
    std::vector<QByteArray> words;
    for (const QString& word : command_)
        words.push_back(word.toLocal8Bit());
    words.push_back("sh -c " + shellWord(kLoop));
    std::vector<char*> argv;
    for (QByteArray& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[1], 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err[1], 2);
    const int spawned =
        ::posix_spawnp(&pid_, argv.front(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(in[1]);
    ::close(out[1]);
    ::close(err[1]);
    in_ = in[0];
    out_ = out[0];
    err_ = err[0];
    for (int fd : {in_, out_, err_})
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    if (spawned != 0) {
        pid_ = -1;
        diagnostics_ = "Can't start the ssh client: " + QByteArray(::strerror(spawned)) + '.';
        end(false);
        return false;
    }
    return true;
}

void SshSession::end(bool kill) {
    over_ = true;
    closeFd(in_);
    if (pid_ > 0) {
        // Without its input the host's loop ends, and the client with it.
        QElapsedTimer waited;
        waited.start();
        int status = 0;
        pid_t done = 0;
        while (!kill && (done = ::waitpid(pid_, &status, WNOHANG)) == 0 && waited.elapsed() < 300)
            ::usleep(2000);
        if (done == 0) {
            ::kill(pid_, SIGKILL);
            done = ::waitpid(pid_, &status, 0);
        }
        if (done == pid_ && WIFEXITED(status))
            clientExit_ = WEXITSTATUS(status);
        pid_ = -1;
    }
    closeFd(out_);
    closeFd(err_);
}

SshSession::Result SshSession::fail(bool timedOut) {
    if (!timedOut && err_ >= 0) {
        // What the client says as it goes (host key refused, connection closed).
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < 2000) {
            pollfd p{err_, POLLIN, 0};
            if (::poll(&p, 1, 100) < 0 && errno != EINTR)
                break;
            char chunk[4096];
            const ssize_t n = ::read(err_, chunk, sizeof chunk);
            if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR))
                break;
            if (n > 0)
                diagnostics_.append(chunk, n);
        }
    }
    end(timedOut);
    return timedOut ? Result::TimedOut : Result::Broken;
}

bool SshSession::idleAlive() {
    // Between calls the host says nothing: anything to read, or the end, means it is gone.
    pollfd p{out_, POLLIN, 0};
    if (::poll(&p, 1, 0) != 0)
        return false;
    if (::waitpid(pid_, nullptr, WNOHANG) != pid_)
        return true;
    pid_ = -1;
    return false;
}

SshSession::Result SshSession::Call(const QByteArray& script, const QByteArray& input, int timeout,
                                    Reply& reply) {
    reply = Reply();
    diagnostics_.clear();
    if (!over_ && pid_ > 0 && !idleAlive()) {
        // It ended between calls (the connection was closed): nothing was sent, so a new one
        // may do it.
        end(true);
        over_ = proven_ = false;
    }
    if (over_ || (pid_ < 0 && !start()))
        return Result::Broken;
    const QByteArray request = QByteArray::number(script.size()) + ' ' +
                               QByteArray::number(input.size()) + '\n' + script + input;
    qsizetype sent = 0;
    QByteArray answer;
    qint64 expected = -1;
    qint64 outSize = 0;
    qsizetype headerEnd = -1;
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        if (headerEnd < 0 && (headerEnd = answer.indexOf('\n')) >= 0) {
            const QList<QByteArray> words = answer.left(headerEnd).simplified().split(' ');
            bool ok = false;
            reply.ExitCode = words.value(0).toInt(&ok);
            outSize = words.value(1).toLongLong();
            expected = headerEnd + 1 + outSize + words.value(2).toLongLong();
            if (!ok || words.size() != 3)
                return fail(false);
        }
        if (expected >= 0 && answer.size() >= expected) {
            reply.Out = answer.mid(headerEnd + 1, outSize);
            reply.Err = answer.mid(headerEnd + 1 + outSize);
            proven_ = true;
            return Result::Done;
        }
        const qint64 left = timeout - clock.elapsed();
        if (left <= 0)
            return fail(true);
        pollfd fds[3] = {{out_, POLLIN, 0}, {err_, POLLIN, 0}, {in_, POLLOUT, 0}};
        const nfds_t count = sent < request.size() ? 3 : 2;
        if (::poll(fds, count, static_cast<int>(std::min<qint64>(left, 1000))) < 0) {
            if (errno == EINTR)
                continue;
            return fail(false);
        }
        if (count == 3 && (fds[2].revents & (POLLOUT | POLLERR | POLLHUP))) {
            const ssize_t n = ::send(in_, request.constData() + sent,
                                     static_cast<size_t>(request.size() - sent), MSG_NOSIGNAL);
            if (n < 0 && errno != EAGAIN && errno != EINTR)
                return fail(false);
            if (n > 0)
                sent += n;
        }
        char chunk[1 << 16];
        if (fds[1].revents) {
            const ssize_t n = ::read(err_, chunk, sizeof chunk);
            if (n > 0)
                diagnostics_.append(chunk, n);
            else if (n == 0)
                closeFd(err_); // poll passes over it from now on
        }
        if (fds[0].revents) {
            const ssize_t n = ::read(out_, chunk, sizeof chunk);
            if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR))
                return fail(false);
            if (n > 0)
                answer.append(chunk, n);
        }
    }
}
