#pragma once

#include <QString>

// The five parts of a resource path and its one string form:
//   mvdb://SERVER/DATABASE/FOLDER/ITEM    a host item ("*" is the default server)
//   file:///absolute/folder/name          a local file
// Host parts are percent-encoded whole; a local path keeps its "/" separators and encodes
// each name. "*" always stands as it is. Paths compare without regard to case.
struct mvPath {
    QString Provider;
    QString ServerName;
    QString Database;
    QString Folder;
    QString ItemID;

    QString ToString() const;
    // Lenient: missing parts come back empty, a bare absolute file name is a local path.
    static mvPath Parse(const QString& path);
    static bool Same(const QString& a, const QString& b);
    // One part in its encoded form.
    static QString Encode(const QString& part);
    static QString Decode(const QString& part);
};
