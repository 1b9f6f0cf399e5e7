#include "editing/OpFormat.h"

#include "app/ProcessState.h"
#include "language/CaseFold.h"
#include "language/LexClass.h"
#include "language/SourceBuffer.h"
#include "language/SourceControl.h"
#include "settings/Moriox.h"
#include "support/BusyCursor.h"

#include <QString>
#include <algorithm>
#include <array>

namespace {

constexpr int32_t kRefreshFlags = 70;

bool has(int32_t flags, int32_t bits) {
    return (flags & bits) != 0;
}

// Runs of blanks, shared: most lines want one of a few short ones.
class Blanks {
public:
    const QString& Of(int32_t count) {
        if (count >= static_cast<int32_t>(cache_.size()))
            return other_ = QString(count, QLatin1Char(' '));
        QString& blanks = cache_[static_cast<size_t>(count)];
        if (blanks.size() != count)
            blanks = QString(count, QLatin1Char(' '));
        return blanks;
    }

private:
    std::array<QString, 128> cache_;
    QString other_;
};

bool isLabelChar(char16_t c) {
    return CaseFold::IsAsciiLetter(c) || CaseFold::IsAsciiDigit(c) || c == u'$' || c == u'.' ||
           c == u'_';
}

} // namespace

void OpFormat::LevelChange(int32_t f, int32_t& before, int32_t& after) {
    using K = clsKeyword;
    before = 0;
    after = 0;
    if (has(f, K::BlockFor)) {
        if (!has(f, K::BlockNext))
            after = 1;
    } else if (has(f, K::BlockNext)) {
        before = 1;
    }
    if (has(f, K::BlockThen | K::BlockElse | K::BlockLocked)) {
        after = 1;
        if (has(f, K::BlockEnd))
            before = 1;
    } else if (has(f, K::BlockEnd) && !has(f, K::BlockCase)) {
        before = 1;
    }
    if (has(f, K::BlockLoop)) {
        if (!has(f, K::BlockRepeat))
            after = 1;
    } else if (has(f, K::BlockRepeat)) {
        before = 1;
    } else if (has(f, K::BlockUntil) && !has(f, K::BlockFor)) {
        before = 1;
        after = 1;
    }
    if (has(f, K::BlockBegin) && has(f, K::BlockCase)) {
        after = 2;
    } else if (has(f, K::BlockCase) && has(f, K::BlockEnd)) {
        before = 2;
    } else if (has(f, K::BlockCase)) {
        before = 1;
        after = 1;
    }
    if (has(f, K::BlockOpen | K::BlockOpenFirst | K::BlockOpenLast)) {
        after = 1;
    } else if (has(f, K::BlockClose)) {
        before = 1;
    } else if (has(f, K::BlockMiddle)) {
        before = 1;
        after = 1;
    }
}

void OpFormat::ISourceOp_DoOp(SourceBuffer& buffer) {
    if (!ran_) {
        hadSelection_ = false;
        if (Ctl) {
            caretColumn_ = Ctl->CursorCol();
            caretLine_ = Ctl->CursorLine();
            hadSelection_ = Ctl->HasSelection();
            if (hadSelection_)
                Ctl->GetSelection(anchorColumn_, anchorLine_, caretColumn_, caretLine_);
        }
        const Moriox& settings = Options ? *Options : Settings();
        tabSize_ = std::max<int32_t>(settings.TabSize, 0);
        margin_ = std::max<int32_t>(settings.Margin, 0);
        indentStar_ = settings.IndentStar;
        indentBang_ = settings.IndentBang;
        ran_ = true;
    }
    records_.assign(static_cast<size_t>(buffer.NumLines()), LineRecord{});
    FormatLines(buffer, tabSize_, margin_, indentStar_, indentBang_);
    finish(buffer, caretColumn_, caretLine_);
}

