#include "language/PlainLex.h"

#include "language/SourceBuffer.h"

void PlainLex::ISourceLex4_BeginLineScan(SourceBuffer&, int32_t line, QStringView text, int32_t) {
    line_ = line;
    length_ = static_cast<int32_t>(text.size());
    scanIndex_ = 0;
}

void PlainLex::ISourceLex4_ScanToken(SourceToken& token) {
    token.Start = scanIndex_;
    if (scanIndex_ >= length_) {
        token.Kind = TokenKind::End;
        token.Length = 0;
        return;
    }
    token.Kind = TokenKind::Plain;
    token.Length = length_ - scanIndex_;
    scanIndex_ = length_;
}

void PlainLex::ISourceLex4_EndLineScan(SourceBuffer& buffer, bool& result) {
    buffer.SetLineData(line_, 1, 0);
    result = false;
}
