#include "documents/SshTransport.h"

#include "documents/ConnectionErrors.h"
#include "documents/SshSession.h"
#include "documents/PipeProcess.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <unistd.h>

namespace {

// Every script starts so: messages in one language, that the reading of them can rely on.
const QString kPrologue = QStringLiteral("export LC_ALL=C\n");

// A temporary file beside the target; a save that died half way leaves one, which the next
// save in that folder removes once it is an hour old.
const QString kTemporary = QStringLiteral(
    "d=${p%/*}\n"
    "find \"$d\" -maxdepth 1 -type f -name '.brix-save-*' -mmin +60 -exec rm -f {} + "
    "2>/dev/null\n"
    "t=$d/.brix-save-$$-$(date +%s%N)\n"
    "set -C\n"
    "cat > \"$t\" || { rm -f -- \"$t\"; exit 1; }\n"
    // A dropped connection ends the input early without an error: count what came.
    "if [ \"$(wc -c < \"$t\")\" -ne \"$n\" ]; then rm -f -- \"$t\";\n"
    "  echo 'The connection ended before all of the text arrived.' >&2; exit 1; fi\n");

QString lastLine(const QByteArray& bytes) {
    const QStringList lines =
        QString::fromLocal8Bit(bytes).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return lines.isEmpty() ? QString() : lines.last().trimmed();
}

bool isPermissionError(const QByteArray& err) {
    return err.contains("Permission denied") || err.contains("Read-only file system") ||
           err.contains("Operation not permitted");
}

} // namespace

SshTransport::SshTransport(Target target) : target_(std::move(target)) {
    // Unix socket names are short (about 108 bytes): %C is a 40-character hash. Without the
    // folder ssh would quietly connect afresh for every call.
    QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty() || folder.size() > 60 || !QDir(folder).exists())
        folder = QDir::tempPath() + QStringLiteral("/brix-ssh-") + QString::number(::getuid());
    if (!QDir(folder).exists() && QDir().mkpath(folder))
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    controlPath_ = folder + QStringLiteral("/brix-%C");
}

SshTransport::~SshTransport() = default;

QString SshTransport::Place() const {
    QString place = QStringLiteral("ssh:");
    if (!target_.User.isEmpty())
        place += target_.User + QLatin1Char('@');
    place += target_.Host;
    if (target_.Port > 0)
        place += QLatin1Char(':') + QString::number(target_.Port);
    return place;
}

QString SshTransport::Quote(const QString& word) {
    QString quoted = word;
    quoted.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

QString SshTransport::controlPath() const {
    return controlPath_;
}

QStringList SshTransport::sshArguments() const {
    QStringList command{QStringLiteral("ssh")};
    if (!target_.ConfigFile.isEmpty())
        command << QStringLiteral("-F") << target_.ConfigFile;
    // Never a question: an unknown or changed host key is refused, not accepted.
    command << QStringLiteral("-T") << QStringLiteral("-o") << QStringLiteral("BatchMode=yes")
            << QStringLiteral("-o") << QStringLiteral("StrictHostKeyChecking=yes")
            << QStringLiteral("-o") << QStringLiteral("ConnectTimeout=30") << QStringLiteral("-o")
            << QStringLiteral("ControlMaster=auto") << QStringLiteral("-o")
            << QStringLiteral("ControlPath=") + controlPath() << QStringLiteral("-o")
            << QStringLiteral("ControlPersist=60");
    if (target_.Port > 0)
        command << QStringLiteral("-p") << QString::number(target_.Port);
    if (!target_.User.isEmpty())
        command << QStringLiteral("-l") << target_.User;
    if (!target_.IdentityFile.isEmpty())
        command << QStringLiteral("-i") << target_.IdentityFile;
    command << QStringLiteral("--") << target_.Host;
    return command;
}

QStringList SshTransport::SshCommand(const QString& remote) const {
    return sshArguments() << remote;
}

SshTransport::Outcome SshTransport::script(const QString& text, const QStringList& args,
                                           const QByteArray& input, int timeout, bool repeatable) {
    if (target_.Host.isEmpty())
        throw BrixError(ConnectionErrors::UnknownServer,
                        QStringLiteral("The connection has no Host to reach over ssh."));
    QString words;
    for (const QString& arg : args)
        words += QLatin1Char(' ') + Quote(arg);
    std::unique_lock<std::mutex> lock(sessionMutex_, std::try_to_lock);
    if (!lock.owns_lock())
        return oneShot(QStringLiteral("sh -c ") + Quote(kPrologue + text) +
                           QStringLiteral(" brix") + words,
                       input, timeout);
    const QByteArray program =
        (kPrologue + QStringLiteral("set --") + words + QLatin1Char('\n') + text).toLocal8Bit();
    for (int attempt = 0;; ++attempt) {
        if (!session_ || session_->Over())
            session_ = std::make_unique<SshSession>(sshArguments());
        const bool proven = session_->Proven();
        SshSession::Reply reply;
        switch (session_->Call(program, input, timeout, reply)) {
        case SshSession::Result::Done:
            return {reply.Out, reply.Err, reply.ExitCode};
        case SshSession::Result::TimedOut:
            throw BrixError(ConnectionErrors::CommandTimedOut,
                            QStringLiteral("%1 did not answer within %2 seconds.")
                                .arg(target_.Host)
                                .arg(timeout / 1000));
        case SshSession::Result::Broken:
            if (repeatable && proven && attempt == 0)
                continue;
            connectionFailed({{}, session_->Diagnostics(), -1});
        }
    }
}

SshTransport::Outcome SshTransport::oneShot(const QString& remote, const QByteArray& input,
                                            int timeout) {
    const QStringList command = SshCommand(remote);
    QProcess process;
    process.setProgram(command.first());
    process.setArguments(command.mid(1));
    process.start();
    if (!process.waitForStarted(30000))
        throw BrixError(
            ConnectionErrors::ReadFailed,
            QStringLiteral("Can't start the ssh client: %1.").arg(process.errorString()));
    if (!input.isEmpty())
        process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(timeout) && process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(5000);
        throw BrixError(ConnectionErrors::CommandTimedOut,
                        QStringLiteral("%1 did not answer within %2 seconds.")
                            .arg(target_.Host)
                            .arg(timeout / 1000));
    }
    Outcome outcome;
    outcome.Out = process.readAllStandardOutput();
    outcome.Err = process.readAllStandardError();
    outcome.ExitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    if (outcome.ExitCode == 255 || outcome.ExitCode == -1)
        connectionFailed(outcome);
    return outcome;
}

