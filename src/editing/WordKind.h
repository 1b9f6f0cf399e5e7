#pragma once

#include "language/ISourceLex4.h"

#include <QString>
#include <cstdint>
#include <vector>

// What stands at a column of a line, judged on the line's tokens as the lexer reported them:
// a label to go to, the subroutine of a CALL, or an include item.
class WordKind {
public:
    enum Kind : int16_t { Nothing = 0, GotoTarget = 1, CallName = 2, IncludeItem = 3 };

    // `word` is set for the kinds other than Nothing and left alone otherwise.
    static int16_t Classify(const QString& text, const std::vector<SourceToken>& tokens,
                            int32_t column, QString& word);
};
