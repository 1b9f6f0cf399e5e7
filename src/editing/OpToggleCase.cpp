#include "editing/OpToggleCase.h"

#include "editing/OpReplace.h"
#include "language/CaseFold.h"
#include "language/SourceBuffer.h"
#include "language/SourceControl.h"

namespace {

// Case is changed one code unit at a time, so that no text grows or shrinks.
char16_t upper(char16_t c) {
    return CaseFold::Upper(c);
}

char16_t lower(char16_t c) {
    if (c < 0x80)
        return (c >= u'A' && c <= u'Z') ? static_cast<char16_t>(c + 32) : c;
    return QChar(c).toLower().unicode();
}

bool isWordChar(char16_t c) {
    if (c < 0x80)
        return CaseFold::IsAsciiLetter(c) || CaseFold::IsAsciiDigit(c);
    return QChar(c).isLetterOrNumber();
}

template <typename Fn> QString mapped(QStringView text, Fn fn) {
    QString out(text.size(), Qt::Uninitialized);
    QChar* to = out.data();
    for (qsizetype i = 0; i < text.size(); ++i)
        to[i] = QChar(fn(text[i].unicode()));
    return out;
}

enum class Mode { Open, Upper, Lower, Proper };

// What the first letters of the code say: all upper goes to lower, all lower to proper,
// anything else to upper. Without letters nothing is decided yet.
Mode decide(QStringView sample) {
    constexpr qsizetype kSampleLength = 80;
    sample = sample.left(kSampleLength);
    const QString up = mapped(sample, upper);
    const QString down = mapped(sample, lower);
    if (up == down)
        return Mode::Open;
    if (sample == up)
        return Mode::Lower;
    if (sample == down)
        return Mode::Proper;
    return Mode::Upper;
}

QString convert(QStringView code, Mode mode) {
    switch (mode) {
    case Mode::Upper:
        return mapped(code, upper);
    case Mode::Lower:
        return mapped(code, lower);
    case Mode::Proper:
        return OpToggleCase::ProperCase(code);
    case Mode::Open:
        break;
    }
    return code.toString();
}

// The next place of a character at or behind `from`, remembered while it lies ahead, so that
// a long text is searched once for each kind of quote.
struct NextOf {
    char16_t Wanted;
    qsizetype At = -2;
    qsizetype Find(const QString& text, qsizetype from) {
        if (At != -1 && At < from)
            At = text.indexOf(QChar(Wanted), from);
        return At;
    }
};

} // namespace

QString OpToggleCase::ProperCase(QStringView text) {
    QString out(text.size(), Qt::Uninitialized);
    QChar* to = out.data();
    bool inWord = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        to[i] = QChar(inWord ? lower(c) : upper(c));
        inWord = isWordChar(c);
    }
    return out;
}

QString OpToggleCase::Convert(const QString& text, bool& changed) {
    changed = false;
    QString out;
    out.reserve(text.size());
    Mode mode = Mode::Open;
    NextOf doubleQuote{u'"'};
    NextOf singleQuote{u'\''};
    NextOf lineEnd{u'\r'};
    const qsizetype size = text.size();
    qsizetype pos = 0;
    while (pos < size) {
        const qsizetype dq = doubleQuote.Find(text, pos);
        const qsizetype sq = singleQuote.Find(text, pos);
        qsizetype quote = dq < 0 ? sq : (sq < 0 ? dq : std::min(dq, sq));
        const qsizetype codeEnd = quote < 0 ? size : quote;
        const QStringView code = QStringView(text).mid(pos, codeEnd - pos);
        if (mode == Mode::Open)
            mode = decide(code);
        const QString converted = convert(code, mode);
        changed = changed || converted != code;
        out += converted;
        if (quote < 0)
            break;
        const QChar delimiter = text.at(quote);
        const qsizetype close = text.indexOf(delimiter, quote + 1);
        const qsizetype cr = lineEnd.Find(text, quote + 1);
        if (cr >= 0 && (close < 0 || cr < close)) {
            // Unterminated on its line: only the quote is skipped, the rest is code.
            out += delimiter;
            pos = quote + 1;
            continue;
        }
        const qsizetype end = close < 0 ? size : close + 1;
        out += QStringView(text).mid(quote, end - quote);
        pos = end;
    }
    return out;
}

void OpToggleCase::replaceRange(SourceBuffer& buffer, const QString& text) {
    buffer.DeleteText(range_.StartColumn, range_.StartLine, range_.EndColumn, range_.EndLine);
    BlockRange::Insert(buffer, range_.StartColumn, range_.StartLine, text);
    range_.Finish(buffer, *Ctl);
}

void OpToggleCase::ISourceOp_DoOp(SourceBuffer& buffer) {
    kept_.clear();
    if (!Ctl)
        return;
    if (!ran_) {
        range_ = BlockRange::Read(*Ctl);
        ran_ = true;
    }
    if (!range_.HadSelection)
        return;
    const QString text = OpReplace::RangeText(buffer, range_.StartColumn, range_.StartLine,
                                              range_.EndColumn, range_.EndLine);
    bool changed = false;
    const QString converted = Convert(text, changed);
    if (!changed)
        return;
    kept_ = text;
    replaceRange(buffer, converted);
}

void OpToggleCase::ISourceOp_UndoOp(SourceBuffer& buffer) {
    if (kept_.isEmpty() || !Ctl)
        return;
    replaceRange(buffer, kept_);
}
