#pragma once

#include <memory>

class mvDocument;

// The commands that change a document's text as one undoable operation each.
class EditCommands {
public:
    // True shifts the selected lines right, false left.
    static void IndentBlock(const std::shared_ptr<mvDocument>& document, bool indent);
    static void CommentBlock(const std::shared_ptr<mvDocument>& document, bool comment);
    static void ToggleCase(const std::shared_ptr<mvDocument>& document);
    static void Format(const std::shared_ptr<mvDocument>& document);
};
