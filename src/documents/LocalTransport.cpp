#include "documents/LocalTransport.h"

#include "documents/ConnectionErrors.h"
#include "documents/PipeProcess.h"

#include <QFile>
#include <QMutex>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

QByteArray native(const QString& path) {
    return QFile::encodeName(path);
}

QString reason(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

bool isPermissionError(int error) {
    return error == EACCES || error == EPERM || error == EROFS;
}

[[noreturn]] void raise(int32_t number, const QString& what, const QString& path, int error) {
    throw BrixError(number, QStringLiteral("%1 \"%2\": %3.").arg(what, path, reason(error)));
}

QString folderOf(const QString& path) {
    const qsizetype cut = path.lastIndexOf(QLatin1Char('/'));
    return cut <= 0 ? QStringLiteral("/") : path.left(cut);
}

bool userMayWrite(const struct stat& st) {
    const uid_t uid = geteuid();
    if (uid == st.st_uid)
        return st.st_mode & S_IWUSR;
    bool inGroup = getegid() == st.st_gid;
    if (!inGroup) {
        const int count = getgroups(0, nullptr);
        std::vector<gid_t> groups(static_cast<size_t>(std::max(count, 0)));
        if (count > 0 && getgroups(count, groups.data()) == count) {
            for (gid_t g : groups)
                inGroup = inGroup || g == st.st_gid;
        }
    }
    return st.st_mode & (inGroup ? S_IWGRP : S_IWOTH);
}

bool writeAll(int fd, const char* data, size_t size) {
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

constexpr char kTemporaryPrefix[] = ".brix-save-";

// A save that was killed half way leaves its temporary file. Once a file is far older
// than any save takes, nobody is writing it: it goes, the first time this process saves
// in its folder.
void sweepStaleTemporaries(const QString& folder) {
    constexpr time_t staleSeconds = 3600;
    static QMutex mutex;
    static QSet<QString> swept;
    {
        const QMutexLocker lock(&mutex);
        if (swept.contains(folder))
            return;
        swept.insert(folder);
    }
    DIR* dir = ::opendir(native(folder).constData());
    if (!dir)
        return;
    const time_t now = ::time(nullptr);
    while (const dirent* e = ::readdir(dir)) {
        if (std::strncmp(e->d_name, kTemporaryPrefix, sizeof kTemporaryPrefix - 1) != 0)
            continue;
        struct stat st {};
        if (::fstatat(::dirfd(dir), e->d_name, &st, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(st.st_mode) && now - st.st_mtime > staleSeconds)
            ::unlinkat(::dirfd(dir), e->d_name, 0);
    }
    ::closedir(dir);
}

// A new file beside `path` with a name no one else uses; -1 and errno on failure.
int createTemporary(const QString& path, mode_t mode, QByteArray& tempName) {
    const QString folder = folderOf(path);
    for (int attempt = 0; attempt < 100; ++attempt) {
        tempName = native(folder + QLatin1Char('/') + QLatin1String(kTemporaryPrefix) +
                          QString::number(QRandomGenerator::global()->generate64(), 36));
        const int fd = ::open(tempName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    errno = EEXIST;
    return -1;
}

// Writes, flushes and closes a temporary file; the errno of the failure, or 0.
int fillTemporary(int fd, const QByteArray& bytes) {
    int error = 0;
    if (!writeAll(fd, bytes.constData(), static_cast<size_t>(bytes.size())) || ::fsync(fd) != 0)
        error = errno;
    if (::close(fd) != 0 && error == 0)
        error = errno;
    return error;
}

void syncFolder(const QString& folder) {
    const int fd = ::open(native(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

QByteArray timeOf(const struct stat& st) {
    return QByteArray::number(static_cast<qint64>(st.st_mtim.tv_sec)) + '.' +
           QByteArray::number(static_cast<qint64>(st.st_mtim.tv_nsec));
}

} // namespace

HostTransport::FileInfo LocalTransport::Stat(const QString& path) {
    FileInfo info;
    struct stat st {};
    if (::stat(native(path).constData(), &st) != 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return info;
        raise(ConnectionErrors::ReadFailed, QStringLiteral("Can't look at"), path, errno);
    }
    info.Exists = true;
    info.IsFolder = S_ISDIR(st.st_mode);
    info.IsFile = S_ISREG(st.st_mode);
    info.Mode = st.st_mode & 07777;
    info.Size = st.st_size;
    info.Writable = userMayWrite(st) && ::access(native(path).constData(), W_OK) == 0;
    return info;
}

std::vector<HostTransport::Entry> LocalTransport::List(const QString& folder) {
    DIR* dir = ::opendir(native(folder).constData());
    if (!dir)
        raise(ConnectionErrors::ReadFailed, QStringLiteral("Can't list the folder"), folder, errno);
    std::vector<Entry> entries;
    while (const dirent* e = ::readdir(dir)) {
        const QString name = QFile::decodeName(e->d_name);
        if (name == QLatin1String(".") || name == QLatin1String(".."))
            continue;
        bool isFolder = e->d_type == DT_DIR;
        if (e->d_type == DT_UNKNOWN || e->d_type == DT_LNK) {
            struct stat st {};
            isFolder = ::stat(native(folder + QLatin1Char('/') + name).constData(), &st) == 0 &&
                       S_ISDIR(st.st_mode);
        }
        entries.push_back({name, isFolder});
    }
    ::closedir(dir);
    return entries;
}

QByteArray LocalTransport::ReadFile(const QString& path) {
    const int fd = ::open(native(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        raise(ConnectionErrors::ReadFailed, QStringLiteral("Can't read"), path, errno);
    struct stat st {};
    QByteArray bytes;
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode))
        bytes.reserve(static_cast<qsizetype>(st.st_size) + 1);
    char chunk[1 << 16];
    for (;;) {
        const ssize_t n = ::read(fd, chunk, sizeof chunk);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            const int error = errno;
            ::close(fd);
            raise(ConnectionErrors::ReadFailed, QStringLiteral("Can't read"), path, error);
        }
        if (n == 0)
            break;
        bytes.append(chunk, n);
    }
    ::close(fd);
    return bytes;
}

QByteArray LocalTransport::ReadStamped(const QString& path, Stamp& stamp) {
    struct stat before {};
    const bool known = ::stat(native(path).constData(), &before) == 0;
    QByteArray bytes = ReadFile(path);
    stamp = {known, before.st_size, timeOf(before), Stamp::HashOf(bytes)};
    return bytes;
}

bool LocalTransport::WriteUnchanged(const QString& path, const QByteArray& bytes,
                                    const Stamp& expected, Stamp& written) {
    if (expected.Known) {
        struct stat now {};
        if (::stat(native(path).constData(), &now) != 0)
            return false;
        // Size and time as read: unchanged without reading it again.
        if ((now.st_size != expected.Size || timeOf(now) != expected.Time) &&
            Stamp::HashOf(ReadFile(path)) != expected.Hash)
            return false;
    }
    WriteFile(path, bytes);
    struct stat after {};
    ::stat(native(path).constData(), &after);
    written = {true, after.st_size, timeOf(after), Stamp::HashOf(bytes)};
    return true;
}

void LocalTransport::WriteFile(const QString& path, const QByteArray& bytes) {
    struct stat st {};
    const bool replacing = ::stat(native(path).constData(), &st) == 0;
    if (replacing && S_ISDIR(st.st_mode))
        raise(ConnectionErrors::WriteFailed, QStringLiteral("Can't write"), path, EISDIR);
    sweepStaleTemporaries(folderOf(path));
    QByteArray temp;
    const int fd = createTemporary(path, replacing ? (st.st_mode & 07777) : 0666, temp);
    if (fd < 0) {
        const int error = errno;
        raise(isPermissionError(error) ? BrixErrors::CannotWrite : ConnectionErrors::WriteFailed,
              QStringLiteral("Can't write in the folder of"), path, error);
    }
    if (replacing) {
        // The umask applied at creation; the old file's owner and mode win.
        if (::fchown(fd, st.st_uid, st.st_gid) != 0) {
            // Only the owner's own group may be given away; keeping ours is fine.
        }
        ::fchmod(fd, st.st_mode & 07777);
    }
    int error = fillTemporary(fd, bytes);
    if (error == 0 && ::rename(temp.constData(), native(path).constData()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(temp.constData());
        raise(isPermissionError(error) ? BrixErrors::CannotWrite : ConnectionErrors::WriteFailed,
              QStringLiteral("Can't write"), path, error);
    }
    syncFolder(folderOf(path));
}

bool LocalTransport::CreateExclusive(const QString& path, const QByteArray& bytes) {
    // Written aside and linked into place, so no one ever sees it half written.
    QByteArray temp;
    const int fd = createTemporary(path, 0644, temp);
    if (fd < 0)
        raise(ConnectionErrors::LockFailed, QStringLiteral("Can't create"), path, errno);
    int error = fillTemporary(fd, bytes);
    if (error != 0) {
        ::unlink(temp.constData());
        raise(ConnectionErrors::LockFailed, QStringLiteral("Can't create"), path, error);
    }
    const QByteArray target = native(path);
    bool created = ::link(temp.constData(), target.constData()) == 0;
    error = created ? 0 : errno;
    if (!created && error != EEXIST) {
        // A file system without hard links: an exclusive create still keeps it one owner.
        const int direct =
            ::open(target.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        if (direct >= 0) {
            error = fillTemporary(direct, bytes);
            created = error == 0;
        } else {
            error = errno;
        }
    }
    ::unlink(temp.constData());
    if (!created && error != EEXIST)
        raise(ConnectionErrors::LockFailed, QStringLiteral("Can't create"), path, error);
    return created;
}

bool LocalTransport::Rename(const QString& from, const QString& to) {
    if (::rename(native(from).constData(), native(to).constData()) == 0)
        return true;
    if (errno == ENOENT)
        return false;
    raise(ConnectionErrors::WriteFailed, QStringLiteral("Can't rename"), from, errno);
}

void LocalTransport::Remove(const QString& path) {
    if (::unlink(native(path).constData()) != 0 && errno != ENOENT)
        raise(ConnectionErrors::WriteFailed, QStringLiteral("Can't remove"), path, errno);
}

void LocalTransport::MakeFolder(const QString& path) {
    QString sofar;
    for (const QString& name : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        sofar += QLatin1Char('/') + name;
        if (::mkdir(native(sofar).constData(), 0777) == 0 || errno == EEXIST)
            continue;
        const int error = errno;
        raise(isPermissionError(error) ? BrixErrors::CannotWrite : ConnectionErrors::WriteFailed,
              QStringLiteral("Can't create the folder"), sofar, error);
    }
}

QByteArray LocalTransport::Run(const QStringList& command, const QString& workingFolder,
                               int& exitCode) {
    exitCode = -1;
    if (command.isEmpty())
        throw BrixError(ConnectionErrors::CommandFailed, QStringLiteral("No command line is set."));
    QProcess process;
    process.setProgram(command.first());
    process.setArguments(command.mid(1));
    if (!workingFolder.isEmpty())
        process.setWorkingDirectory(workingFolder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    // Its own process group, so that a stop reaches what it started too.
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
    // Nothing to read: a program that asks for input ends instead of waiting (QM's pager
    // waits for ever on a closed pipe, not on the null device).
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(QIODevice::ReadOnly);
    if (!process.waitForStarted(30000))
        throw BrixError(
            ConnectionErrors::CommandFailed,
            QStringLiteral("Can't start \"%1\": %2.").arg(command.first(), process.errorString()));
    if (!process.waitForFinished(CommandTimeout()) && process.state() != QProcess::NotRunning) {
        ::kill(-static_cast<pid_t>(process.processId()), SIGKILL);
        process.waitForFinished(5000);
        throw BrixError(ConnectionErrors::CommandTimedOut,
                        QStringLiteral("The host command \"%1\" did not finish within %2 seconds "
                                       "and was stopped.")
                            .arg(command.last())
                            .arg(CommandTimeout() / 1000));
    }
    exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return process.readAll();
}

std::unique_ptr<PipeProcess> LocalTransport::Start(const QStringList& command,
                                                   const QString& workingFolder) {
    return std::make_unique<PipeProcess>(command, workingFolder);
}
