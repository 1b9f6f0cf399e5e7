#pragma once

#include "editing/BlockRange.h"
#include "language/ISourceOp.h"

#include <cstdint>
#include <memory>
#include <vector>

class SourceControl;

// Shifts the selected lines, or the caret's line, one indent step right or left. A left
// shift takes only spaces, at most one step; the lines that couldn't give a full step are
// kept with what they gave, so that undo puts back exactly that. The first run fixes the
// range and the step; a redo repeats exactly that, whatever the caret or the step are then.
class OpIndentBlock final : public ISourceOp {
public:
    // True shifts right, false left.
    bool Indent = true;
    std::shared_ptr<SourceControl> Ctl;

    void ISourceOp_DoOp(SourceBuffer& buffer) override;
    void ISourceOp_UndoOp(SourceBuffer& buffer) override;

private:
    void shift(SourceBuffer& buffer);
    void unshift(SourceBuffer& buffer);

    struct Taken {
        int32_t Line;
        int32_t Count;
    };
    BlockRange range_;
    int32_t step_ = 0;
    std::vector<Taken> taken_;
    bool ran_ = false;
};
