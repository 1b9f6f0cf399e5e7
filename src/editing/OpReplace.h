#pragma once

#include "language/ISourceOp.h"

#include <QPointer>
#include <QString>
#include <cstdint>

class SourceView;

// Replaces a range of text by another text as one undoable step. The command fills the
// fields with the normalised range (start before end; an empty range inserts) and the
// replacement. Before the edit the operation keeps the range's former text, lines joined
// by CR LF; undo puts it back and selects it again in the direction it had.
class OpReplace final : public ISourceOp {
public:
    QPointer<SourceView> Ctl;
    int32_t StartColumn = 0;
    int32_t StartLine = 0;
    int32_t EndColumn = 0;
    int32_t EndLine = 0;
    QString Replacement;
    // The selection ran from the end back to the start.
    bool Reversed = false;

    void ISourceOp_DoOp(SourceBuffer& buffer) override;
    void ISourceOp_UndoOp(SourceBuffer& buffer) override;

    // The text of a range, lines joined by CR LF.
    static QString RangeText(const SourceBuffer& buffer, int32_t startColumn, int32_t startLine,
                             int32_t endColumn, int32_t endLine);

private:
    QString former_;
    int32_t newEndColumn_ = 0;
    int32_t newEndLine_ = 0;
};