void OpFormat::FormatLines(SourceBuffer& buffer, int32_t tabSize, int32_t margin,
                           int32_t indentStar, int32_t indentBang) {
    const BusyCursor busy;
    Blanks blanks;
    int32_t level = 0;
    const int32_t count = std::min(buffer.NumLines(), static_cast<int32_t>(records_.size()));
    for (int32_t i = 0; i < count; ++i) {
        const int32_t f = buffer.GetLineData(i, 1);
        int32_t before = 0;
        int32_t after = 0;
        LevelChange(f, before, after);

        const QString text = buffer.GetLine(i);
        const QChar* chars = text.constData();
        const auto at = [&](int32_t k) { return chars[k].unicode(); };
        // Only character 32 is a blank here: a tab is text.
        auto length = static_cast<int32_t>(text.size());
        int32_t trail = 0;
        while (length > 0 && at(length - 1) == u' ') {
            --length;
            ++trail;
        }
        int32_t lead = 0;
        while (lead < length && at(lead) == u' ')
            ++lead;

        int32_t labelLength = 0;
        int32_t gap = 0;
        if (!has(f, LexClass::FlagLabel)) {
            gap = lead;
            lead = 0;
        } else {
            int32_t p = lead;
            if (p < length && CaseFold::IsAsciiDigit(at(p))) {
                while (p < length && (CaseFold::IsAsciiDigit(at(p)) || at(p) == u'.'))
                    ++p;
            } else {
                while (p < length && isLabelChar(at(p)))
                    ++p;
            }
            if (p < length && at(p) == u':')
                ++p;
            labelLength = p - lead;
            while (p + gap < length && at(p + gap) == u' ')
                ++gap;
        }

        const int32_t indent = std::max(level - before, 0);
        int32_t column = 0;
        if (lead + labelLength + gap >= length) {
            // Nothing behind the label, or an empty line.
            gap = 0;
        } else {
            int32_t steps = indent;
            int32_t left = margin;
            if (has(f, LexClass::FlagComment)) {
                const char16_t mark = at(lead + labelLength + gap);
                const int32_t mode = mark == u'*' ? indentStar : mark == u'!' ? indentBang : 1;
                if (mode != 1)
                    steps = 0;
                if (mode == 2)
                    left = 0;
            }
            column = tabSize * steps + left;
            if (labelLength != 0)
                column = column > labelLength ? column - labelLength : 1;
        }
        const int32_t change = column - gap;

        if (trail != 0)
            buffer.DeleteText(length, i, length + trail, i);
        if (lead != 0)
            buffer.DeleteText(0, i, lead, i);
        if (change < 0) {
            buffer.DeleteText(labelLength, i, labelLength - change, i);
        } else if (change > 0) {
            int32_t endColumn = 0;
            int32_t endLine = 0;
            buffer.InsertText(labelLength, i, blanks.Of(change), 0, endColumn, endLine);
        }
        records_[static_cast<size_t>(i)] = {lead, labelLength, change, trail};
        level = indent + after;
    }
}

void OpFormat::ISourceOp_UndoOp(SourceBuffer& buffer) {
    Blanks blanks;
    const int32_t count = std::min(buffer.NumLines(), static_cast<int32_t>(records_.size()));
    int32_t endColumn = 0;
    int32_t endLine = 0;
    for (int32_t i = 0; i < count; ++i) {
        const LineRecord& r = records_[static_cast<size_t>(i)];
        if (r.GapChange > 0)
            buffer.DeleteText(r.LabelLength, i, r.LabelLength + r.GapChange, i);
        else if (r.GapChange < 0)
            buffer.InsertText(r.LabelLength, i, blanks.Of(-r.GapChange), 0, endColumn, endLine);
        if (r.LeadRemoved != 0)
            buffer.InsertText(0, i, blanks.Of(r.LeadRemoved), 0, endColumn, endLine);
        if (r.TrailRemoved != 0)
            buffer.InsertText(buffer.GetLineLength(i), i, blanks.Of(r.TrailRemoved), 0, endColumn,
                              endLine);
    }
    finish(buffer, caretColumn_, caretLine_);
    if (hadSelection_ && Ctl)
        Ctl->SetSelection(anchorColumn_, anchorLine_, caretColumn_, caretLine_);
}

void OpFormat::finish(SourceBuffer& buffer, int32_t column, int32_t line) {
    column = std::min(column, buffer.GetLineLength(line));
    const int32_t lastLine = buffer.NumLines() - 1;
    int32_t scanTo = lastLine;
    buffer.UpdateLines(0, 0, scanTo);
    buffer.RefreshLines(kRefreshFlags, 0, lastLine, column, line);
}
