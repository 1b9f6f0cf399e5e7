#include "editing/WordKind.h"

namespace {

constexpr int32_t KindEnd = 0;
constexpr int32_t KindPlain = 1;
constexpr int32_t KindLabel = 2;
constexpr int32_t KindSeparator = 5;

struct Line {
    const QString& Text;
    std::vector<SourceToken> Tokens; // without the end token

    QString TextOf(size_t i) const { return Text.mid(Tokens[i].Start, Tokens[i].Length); }
};

// The token behind the name: the first of end, blanks or separator (or an opening
// parenthesis when asked), or the end of the line.
size_t nameEnd(const Line& line, size_t pointed, bool stopAtParen) {
    size_t i = pointed + 1;
    for (; i < line.Tokens.size(); ++i) {
        const int32_t kind = line.Tokens[i].Kind;
        if (kind == KindEnd || kind == KindPlain || kind == KindSeparator)
            break;
        if (stopAtParen && line.TextOf(i).startsWith(QLatin1Char('(')))
            break;
    }
    return i;
}

// Gathers the tokens in front of `end` back to blanks or the start of the line. `stop` is
// the index of the blanks, or -1 at the start of the line or at an opening parenthesis.
QString gatherBack(const Line& line, size_t end, bool parenEmpties, std::ptrdiff_t& stop) {
    QString gathered;
    stop = -1;
    for (std::ptrdiff_t i = static_cast<std::ptrdiff_t>(end) - 1; i >= 0; --i) {
        const auto at = static_cast<size_t>(i);
        if (line.Tokens[at].Kind == KindPlain) {
            stop = i;
            return gathered;
        }
        const QString text = line.TextOf(at);
        if (parenEmpties && text == QLatin1String("("))
            return QString();
        gathered.prepend(text);
    }
    return gathered;
}

// The word in front of the blanks at `blanks`, in upper case: the tokens back to the blanks
// before it, since the lexer may split a word like $INSERT in two.
QString upperBefore(const Line& line, std::ptrdiff_t blanks) {
    std::ptrdiff_t stop = -1;
    return blanks > 0 ? gatherBack(line, static_cast<size_t>(blanks), false, stop).toUpper()
                      : QString();
}

bool isIncludeWord(const QString& upper) {
    return upper == QLatin1String("$INCLUDE") || upper == QLatin1String("INCLUDE") ||
           upper == QLatin1String("$INSERT");
}

} // namespace

int16_t WordKind::Classify(const QString& text, const std::vector<SourceToken>& tokens,
                           int32_t column, QString& word) {
    Line line{text, {}};
    for (const SourceToken& token : tokens)
        if (token.Kind != KindEnd)
            line.Tokens.push_back(token);
    size_t pointed = line.Tokens.size();
    for (size_t i = 0; i < line.Tokens.size(); ++i)
        if (column >= line.Tokens[i].Start &&
            column < line.Tokens[i].Start + line.Tokens[i].Length) {
            pointed = i;
            break;
        }
    if (pointed == line.Tokens.size())
        return Nothing;

    const SourceToken& token = line.Tokens[pointed];
    if (token.Kind == KindLabel) {
        int32_t length = token.Length;
        if (length > 0 && text.at(token.Start + length - 1) == QLatin1Char(':'))
            --length;
        // A label standing first on its line is its own definition.
        if (text.left(token.Start).trimmed().isEmpty())
            return Nothing;
        word = text.mid(token.Start, length);
        return GotoTarget;
    }

    std::ptrdiff_t blanks = -1;
    if (text.contains(QLatin1String("CALL"), Qt::CaseInsensitive)) {
        const QString name = gatherBack(line, nameEnd(line, pointed, true), true, blanks);
        if (!name.isEmpty() && blanks >= 0 && upperBefore(line, blanks) == QLatin1String("CALL")) {
            word = name;
            return CallName;
        }
    }

    if (!text.contains(QLatin1String("$INSERT"), Qt::CaseInsensitive) &&
        !text.contains(QLatin1String("INCLUDE"), Qt::CaseInsensitive))
        return Nothing;
    const QString item = gatherBack(line, nameEnd(line, pointed, false), false, blanks);
    if (item.isEmpty() || blanks < 0)
        return Nothing;
    const QString before = upperBefore(line, blanks);
    if (isIncludeWord(before)) {
        word = item;
        return IncludeItem;
    }
    // The word before is a file name and the pointed word an item of it.
    if (blanks < 1)
        return Nothing;
    const QString file = gatherBack(line, static_cast<size_t>(blanks), false, blanks);
    if (file.isEmpty() || blanks < 0 || !isIncludeWord(upperBefore(line, blanks)))
        return Nothing;
    word = file + QLatin1Char(' ') + item;
    return IncludeItem;
}
