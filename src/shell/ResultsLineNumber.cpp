#include "shell/ResultsLineNumber.h"

#include <algorithm>
#include <limits>

namespace {

bool isLineEnd(QChar c) {
    return c == QLatin1Char('\r') || c == QLatin1Char('\n');
}

bool isDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

} // namespace

int32_t ResultsLineNumber::NumericPrefix(QStringView text) {
    qsizetype i = 0;
    while (i < text.size() && (text[i] == QLatin1Char(' ') || text[i] == QLatin1Char('\t')))
        ++i;
    int64_t value = 0;
    for (; i < text.size() && isDigit(text[i]); ++i) {
        value = value * 10 + (text[i].unicode() - u'0');
        if (value > std::numeric_limits<int32_t>::max())
            return 0;
    }
    return static_cast<int32_t>(value);
}

int32_t ResultsLineNumber::Find(const QString& text, int32_t selectionStart,
                                const QString& selectedText) {
    int32_t line = NumericPrefix(selectedText);
    if (line > 0)
        return line;
    const qsizetype start = std::clamp<qsizetype>(selectionStart, 0, text.size());

    // Forward from the selection to the end of its line: the first run of digits.
    for (qsizetype i = start; i < text.size(); ++i) {
        if (isLineEnd(text[i]))
            break;
        if (isDigit(text[i])) {
            line = NumericPrefix(QStringView(text).mid(i));
            break;
        }
    }
    if (line > 0)
        return line;

    // Backward from just before the selection: the digits nearest to the left.
    bool digitSeen = false;
    qsizetype i = start - 1;
    for (; i >= 0; --i) {
        const QChar c = text[i];
        if (isLineEnd(c))
            break;
        if (isDigit(c))
            digitSeen = true;
        else if (digitSeen)
            break;
    }
    if (!digitSeen)
        return 0;
    // Before the first character the walk reached the start of the text.
    return NumericPrefix(QStringView(text).mid(i + 1));
}
