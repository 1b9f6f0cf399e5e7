#include "language/ISourceLex4.h"

void ISourceLex4::ISourceLex4_ScanLine(SourceBuffer& buffer, int32_t line, QStringView text,
                                       std::vector<SourceToken>* tokens) {
    ISourceLex4_BeginLineScan(buffer, line, text, 0);
    SourceToken token;
    // A scanner that stops moving must not hang the editor: no line has more tokens than
    // characters.
    for (qsizetype guard = 0; guard <= text.size() + 1; ++guard) {
        ISourceLex4_ScanToken(token);
        if (token.Kind == TokenKind::End || token.Length <= 0)
            break;
        if (tokens)
            tokens->push_back(token);
    }
    bool rescanOthers = false;
    ISourceLex4_EndLineScan(buffer, rescanOthers);
}
