#include "shell/KeyboardFilter.h"

#include "documents/mvDocument.h"
#include "language/SourceView.h"
#include "shell/EditCommands.h"
#include "shell/frmMain.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>

namespace {
QPointer<KeyboardFilter> installed;
int useCount = 0;
} // namespace

KeyboardFilter::KeyboardFilter(frmMain& frame) : QObject(&frame), frame_(&frame) {}

void KeyboardFilter::Install(frmMain& frame) {
    if (useCount++ == 0 || !installed) {
        installed = new KeyboardFilter(frame);
        qApp->installEventFilter(installed);
    }
}

void KeyboardFilter::Remove() {
    if (--useCount < 1) {
        useCount = 0;
        delete installed.data();
    }
}

bool KeyboardFilter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return QObject::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_Tab && key->key() != Qt::Key_Backtab)
        return false;
    if (!frame_ || !frame_->isActiveWindow())
        return false;
    return handleTab(key);
}

bool KeyboardFilter::handleTab(QKeyEvent* event) {
    const bool pressed = event->type() == QEvent::KeyPress;
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const bool shift = (modifiers & Qt::ShiftModifier) || event->key() == Qt::Key_Backtab;
    if (modifiers & Qt::ControlModifier) {
        // Posted, so that the switch happens after this key is done with.
        if (pressed)
            QMetaObject::invokeMethod(
                frame_,
                [frame = frame_, shift] {
                    if (frame)
                        frame->NextDocument(shift);
                },
                Qt::QueuedConnection);
        return true;
    }
    if (modifiers & Qt::AltModifier)
        return false;
    const auto document = frame_->ActiveDocument();
    SourceView* editor = document ? document->Editor() : nullptr;
    if (!editor || QApplication::focusWidget() != editor)
        return false;
    int32_t startColumn = 0, startLine = 0, endColumn = 0, endLine = 0;
    editor->GetSelection(startColumn, startLine, endColumn, endLine);
    if (editor->HasSelection() && startLine != endLine) {
        if (pressed)
            EditCommands::IndentBlock(document, !shift);
        return true;
    }
    if (shift) {
        if (pressed) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_Backspace, Qt::NoModifier);
            QKeyEvent release(QEvent::KeyRelease, Qt::Key_Backspace, Qt::NoModifier);
            QApplication::sendEvent(editor, &press);
            QApplication::sendEvent(editor, &release);
        }
        return true;
    }
    return false;
}
