#include "editing/OpCommentBlock.h"

#include "app/ProcessState.h"
#include "language/SourceBuffer.h"
#include "language/SourceControl.h"
#include "settings/Moriox.h"

#include <algorithm>

namespace {

int32_t leadingSpaces(const QString& text) {
    int32_t n = 0;
    while (n < text.size() && text.at(n) == QLatin1Char(' '))
        ++n;
    return n;
}

} // namespace

void OpCommentBlock::ISourceOp_DoOp(SourceBuffer& buffer) {
    apply(buffer);
}

void OpCommentBlock::ISourceOp_UndoOp(SourceBuffer& buffer) {
    revert(buffer);
}

void OpCommentBlock::apply(SourceBuffer& buffer) {
    if (!Ctl)
        return;
    if (!ran_) {
        const Moriox& settings = Options ? *Options : Settings();
        margin_ = std::max<int32_t>(settings.Margin, 0);
        indentStar_ = settings.IndentStar;
        indentBang_ = settings.IndentBang;
        range_ = BlockRange::Read(*Ctl);
        ran_ = true;
    }
    const int32_t last = range_.LastLine(buffer);
    changes_.assign(static_cast<size_t>(std::max(last - range_.StartLine + 1, 0)), Change{});
    BlockRange moved = range_;
    for (int32_t line = range_.StartLine; line <= last; ++line) {
        Change& change = changes_[static_cast<size_t>(line - range_.StartLine)];
        const QString text = buffer.GetLine(line);
        const int32_t lead = leadingSpaces(text);
        if (Comment) {
            QString mark = QStringLiteral("*");
            if (indentStar_ == 1)
                change.Column = lead;
            else if (indentStar_ != 2)
                mark.prepend(QString(margin_, QLatin1Char(' ')));
            change.Count = static_cast<int32_t>(mark.size());
            BlockRange::Insert(buffer, change.Column, line, mark);
            moved.Shift(line, 0, 1);
            continue;
        }
        if (lead >= text.size())
            continue;
        const QChar mark = text.at(lead);
        int16_t mode = 0;
        if (mark == QLatin1Char('*'))
            mode = indentStar_;
        else if (mark == QLatin1Char('!'))
            mode = indentBang_;
        else
            continue;
        // With the mark at the margin the indentation belongs to it and goes too.
        change.Column = mode == 1 || mode == 2 ? lead : 0;
        change.Count = lead - change.Column + 1;
        buffer.DeleteText(change.Column, line, change.Column + change.Count, line);
        if (mark == QLatin1Char('!'))
            change.Count = -change.Count;
        moved.Shift(line, lead, -1);
    }
    moved.Finish(buffer, *Ctl);
}

void OpCommentBlock::revert(SourceBuffer& buffer) {
    if (!Ctl)
        return;
    const int32_t last = range_.LastLine(buffer);
    for (int32_t line = range_.StartLine; line <= last; ++line) {
        const auto index = static_cast<size_t>(line - range_.StartLine);
        if (index >= changes_.size())
            break;
        const Change& change = changes_[index];
        if (change.Count == 0)
            continue;
        if (Comment) {
            buffer.DeleteText(change.Column, line, change.Column + change.Count, line);
            continue;
        }
        const int32_t spaces = std::abs(change.Count) - 1;
        const QChar mark = change.Count > 0 ? QLatin1Char('*') : QLatin1Char('!');
        BlockRange::Insert(buffer, change.Column, line, QString(spaces, QLatin1Char(' ')) + mark);
    }
    range_.Finish(buffer, *Ctl);
}
