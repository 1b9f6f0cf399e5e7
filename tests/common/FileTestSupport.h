#pragma once

#include "documents/ConnectionProfiles.h"
#include "documents/mvConnection.h"
#include "support/BrixError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtTest>
#include <functional>

// Small helpers for tests that work on real files and expect BrixErrors.
namespace FileTestSupport {

// Creates the file and its folders.
inline void WriteFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

inline QByteArray ReadFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

// The number of the BrixError that `fn` raises (0 for none), and its description.
inline int32_t ErrorOf(const std::function<void()>& fn, QString* description = nullptr) {
    try {
        fn();
    } catch (const BrixError& e) {
        if (description)
            *description = e.Description;
        return e.Number;
    }
    return 0;
}

// Writes the connections file, or removes it for an empty text, and loads it.
inline void UseProfiles(const QByteArray& text) {
    const QString file = ConnectionProfiles::DefaultFile();
    if (text.isEmpty())
        QFile::remove(file);
    else
        WriteFile(file, text);
    mvConnection::Instance().LoadProfiles(file);
}

} // namespace FileTestSupport
