#pragma once

#include <QString>
#include <cstdint>

// The source line that a double-click on the compiler's output points at: the selected
// number when one is selected, else the first number to the right of the click on the same
// line, else the nearest number to its left. 0 when there is none.
class ResultsLineNumber {
public:
    // `selectionStart` counts from 0 in `text`.
    static int32_t Find(const QString& text, int32_t selectionStart, const QString& selectedText);
    // The decimal number at the start of `text` after leading blanks; 0 without one.
    static int32_t NumericPrefix(QStringView text);
};