void SshTransport::connectionFailed(const Outcome& outcome) const {
    if (outcome.Err.contains("Host key verification failed") ||
        outcome.Err.contains("HOST IDENTIFICATION HAS CHANGED"))
        throw BrixError(
            ConnectionErrors::ReadFailed,
            QStringLiteral("The host key of %1 is unknown or has changed, so the connection "
                           "was refused. To check the key and accept it, run \"%2\" once "
                           "in a terminal.")
                .arg(target_.Host,
                     QStringLiteral("ssh ") +
                         (target_.Port > 0 ? QStringLiteral("-p %1 ").arg(target_.Port)
                                           : QString()) +
                         (target_.User.isEmpty() ? QString() : target_.User + QLatin1Char('@')) +
                         target_.Host));
    throw BrixError(ConnectionErrors::ReadFailed,
                    QStringLiteral("The connection to %1 over ssh failed: %2")
                        .arg(target_.Host, lastLine(outcome.Err).isEmpty()
                                               ? QStringLiteral("the ssh client ended.")
                                               : lastLine(outcome.Err)));
}

void SshTransport::fail(int32_t number, const QString& what, const QString& path,
                        const Outcome& outcome) const {
    const QString why = lastLine(outcome.Err);
    throw BrixError(number, QStringLiteral("%1 \"%2\" on %3: %4")
                                .arg(what, path, target_.Host,
                                     why.isEmpty() ? QStringLiteral("it failed.") : why));
}

HostTransport::FileInfo SshTransport::Stat(const QString& path) {
    return StatAll({path}).front();
}

std::vector<HostTransport::FileInfo> SshTransport::StatAll(const QStringList& paths) {
    // One find for all: the paths are absolute, so none reads as an expression; a missing one
    // only gives a complaint and no line.
    // Writable as the permission bits say, also for root, whom access() lets write anything.
    const Outcome o =
        script(QStringLiteral("u=$(id -u)\n"
                              "find -L \"$@\" -maxdepth 0 \\( -writable \\( -uid \"$u\" "
                              "-perm -u=w -o ! -uid \"$u\" \\( -perm -g=w -o -perm "
                              "-o=w \\) \\) -printf w -o -printf r \\) "
                              "-printf ' %y %m %s %p\\0' 2>/dev/null\n"
                              "exit 0\n"),
               paths, {}, 60000, true);
    if (o.ExitCode != 0)
        fail(ConnectionErrors::ReadFailed, QStringLiteral("Can't look at"), paths.value(0), o);
    QHash<QString, FileInfo> found;
    for (const QByteArray& record : o.Out.split('\0')) {
        // "w f 644 1234 /path"
        const QList<QByteArray> words = record.split(' ');
        if (words.size() < 5)
            continue;
        FileInfo info;
        info.Exists = true;
        info.Writable = words.at(0) == "w";
        info.IsFolder = words.at(1) == "d";
        info.IsFile = words.at(1) == "f";
        info.Mode = words.at(2).toUInt(nullptr, 8);
        info.Size = words.at(3).toLongLong();
        found.insert(QFile::decodeName(record.mid(words.at(0).size() + words.at(1).size() +
                                                  words.at(2).size() + words.at(3).size() + 4)),
                     info);
    }
    std::vector<FileInfo> infos;
    for (const QString& path : paths)
        infos.push_back(found.value(path));
    return infos;
}

