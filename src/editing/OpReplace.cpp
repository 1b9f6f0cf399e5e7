#include "editing/OpReplace.h"

#include "language/SourceBuffer.h"
#include "language/SourceView.h"

#include <algorithm>

namespace {
constexpr int32_t kRefreshFlags = 70;
}

QString OpReplace::RangeText(const SourceBuffer& buffer, int32_t startColumn, int32_t startLine,
                             int32_t endColumn, int32_t endLine) {
    if (startLine == endLine)
        return buffer.GetLine(startLine).mid(startColumn, std::max(0, endColumn - startColumn));
    QString text = buffer.GetLine(startLine).mid(startColumn);
    for (int32_t line = startLine + 1; line < endLine; ++line)
        text += QStringLiteral("\r\n") + buffer.GetLine(line);
    return text + QStringLiteral("\r\n") + buffer.GetLine(endLine).left(endColumn);
}

void OpReplace::ISourceOp_DoOp(SourceBuffer& buffer) {
    if (!Matches.empty()) {
        replaceMatches(buffer);
        return;
    }
    former_ = RangeText(buffer, StartColumn, StartLine, EndColumn, EndLine);
    buffer.DeleteText(StartColumn, StartLine, EndColumn, EndLine);
    newEndColumn_ = StartColumn;
    newEndLine_ = StartLine;
    if (!Replacement.isEmpty())
        buffer.InsertText(StartColumn, StartLine, Replacement, 0, newEndColumn_, newEndLine_);
    int32_t scanTo = newEndLine_;
    buffer.UpdateLines(StartLine, newEndLine_, scanTo);
    buffer.RefreshLines(kRefreshFlags, StartLine, newEndLine_, newEndColumn_, newEndLine_);
}

void OpReplace::ISourceOp_UndoOp(SourceBuffer& buffer) {
    if (!Matches.empty()) {
        restoreMatches(buffer);
        return;
    }
    buffer.DeleteText(StartColumn, StartLine, newEndColumn_, newEndLine_);
    int32_t endColumn = StartColumn;
    int32_t endLine = StartLine;
    if (!former_.isEmpty())
        buffer.InsertText(StartColumn, StartLine, former_, 0, endColumn, endLine);
    int32_t scanTo = endLine;
    buffer.UpdateLines(StartLine, endLine, scanTo);
    buffer.RefreshLines(kRefreshFlags, StartLine, endLine, endColumn, endLine);
    if (Ctl && (endColumn != StartColumn || endLine != StartLine)) {
        if (Reversed)
            Ctl->SetSelection(endColumn, endLine, StartColumn, StartLine);
        else
            Ctl->SetSelection(StartColumn, StartLine, endColumn, endLine);
    }
}

void OpReplace::replaceMatches(SourceBuffer& buffer) {
    const bool first = formers_.empty();
    if (first && Ctl) {
        Ctl->GetSelection(anchorColumn_, anchorLine_, caretColumn_, caretLine_);
        keptSelection_ = Ctl->HasSelection();
    }
    formers_.resize(Matches.size());
    newColumns_.resize(Matches.size());
    const auto replacementLength = static_cast<int32_t>(Replacement.size());
    int32_t line = -1;
    int32_t shift = 0;
    QString lineText;
    for (size_t i = 0; i < Matches.size(); ++i) {
        const Match& match = Matches[i];
        if (match.Line != line) {
            line = match.Line;
            shift = 0;
            if (first)
                lineText = buffer.GetLine(line);
        }
        if (first)
            formers_[i] = lineText.mid(match.Column, match.Length);
        const int32_t column = match.Column + shift;
        buffer.DeleteText(column, line, column + match.Length, line);
        if (replacementLength > 0) {
            int32_t endColumn = 0;
            int32_t endLine = 0;
            buffer.InsertText(column, line, Replacement, 0, endColumn, endLine);
        }
        newColumns_[i] = column;
        shift += replacementLength - match.Length;
    }
    updateMatchLines(buffer);
    int32_t anchorColumn = anchorColumn_;
    int32_t caretColumn = caretColumn_;
    moveOver(anchorColumn, anchorLine_);
    moveOver(caretColumn, caretLine_);
    buffer.RefreshLines(kRefreshFlags, Matches.front().Line, Matches.back().Line, caretColumn,
                        caretLine_);
    if (Ctl && keptSelection_)
        Ctl->SetSelection(anchorColumn, anchorLine_, caretColumn, caretLine_);
}

void OpReplace::restoreMatches(SourceBuffer& buffer) {
    const auto replacementLength = static_cast<int32_t>(Replacement.size());
    int32_t line = -1;
    int32_t shift = 0;
    for (size_t i = 0; i < Matches.size(); ++i) {
        if (Matches[i].Line != line) {
            line = Matches[i].Line;
            shift = 0;
        }
        const int32_t column = newColumns_[i] + shift;
        buffer.DeleteText(column, line, column + replacementLength, line);
        if (!formers_[i].isEmpty()) {
            int32_t endColumn = 0;
            int32_t endLine = 0;
            buffer.InsertText(column, line, formers_[i], 0, endColumn, endLine);
        }
        shift += static_cast<int32_t>(formers_[i].size()) - replacementLength;
    }
    updateMatchLines(buffer);
    buffer.RefreshLines(kRefreshFlags, Matches.front().Line, Matches.back().Line, caretColumn_,
                        caretLine_);
    if (Ctl && keptSelection_)
        Ctl->SetSelection(anchorColumn_, anchorLine_, caretColumn_, caretLine_);
}

void OpReplace::updateMatchLines(SourceBuffer& buffer) const {
    size_t i = 0;
    while (i < Matches.size()) {
        const int32_t first = Matches[i].Line;
        int32_t last = first;
        while (i < Matches.size() && Matches[i].Line <= last + 1)
            last = Matches[i++].Line;
        int32_t scanTo = last;
        buffer.UpdateLines(first, last, scanTo);
    }
}

void OpReplace::moveOver(int32_t& column, int32_t line) const {
    auto it = std::lower_bound(Matches.begin(), Matches.end(), line,
                               [](const Match& match, int32_t l) { return match.Line < l; });
    const auto replacementLength = static_cast<int32_t>(Replacement.size());
    const int32_t original = column;
    int32_t shift = 0;
    for (; it != Matches.end() && it->Line == line && it->Column < original; ++it) {
        // A place inside a match goes to the start of its replacement.
        if (it->Column + it->Length > original) {
            column = it->Column + shift;
            return;
        }
        shift += replacementLength - it->Length;
    }
    column = original + shift;
}
