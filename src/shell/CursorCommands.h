#pragma once

#include <QString>
#include <memory>

class QWidget;
class mvDocument;

// Goto and open at the cursor: what the frame does with the word that a document window
// found under the mouse or the caret (the process's ContextWord).
class CursorCommands {
public:
    // The Goto dialog, or with NoGotoDialog on, a word and no forced dialog, straight to
    // the label; an unknown label then ends the command without a word.
    static void HandleGoto(const std::shared_ptr<mvDocument>& document, bool forceDialog,
                           QWidget* owner);
    // An open document of that file and item is activated; otherwise the browser comes up
    // filled in with it, and what it gives is opened and put on the recent list.
    static void HandleOpen(const std::shared_ptr<mvDocument>& document, QWidget* owner);

    // The file and the item that a word names: "FILE ITEM" (further fields ignored), or
    // the item alone, in the file `defaultFolder`.
    static void SplitWord(const QString& word, const QString& defaultFolder, QString& folder,
                          QString& itemID);
};
