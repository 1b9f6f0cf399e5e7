#include "SshServerFixture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMultiHash>
#include <arpa/inet.h>
#include <csignal>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A port of 127.0.0.1 that no one listens on now, chosen by the kernel.
int freePort() {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    int port = 0;
    if (::bind(fd, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) == 0)
        port = ntohs(address.sin_port);
    ::close(fd);
    return port;
}

} // namespace

bool SshServerFixture::run(const QStringList& command) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(command.first(), command.mid(1));
    if (!process.waitForFinished(60000) || process.exitCode() != 0) {
        error_ = command.join(QLatin1Char(' ')) + QStringLiteral(": ") +
                 QString::fromLocal8Bit(process.readAll());
        return false;
    }
    return true;
}

SshServerFixture::SshServerFixture() : dir_(std::make_unique<QTemporaryDir>()) {
    const QString d = dir_->path();
    if (!QFile::exists(QStringLiteral("/usr/sbin/sshd"))) {
        error_ = QStringLiteral("/usr/sbin/sshd is not installed");
        return;
    }
    // Debian's sshd wants its privilege separation folder.
    if (::geteuid() == 0)
        QDir().mkpath(QStringLiteral("/run/sshd"));
    if (!run({QStringLiteral("ssh-keygen"), QStringLiteral("-q"), QStringLiteral("-t"),
              QStringLiteral("ed25519"), QStringLiteral("-N"), QString(), QStringLiteral("-f"),
              d + QStringLiteral("/host_key")}) ||
        !run({QStringLiteral("ssh-keygen"), QStringLiteral("-q"), QStringLiteral("-t"),
              QStringLiteral("ed25519"), QStringLiteral("-N"), QString(), QStringLiteral("-f"),
              d + QStringLiteral("/client_key")}))
        return;
    QFile::setPermissions(d + QStringLiteral("/client_key"), QFile::ReadOwner | QFile::WriteOwner);
    writeFile(d + QStringLiteral("/authorized_keys"),
              readFile(d + QStringLiteral("/client_key.pub")));
    port_ = freePort();
    writeFile(d + QStringLiteral("/known_hosts"),
              QStringLiteral("[127.0.0.1]:%1 ").arg(port_).toUtf8() +
                  readFile(d + QStringLiteral("/host_key.pub")));
    writeFile(d + QStringLiteral("/known_hosts_empty"), {});
    for (bool trusted : {true, false}) {
        writeFile(ClientConfig(trusted),
                  QStringLiteral("IdentitiesOnly yes\nIdentityFile %1/client_key\n"
                                 "UserKnownHostsFile %1/%2\nGlobalKnownHostsFile /dev/null\n")
                      .arg(d, trusted ? QStringLiteral("known_hosts")
                                      : QStringLiteral("known_hosts_empty"))
                      .toUtf8());
    }
    writeFile(d + QStringLiteral("/sshd_config"),
              QStringLiteral("ListenAddress 127.0.0.1\nPort %1\nHostKey %2/host_key\n"
                             "PidFile %2/sshd.pid\nAuthorizedKeysFile %2/authorized_keys\n"
                             "UsePAM no\nPasswordAuthentication no\n"
                             "KbdInteractiveAuthentication no\nStrictModes no\n"
                             // Bash runs ~/.bashrc for a command over ssh only in a top-level
                             // shell: this machine's own start-up files stay out of the tests,
                             // and a session killed by a test can't leave their locks behind.
                             "SetEnv SHLVL=1\n")
                  .arg(port_)
                  .arg(d)
                  .toUtf8());
    sshd_.setProcessChannelMode(QProcess::MergedChannels);
    // The server must not outlive the test, even a crashed one.
    sshd_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    sshd_.start(QStringLiteral("/usr/sbin/sshd"),
                {QStringLiteral("-D"), QStringLiteral("-e"), QStringLiteral("-f"),
                 d + QStringLiteral("/sshd_config")});
    QByteArray log;
    QElapsedTimer waited;
    waited.start();
    while (!log.contains("Server listening") && sshd_.state() != QProcess::NotRunning &&
           waited.elapsed() < 20000) {
        sshd_.waitForReadyRead(500);
        log += sshd_.readAll();
    }
    started_ = log.contains("Server listening");
    if (!started_) {
        error_ = QStringLiteral("sshd did not start: ") + QString::fromLocal8Bit(log);
        Kill();
    }
}

SshServerFixture::~SshServerFixture() {
    Kill();
}

namespace {

// The processes below `root`, by their parent links in /proc.
QList<pid_t> descendants(pid_t root) {
    QMultiHash<pid_t, pid_t> children;
    for (const QString& name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        bool number = false;
        const pid_t pid = name.toInt(&number);
        if (!number)
            continue;
        // "pid (name) state ppid ...": the name may hold blanks, the last ")" ends it.
        const QByteArray stat = readFile(QStringLiteral("/proc/%1/stat").arg(pid));
        const QList<QByteArray> rest = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        if (rest.size() > 1)
            children.insert(rest.at(1).toInt(), pid);
    }
    QList<pid_t> found;
    QList<pid_t> queue{root};
    while (!queue.isEmpty()) {
        for (pid_t child : children.values(queue.takeFirst())) {
            found << child;
            queue << child;
        }
    }
    return found;
}

} // namespace

void SshServerFixture::Kill() {
    if (sshd_.state() == QProcess::NotRunning)
        return;
    // Sessions outlive the listener: they go first, each by its own id.
    const pid_t listener = static_cast<pid_t>(sshd_.processId());
    for (pid_t pid : descendants(listener))
        ::kill(pid, SIGKILL);
    ::kill(listener, SIGKILL);
    sshd_.waitForFinished(5000);
}

QString SshServerFixture::ClientConfig(bool trusted) const {
    return dir_->path() +
           (trusted ? QStringLiteral("/ssh_config") : QStringLiteral("/ssh_config_bare"));
}

SshTransport::Target SshServerFixture::Target(bool trusted) const {
    SshTransport::Target target;
    target.Host = trusted ? QStringLiteral("127.0.0.1") : QStringLiteral("localhost");
    target.Port = port_;
    target.ConfigFile = ClientConfig(trusted);
    return target;
}

QByteArray SshServerFixture::ProfileLines() const {
    return QStringLiteral("Transport=ssh\nHost=127.0.0.1\nPort=%1\nSshConfig=%2\n")
        .arg(port_)
        .arg(ClientConfig())
        .toUtf8();
}
