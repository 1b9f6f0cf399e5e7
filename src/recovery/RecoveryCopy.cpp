#include "recovery/RecoveryCopy.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

int32_t RecoveryCopy::LineCount() const {
    return HasBody ? static_cast<int32_t>(Body.count('\n')) + 1 : 0;
}

std::optional<RecoveryCopy> RecoveryCopy::Read(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    RecoveryCopy copy;
    const qsizetype end = bytes.indexOf("\r\n");
    if (end < 0) {
        copy.ItemId = QString::fromUtf8(bytes);
        return copy;
    }
    copy.ItemId = QString::fromUtf8(bytes.constData(), end);
    copy.HasBody = true;
    bytes.remove(0, end + 2);
    copy.Body = std::move(bytes);
    return copy;
}

QString RecoveryCopy::PartialName(const QString& fileName) {
    return QLatin1Char('.') + fileName + QStringLiteral(".part");
}

bool RecoveryCopy::IsPartialName(const QString& fileName) {
    return fileName.startsWith(QLatin1Char('.'));
}

namespace {

bool writeAll(int fd, const QByteArray& head, const char* body, qint64 size) {
    iovec parts[2] = {{const_cast<char*>(head.constData()), static_cast<size_t>(head.size())},
                      {const_cast<char*>(body), static_cast<size_t>(size)}};
    int first = 0;
    while (first < 2) {
        const ssize_t n = ::writev(fd, parts + first, 2 - first);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        size_t done = static_cast<size_t>(n);
        while (first < 2 && done >= parts[first].iov_len) {
            done -= parts[first].iov_len;
            ++first;
        }
        if (first < 2) {
            parts[first].iov_base = static_cast<char*>(parts[first].iov_base) + done;
            parts[first].iov_len -= done;
        }
    }
    return true;
}

} // namespace

bool RecoveryCopy::Write(const QString& path, const QString& itemId, const char* body,
                         qint64 size) {
    const QFileInfo target(path);
    const QByteArray partial =
        QFile::encodeName(target.dir().filePath(PartialName(target.fileName())));
    // One line: a line end inside the id would move the body.
    QString id = itemId;
    id.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    const QByteArray head = id.toUtf8() + "\r\n";

    const int fd = ::open(partial.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0)
        return false;
    bool ok = ::fchmod(fd, 0600) == 0 && writeAll(fd, head, body ? body : "", body ? size : 0);
    ok = ::close(fd) == 0 && ok;
    // The rename is what makes the copy appear: whole, or the one before it stays.
    if (ok && ::rename(partial.constData(), QFile::encodeName(path).constData()) == 0)
        return true;
    ::unlink(partial.constData());
    return false;
}
