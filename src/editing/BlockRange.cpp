#include "editing/BlockRange.h"

#include "language/SourceBuffer.h"
#include "language/SourceControl.h"

#include <algorithm>
#include <utility>

BlockRange BlockRange::Read(const SourceControl& ctl) {
    BlockRange r;
    r.CaretColumn = ctl.CursorCol();
    r.CaretLine = ctl.CursorLine();
    r.HadSelection = ctl.HasSelection();
    if (r.HadSelection) {
        ctl.GetSelection(r.StartColumn, r.StartLine, r.EndColumn, r.EndLine);
    } else {
        r.StartColumn = r.EndColumn = r.CaretColumn;
        r.StartLine = r.EndLine = r.CaretLine;
        if (r.CaretColumn == 0)
            r.EndLine = r.CaretLine + 1;
    }
    if (r.EndLine < r.StartLine) {
        std::swap(r.StartLine, r.EndLine);
        std::swap(r.StartColumn, r.EndColumn);
        r.LinesSwapped = r.ColumnsSwapped = true;
    } else if (r.EndLine == r.StartLine && r.EndColumn < r.StartColumn) {
        std::swap(r.StartColumn, r.EndColumn);
        r.ColumnsSwapped = true;
    }
    return r;
}

void BlockRange::Shift(int32_t line, int32_t from, int32_t delta) {
    if (line == StartLine && StartColumn > from)
        StartColumn = std::max(0, StartColumn + delta);
    else if (line == EndLine && EndColumn > from)
        EndColumn = std::max(0, EndColumn + delta);
    if (line == CaretLine && CaretColumn > from)
        CaretColumn = std::max(0, CaretColumn + delta);
}

void BlockRange::Select(SourceControl& ctl) const {
    int32_t startColumn = StartColumn, startLine = StartLine;
    int32_t endColumn = EndColumn, endLine = EndLine;
    if (ColumnsSwapped)
        std::swap(startColumn, endColumn);
    if (LinesSwapped)
        std::swap(startLine, endLine);
    ctl.SetSelection(startColumn, startLine, endColumn, endLine);
}

int32_t BlockRange::LastLine(const SourceBuffer& buffer) const {
    return std::min(EndColumn == 0 ? EndLine - 1 : EndLine, buffer.NumLines() - 1);
}

void BlockRange::Finish(SourceBuffer& buffer, SourceControl& ctl) const {
    constexpr int32_t kRefreshFlags = 70;
    int32_t scanTo = EndLine;
    buffer.UpdateLines(StartLine, EndLine, scanTo);
    buffer.RefreshLines(kRefreshFlags, StartLine, EndLine, CaretColumn, CaretLine);
    if (HadSelection)
        Select(ctl);
}

void BlockRange::Insert(SourceBuffer& buffer, int32_t column, int32_t line, const QString& text) {
    if (text.isEmpty())
        return;
    int32_t endColumn = 0;
    int32_t endLine = 0;
    buffer.InsertText(column, line, text, 0, endColumn, endLine);
}
