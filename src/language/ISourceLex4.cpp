#include "language/ISourceLex4.h"

void ISourceLex4::ISourceLex4_ScanLine(SourceBuffer& buffer, int32_t line, QStringView text,
                                       std::vector<SourceToken>* tokens) {
    scanLineBy(buffer, line, text, tokens, [this](SourceToken& t) { ISourceLex4_ScanToken(t); });
}
