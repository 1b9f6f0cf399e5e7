#include "shell/EditCommands.h"

#include "documents/mvDocument.h"

// The commands go through the document, which owns the rules around each operation (Format
// scans every line first, so that lines never shown carry their flags).

void EditCommands::IndentBlock(const std::shared_ptr<mvDocument>& document, bool indent) {
    if (document)
        document->IndentBlock(indent);
}

void EditCommands::CommentBlock(const std::shared_ptr<mvDocument>& document, bool comment) {
    if (document)
        document->CommentBlock(comment);
}

void EditCommands::ToggleCase(const std::shared_ptr<mvDocument>& document) {
    if (document)
        document->ToggleCase();
}

void EditCommands::Format(const std::shared_ptr<mvDocument>& document) {
    if (document)
        document->Format();
}
