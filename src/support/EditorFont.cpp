#include "support/EditorFont.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QGuiApplication>

int EditorFont::fontId_ = -1;

bool EditorFont::Add(const QString& folder) {
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return false;
    const QString base = folder.isEmpty() ? QCoreApplication::applicationDirPath() : folder;
    const int id = QFontDatabase::addApplicationFont(base + QStringLiteral("/mvluconw.ttf"));
    if (id < 0)
        return false;
    if (QFontDatabase::applicationFontFamilies(id).isEmpty()) {
        QFontDatabase::removeApplicationFont(id);
        return false;
    }
    fontId_ = id;
    return true;
}

void EditorFont::Remove(bool& installed) {
    if (!installed)
        return;
    installed = false;
    if (fontId_ >= 0 && qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        QFontDatabase::removeApplicationFont(fontId_);
    fontId_ = -1;
}
