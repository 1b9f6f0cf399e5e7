#include "shell/EditCommands.h"

#include "documents/mvDocument.h"
#include "editing/OpCommentBlock.h"
#include "editing/OpFormat.h"
#include "editing/OpIndentBlock.h"
#include "editing/OpToggleCase.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "language/SourceViewControl.h"
#include "support/BusyCursor.h"

namespace {

template <typename Op, typename Fill>
void run(const std::shared_ptr<mvDocument>& document, Fill&& fill) {
    SourceView* editor = document ? document->Editor() : nullptr;
    if (!editor)
        return;
    auto op = std::make_unique<Op>();
    op->Ctl = std::make_shared<SourceViewControl>(editor);
    fill(*op);
    editor->Buffer().ExecuteOp(std::move(op));
}

} // namespace

void EditCommands::IndentBlock(const std::shared_ptr<mvDocument>& document, bool indent) {
    run<OpIndentBlock>(document, [indent](OpIndentBlock& op) { op.Indent = indent; });
}

void EditCommands::CommentBlock(const std::shared_ptr<mvDocument>& document, bool comment) {
    run<OpCommentBlock>(document, [comment](OpCommentBlock& op) { op.Comment = comment; });
}

void EditCommands::ToggleCase(const std::shared_ptr<mvDocument>& document) {
    run<OpToggleCase>(document, [](OpToggleCase&) {});
}

void EditCommands::Format(const std::shared_ptr<mvDocument>& document) {
    const BusyCursor busy;
    run<OpFormat>(document, [](OpFormat&) {});
}