std::vector<HostTransport::Entry> SshTransport::List(const QString& folder) {
    const Outcome o =
        script(QStringLiteral("cd -- \"$1\" && "
                              "find -L . -mindepth 1 -maxdepth 1 -printf '%y%P\\0'\n"),
               {folder}, {}, 60000, true);
    if (o.ExitCode != 0)
        fail(ConnectionErrors::ReadFailed, QStringLiteral("Can't list the folder"), folder, o);
    std::vector<Entry> entries;
    for (const QByteArray& record : o.Out.split('\0')) {
        if (record.size() < 2)
            continue;
        entries.push_back({QFile::decodeName(record.mid(1)), record.at(0) == 'd'});
    }
    return entries;
}

QByteArray SshTransport::ReadFile(const QString& path) {
    const Outcome o = script(QStringLiteral("exec cat -- \"$1\"\n"), {path}, {}, 60000, true);
    if (o.ExitCode != 0)
        fail(ConnectionErrors::ReadFailed, QStringLiteral("Can't read"), path, o);
    return o.Out;
}

QByteArray SshTransport::ReadStamped(const QString& path, Stamp& stamp) {
    // The stamp first: a change between the two shows later as other bytes than these.
    const Outcome o =
        script(QStringLiteral("s=$(find -L \"$1\" -maxdepth 0 -printf '%s %T@' 2>/dev/null)\n"
                              "echo \"${s:--}\"\n"
                              "exec cat -- \"$1\"\n"),
               {path}, {}, 60000, true);
    const qsizetype cut = o.Out.indexOf('\n');
    if (o.ExitCode != 0 || cut < 0)
        fail(ConnectionErrors::ReadFailed, QStringLiteral("Can't read"), path, o);
    const QList<QByteArray> words = o.Out.left(cut).split(' ');
    QByteArray bytes = o.Out.mid(cut + 1);
    stamp = {true, words.value(0).toLongLong(), words.value(1), Stamp::HashOf(bytes)};
    return bytes;
}

void SshTransport::WriteFile(const QString& path, const QByteArray& bytes) {
    Stamp written;
    write(path, bytes, {}, written);
}

bool SshTransport::WriteUnchanged(const QString& path, const QByteArray& bytes,
                                  const Stamp& expected, Stamp& written) {
    return write(path, bytes, expected, written);
}

// One run checks the item against the stamp, writes it aside, moves it into place and
// tells its new size and time.
bool SshTransport::write(const QString& path, const QByteArray& bytes, const Stamp& expected,
                         Stamp& written) {
    Outcome o;
    try {
        o = script(
            QStringLiteral("p=$1; n=$2\n"
                           "if [ -d \"$p\" ]; then echo 'Is a directory' >&2; exit 1; fi\n"
                           "if [ -n \"$5\" ]; then\n"
                           "  s=$(find -L \"$p\" -maxdepth 0 -printf '%s %T@' 2>/dev/null)\n"
                           "  if [ \"$s\" != \"$3 $4\" ] &&\n"
                           "     [ \"$(sha1sum < \"$p\" 2>/dev/null | cut -c1-40)\" != \"$5\" ]; "
                           "then\n"
                           "    echo changed; exit 0\n"
                           "  fi\n"
                           "fi\n") +
                kTemporary +
                QStringLiteral(
                    "if [ -e \"$p\" ]; then\n"
                    "  chown --reference=\"$p\" -- \"$t\" 2>/dev/null\n"
                    "  chmod --reference=\"$p\" -- \"$t\" || { rm -f -- \"$t\"; exit 1; }\n"
                    "fi\n"
                    "sync -- \"$t\" 2>/dev/null\n"
                    "mv -f -T -- \"$t\" \"$p\" || { rm -f -- \"$t\"; exit 1; }\n"
                    "find \"$p\" -maxdepth 0 -printf 'written %s %T@\\n'\n"),
            {path, QString::number(bytes.size()),
             expected.Known ? QString::number(expected.Size) : QString(),
             QString::fromLatin1(expected.Time),
             expected.Known ? QString::fromLatin1(expected.Hash) : QString()},
            bytes);
    } catch (const BrixError& e) {
        // The text goes aside and is moved into place whole, so it is there whole or not at all.
        throw BrixError(ConnectionErrors::ConnectionLost,
                        e.Description + QStringLiteral(" The item on the host holds either its "
                                                       "old text or all of the new one."));
    }
    if (o.ExitCode != 0)
        fail(isPermissionError(o.Err) ? BrixErrors::CannotWrite : ConnectionErrors::WriteFailed,
             QStringLiteral("Can't write"), path, o);
    if (o.Out.startsWith("changed"))
        return false;
    const QList<QByteArray> words = o.Out.trimmed().split(' ');
    written = {true, words.value(1).toLongLong(), words.value(2), Stamp::HashOf(bytes)};
    return true;
}

