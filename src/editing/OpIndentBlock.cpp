#include "editing/OpIndentBlock.h"

#include "language/SourceBuffer.h"
#include "language/SourceControl.h"

#include <algorithm>

void OpIndentBlock::ISourceOp_DoOp(SourceBuffer& buffer) {
    shift(buffer);
}

void OpIndentBlock::ISourceOp_UndoOp(SourceBuffer& buffer) {
    unshift(buffer);
}

void OpIndentBlock::shift(SourceBuffer& buffer) {
    if (!Ctl)
        return;
    if (!ran_) {
        range_ = BlockRange::Read(*Ctl);
        step_ = std::max(Ctl->TabSize(), 0);
        ran_ = true;
    }
    taken_.clear();
    BlockRange moved = range_;
    const QString spaces(step_, QLatin1Char(' '));
    const int32_t last = range_.LastLine(buffer);
    for (int32_t line = range_.StartLine; line <= last; ++line) {
        if (Indent) {
            BlockRange::Insert(buffer, 0, line, spaces);
            moved.Shift(line, 0, step_);
            continue;
        }
        const QString text = buffer.GetLine(line);
        const int32_t n = std::min(step_, static_cast<int32_t>(text.size()));
        int32_t removed = 0;
        while (removed < n && text.at(removed) == QLatin1Char(' '))
            ++removed;
        if (removed > 0)
            buffer.DeleteText(0, line, removed, line);
        if (removed != step_)
            taken_.push_back({line, removed});
        moved.Shift(line, -1, -removed);
    }
    moved.Finish(buffer, *Ctl);
}

void OpIndentBlock::unshift(SourceBuffer& buffer) {
    if (!Ctl)
        return;
    auto next = taken_.cbegin();
    const int32_t last = range_.LastLine(buffer);
    for (int32_t line = range_.StartLine; line <= last; ++line) {
        if (Indent) {
            buffer.DeleteText(0, line, step_, line);
            continue;
        }
        int32_t count = step_;
        if (next != taken_.cend() && next->Line == line)
            count = (next++)->Count;
        BlockRange::Insert(buffer, 0, line, QString(count, QLatin1Char(' ')));
    }
    range_.Finish(buffer, *Ctl);
}
