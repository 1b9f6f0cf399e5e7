#pragma once

#include "language/ISourceOp.h"

#include <QPointer>
#include <QString>
#include <cstdint>
#include <vector>

class SourceView;

// Replaces a range of text by another text as one undoable step. The command fills the
// fields with the normalised range (start before end; an empty range inserts) and the
// replacement. Before the edit the operation keeps the range's former text, lines joined
// by CR LF; undo puts it back and selects it again in the direction it had.
//
// Replace All fills Matches instead: every match is replaced in its line, and one undo
// puts all of them back, with the caret and the selection as they were.
class OpReplace final : public ISourceOp {
public:
    // A match within one line, columns in code units.
    struct Match {
        int32_t Column = 0;
        int32_t Line = 0;
        int32_t Length = 0;
    };

    QPointer<SourceView> Ctl;
    int32_t StartColumn = 0;
    int32_t StartLine = 0;
    int32_t EndColumn = 0;
    int32_t EndLine = 0;
    QString Replacement;
    // The selection ran from the end back to the start.
    bool Reversed = false;
    // Top to bottom, left to right, not overlapping. The replacement is then one line.
    std::vector<Match> Matches;

    void ISourceOp_DoOp(SourceBuffer& buffer) override;
    void ISourceOp_UndoOp(SourceBuffer& buffer) override;

    // The text of a range, lines joined by CR LF.
    static QString RangeText(const SourceBuffer& buffer, int32_t startColumn, int32_t startLine,
                             int32_t endColumn, int32_t endLine);

private:
    void replaceMatches(SourceBuffer& buffer);
    void restoreMatches(SourceBuffer& buffer);
    // Scans the lines that hold matches, one run of neighbouring lines at a time.
    void updateMatchLines(SourceBuffer& buffer) const;
    // A place of the text before the replace, moved to where it stands after it.
    void moveOver(int32_t& column, int32_t line) const;

    QString former_;
    std::vector<QString> formers_;
    std::vector<int32_t> newColumns_;
    // The selection as anchor and caret before the replace.
    bool keptSelection_ = false;
    int32_t anchorColumn_ = 0, anchorLine_ = 0, caretColumn_ = 0, caretLine_ = 0;
    int32_t newEndColumn_ = 0;
    int32_t newEndLine_ = 0;
};
