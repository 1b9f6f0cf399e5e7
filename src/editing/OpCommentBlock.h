#pragma once

#include "editing/BlockRange.h"
#include "language/ISourceOp.h"

#include <cstdint>
#include <memory>
#include <vector>

class Moriox;
class SourceControl;

// Puts a comment mark at the start of the selected lines, or the caret's line, or takes it
// away. Where the mark goes, and whether the indentation goes with it, follows the
// settings `Margin`, `IndentStar` and `IndentBang`. Each line keeps the column and count of
// what changed, a negative count for a `!`, so that undo puts back the very characters. The
// first run fixes the range and the settings it follows; a redo repeats exactly that.
class OpCommentBlock final : public ISourceOp {
public:
    // True comments, false uncomments.
    bool Comment = true;
    std::shared_ptr<SourceControl> Ctl;
    // The settings to follow; null means the program's own.
    const Moriox* Options = nullptr;

    void ISourceOp_DoOp(SourceBuffer& buffer) override;
    void ISourceOp_UndoOp(SourceBuffer& buffer) override;

private:
    void apply(SourceBuffer& buffer);
    void revert(SourceBuffer& buffer);

    struct Change {
        int32_t Column = 0;
        int32_t Count = 0;
    };
    BlockRange range_;
    // One per line from the start line on.
    std::vector<Change> changes_;
    bool ran_ = false;
    int32_t margin_ = 0;
    int16_t indentStar_ = 0;
    int16_t indentBang_ = 0;
};