bool SshTransport::CreateExclusive(const QString& path, const QByteArray& bytes) {
    const Outcome o = script(
        QStringLiteral("p=$1; n=$2\n") + kTemporary +
            QStringLiteral("chmod 644 -- \"$t\"\n"
                           "if ln -- \"$t\" \"$p\" 2>/dev/null; then rm -f -- \"$t\"; "
                           "echo created; exit 0; fi\n"
                           "rm -f -- \"$t\"\n"
                           "if [ -e \"$p\" ] || [ -L \"$p\" ]; then echo exists; exit 0; fi\n"
                           "echo \"Can't link $p\" >&2; exit 1\n"),
        {path, QString::number(bytes.size())}, bytes);
    if (o.ExitCode != 0)
        fail(ConnectionErrors::LockFailed, QStringLiteral("Can't create"), path, o);
    return o.Out.startsWith("created");
}

bool SshTransport::Rename(const QString& from, const QString& to) {
    const Outcome o = script(
        QStringLiteral("if [ ! -e \"$1\" ] && [ ! -L \"$1\" ]; then echo missing; exit 0; fi\n"
                       "mv -f -T -- \"$1\" \"$2\" && echo moved\n"),
        {from, to});
    if (o.ExitCode != 0)
        fail(ConnectionErrors::WriteFailed, QStringLiteral("Can't rename"), from, o);
    return o.Out.startsWith("moved");
}

void SshTransport::Remove(const QString& path) {
    const Outcome o = script(QStringLiteral("rm -f -- \"$1\"\n"), {path});
    if (o.ExitCode != 0)
        fail(ConnectionErrors::WriteFailed, QStringLiteral("Can't remove"), path, o);
}

void SshTransport::MakeFolder(const QString& path) {
    const Outcome o = script(QStringLiteral("mkdir -p -- \"$1\"\n"), {path});
    if (o.ExitCode != 0)
        fail(isPermissionError(o.Err) ? BrixErrors::CannotWrite : ConnectionErrors::WriteFailed,
             QStringLiteral("Can't create the folder"), path, o);
}

QByteArray SshTransport::Run(const QStringList& command, const QString& workingFolder,
                             int& exitCode) {
    exitCode = -1;
    if (command.isEmpty())
        throw BrixError(ConnectionErrors::CommandFailed, QStringLiteral("No command line is set."));
    Outcome o;
    try {
        o = script(QStringLiteral("exec 2>&1 </dev/null\n"
                                  "if [ -n \"$1\" ]; then cd -- \"$1\" || exit 126; fi\n"
                                  "shift\n"
                                  "exec \"$@\"\n"),
                   QStringList{workingFolder} + command, {}, CommandTimeout());
    } catch (const BrixError& e) {
        if (e.Number != ConnectionErrors::CommandTimedOut)
            throw BrixError(ConnectionErrors::CommandFailed, e.Description);
        throw BrixError(ConnectionErrors::CommandTimedOut,
                        QStringLiteral("The host command \"%1\" did not finish within %2 seconds "
                                       "and was stopped.")
                            .arg(command.last())
                            .arg(CommandTimeout() / 1000));
    }
    exitCode = o.ExitCode;
    return o.Out + o.Err;
}

std::unique_ptr<PipeProcess> SshTransport::Start(const QStringList& command,
                                                 const QString& workingFolder) {
    if (command.isEmpty())
        throw BrixError(ConnectionErrors::CommandFailed, QStringLiteral("No command line is set."));
    if (target_.Host.isEmpty())
        throw BrixError(ConnectionErrors::UnknownServer,
                        QStringLiteral("The connection has no Host to reach over ssh."));
    // The program's input and output are the session's: when the ssh client ends, so does
    // the input of the program on the host.
    QString remote = QStringLiteral("sh -c ") +
                     Quote(kPrologue + QStringLiteral("if [ -n \"$1\" ]; then cd -- \"$1\" || "
                                                      "exit 126; fi\nshift\nexec \"$@\"\n")) +
                     QStringLiteral(" brix ") + Quote(workingFolder);
    for (const QString& word : command)
        remote += QLatin1Char(' ') + Quote(word);
    return std::make_unique<PipeProcess>(SshCommand(remote), QString());
}
