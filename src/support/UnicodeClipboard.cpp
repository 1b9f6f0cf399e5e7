#include "support/UnicodeClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

bool UnicodeClipboard::SetText(const QString& text) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard)
        return false;
    clipboard->clear();
    if (text.isEmpty())
        return true;
    clipboard->setText(text);
    return clipboard->text() == text;
}

bool UnicodeClipboard::TextAvailable() {
    const QClipboard* clipboard = QGuiApplication::clipboard();
    const QMimeData* data = clipboard ? clipboard->mimeData() : nullptr;
    return data && data->hasText();
}
