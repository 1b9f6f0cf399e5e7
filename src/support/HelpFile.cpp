#include "support/HelpFile.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

QString HelpFile::ProgramFolder() {
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    return QFileInfo(QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath())
        .absolutePath();
}

QString HelpFile::Locate(const QString& programFolder, const QString& name) {
    const QString candidates[] = {
        programFolder + QStringLiteral("/../share/doc/brix/manual/") + name,
        programFolder + QStringLiteral("/manual/") + name,
    };
    for (const QString& candidate : candidates)
        if (QFileInfo(candidate).isFile())
            return QFileInfo(candidate).canonicalFilePath();
    return QDir::cleanPath(programFolder + QLatin1Char('/') + name);
}

bool HelpFile::Open(const QString& path) {
    if (path.isEmpty() || !QFileInfo(path).isFile())
        return false;
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}
