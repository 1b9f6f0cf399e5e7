#include "documents/HostTransport.h"

#include <QCryptographicHash>

QByteArray HostTransport::Stamp::HashOf(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex();
}

// By the bytes alone; a transport that can tell size and time cheaply does better.
QByteArray HostTransport::ReadStamped(const QString& path, Stamp& stamp) {
    QByteArray bytes = ReadFile(path);
    stamp = {true, bytes.size(), {}, Stamp::HashOf(bytes)};
    return bytes;
}

bool HostTransport::WriteUnchanged(const QString& path, const QByteArray& bytes,
                                   const Stamp& expected, Stamp& written) {
    if (expected.Known && (!Stat(path).Exists || Stamp::HashOf(ReadFile(path)) != expected.Hash))
        return false;
    WriteFile(path, bytes);
    written = {true, bytes.size(), {}, Stamp::HashOf(bytes)};
    return true;
}

std::vector<HostTransport::FileInfo> HostTransport::StatAll(const QStringList& paths) {
    std::vector<FileInfo> infos;
    for (const QString& path : paths)
        infos.push_back(Stat(path));
    return infos;
}
