#pragma once

#include <QKeySequence>
#include <QList>
#include <QPoint>
#include <QString>
#include <cstdint>
#include <memory>

class QMdiArea;
class QWidget;
class mvDocument;

// What the documents, their windows and the helpers below the shell need of the main
// window. The frame implements it and registers itself in ProcessState::Frame; without a
// frame (a command-line tool or a test) ProcessState::Frame is null and callers do without.
class IFrame {
public:
    virtual ~IFrame() = default;

    // The window that owns messages and dialogs.
    virtual QWidget* OwnerWindow() = 0;
    // The area document windows are added to.
    virtual QMdiArea* DocumentArea() = 0;
    virtual std::shared_ptr<mvDocument> ActiveDocument() const = 0;

    // Status panes 1 to 3: message, caret position, insert mode.
    virtual void SetPaneText(int pane, const QString& text) = 0;
    virtual void SetStatusText(const QString& text) { SetPaneText(1, text); }
    // The wait pointer, nested: every true is matched by a false.
    virtual void SetBusy(bool busy) = 0;
    // The enabled and checked state of the commands, from the active document.
    virtual void RefreshCommands() = 0;
    // The caption again, after the maximised document's title changed.
    virtual void RefreshCaption() = 0;

    // A document was added to the frame, or went; the panes of documents follow the count.
    virtual void DocumentAdded() = 0;
    virtual void DocumentRemoved() = 0;
    virtual void ShowDocumentPanes(bool visible) = 0;
    // The shortcuts of the frame's commands, which an editor must let through.
    virtual QList<QKeySequence> CommandKeys() const = 0;
    // The editor's context menu at `globalPos` for the word kind under it (a WordKind).
    virtual void ShowContextMenu(int16_t kind, const QPoint& globalPos) = 0;
    // Goto and open at the cursor, for the word a document window left in ContextWord.
    virtual void HandleGoto(const std::shared_ptr<mvDocument>& document, bool forceDialog) {
        (void)document;
        (void)forceDialog;
    }
    virtual void HandleOpen(const std::shared_ptr<mvDocument>& document) { (void)document; }
    // The compiler's output in the results window; empty text shows the last one again.
    virtual void ShowResults(const QString& text) { (void)text; }
};
