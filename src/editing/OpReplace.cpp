#include "editing/OpReplace.h"

#include "language/SourceBuffer.h"
#include "language/SourceView.h"

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
