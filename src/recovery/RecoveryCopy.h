#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>

// One recovery copy on disk: the document's item id on the first line, CR LF, then the
// editor's own bytes of the text (UTF-8, LF line ends, marks as the editor holds them), so
// that putting them back into an editor gives exactly the text that was there.
class RecoveryCopy {
public:
    QString ItemId;
    QByteArray Body;
    // False for a file without the CR LF behind the first line: all of it is the first line.
    bool HasBody = false;

    // Lines of the document, the first line of the file not counted.
    int32_t LineCount() const;

    // Reads a whole copy; none when the file can't be read.
    static std::optional<RecoveryCopy> Read(const QString& path);
    // Writes a copy whole or not at all: a hidden temporary file beside it, mode 0600,
    // renamed over `path`. The body is written straight from `body`.
    static bool Write(const QString& path, const QString& itemId, const char* body, qint64 size);
    // The temporary name a write of `fileName` uses; the scan leaves such names alone.
    static QString PartialName(const QString& fileName);
    static bool IsPartialName(const QString& fileName);
};
