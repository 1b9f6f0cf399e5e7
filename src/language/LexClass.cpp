#include "language/LexClass.h"

#include "language/CaseFold.h"
#include "language/SourceBuffer.h"

#include <algorithm>
#include <array>

namespace {

// Clearing the end-of-line block flags leaves the high word alone.
constexpr int32_t kClearMask = static_cast<int32_t>(0xFFFF0000u) | LexClass::KeepMask;

bool startsStatement(int32_t lastKind) {
    return lastKind == 0 || lastKind == LexClass::RawLabel || lastKind == LexClass::RawSeparator;
}

} // namespace

LexClass::LexClass() : Keywords(std::make_shared<clsKeywords>()) {}

int32_t LexClass::ReportedKind(int32_t raw) {
    switch (raw) {
    case RawLabel:
        return TokenKind::Label;
    case RawGo:
        return TokenKind::Reserved;
    case RawSeparator:
        return TokenKind::Separator;
    case RawTargetComma:
        return TokenKind::Normal;
    case RawStringPart:
        return TokenKind::String;
    case RawCommentPart:
        return TokenKind::Comment;
    default:
        return raw;
    }
}

void LexClass::ISourceLex4_BeginLineScan(SourceBuffer& buffer, int32_t line, QStringView text,
                                         int32_t) {
    const int32_t length = std::max(buffer.GetLineLength(line), 0);
    lineText_ = text.first(std::min<qsizetype>(length, text.size()));
    lineNumber_ = line;
    lineLength_ = static_cast<int32_t>(lineText_.size());
    chars_ = lineText_.utf16();
    scanIndex_ = 0;
    parenDepth_ = 0;
    lineFlags_ = 0;
    lastKind_ = 0;
    stringDelimiter_ = 0;
    // Without a table only the letters begin and continue words.
    static constexpr auto kLettersAndDigits = [] {
        std::array<uint8_t, 128> classes{};
        for (char16_t c = 0; c < 128; ++c)
            classes[c] =
                static_cast<uint8_t>((CaseFold::IsAsciiLetter(c) ? clsKeywords::CharLetter : 0) |
                                     (CaseFold::IsAsciiDigit(c) ? clsKeywords::CharDigit : 0));
        return classes;
    }();
    table_ = Keywords.get();
    classes_ = table_ ? table_->AsciiClasses() : kLettersAndDigits.data();
}

void LexClass::ISourceLex4_EndLineScan(SourceBuffer& buffer, bool& result) {
    buffer.SetLineData(lineNumber_, 1, lineFlags_);
    result = false;
}

QString LexClass::ISourceLex4_GetDesiredCase(const QString&) {
    return {};
}

int32_t LexClass::ISourceLex4_GetProperties(int32_t& properties) {
    properties = 0;
    return 0;
}

char16_t LexClass::upperAt(int32_t i, bool fold) const {
    const char16_t c = at(i);
    return fold ? CaseFold::Upper(c) : c;
}

// Inlined into the line loop: a call per token costs as much as many a token.
[[gnu::always_inline]] inline int32_t LexClass::scan(int32_t& end) {
    const int32_t p = scanIndex_;
    const int32_t length = lineLength_;
    if (p >= length) {
        end = p;
        return TokenKind::End;
    }
    const char16_t c = at(p);
    if (c == kValueMark || c == kSubvalueMark) {
        end = p + 1;
        return c == kValueMark ? TokenKind::ValueMark : TokenKind::SubvalueMark;
    }
    if (!Highlight) {
        int32_t q = p;
        while (q < length && !isMark(q))
            ++q;
        end = q;
        return TokenKind::Plain;
    }
    if (lastKind_ == RawStringPart)
        return scanContinued(p, end, RawStringPart, TokenKind::String, true);
    if (lastKind_ == RawCommentPart)
        return scanContinued(p, end, RawCommentPart, TokenKind::Comment, false);
    if (c == u' ') {
        int32_t q = p;
        while (q < length && at(q) == u' ')
            ++q;
        end = q;
        return TokenKind::Plain;
    }
    if (startsStatement(lastKind_) && (c == u'!' || c == u'*')) {
        // Only at the start of a statement: elsewhere * multiplies.
        if (lastKind_ != RawSeparator)
            lineFlags_ |= FlagComment;
        int32_t q = p;
        while (q < length && !isMark(q))
            ++q;
        end = q;
        return q < length ? RawCommentPart : TokenKind::Comment;
    }
    if (parenDepth_ == 0 && c == u';') {
        end = p + 1;
        return RawSeparator;
    }
    lineFlags_ &= kClearMask;
    if (lastKind_ == 0 || lastKind_ == RawGo || lastKind_ == RawTargetComma) {
        int32_t kind = 0;
        if (scanLabel(p, end, kind))
            return kind;
    }
    if (c == u'"' || c == u'\'' || c == u'\\') {
        stringDelimiter_ = c;
        for (int32_t q = p + 1;; ++q) {
            if (q >= length) {
                end = q;
                return TokenKind::String;
            }
            const char16_t d = at(q);
            if (d == c) {
                end = q + 1;
                return TokenKind::String;
            }
            if (d == kValueMark || d == kSubvalueMark) {
                end = q;
                return RawStringPart;
            }
        }
    }
    if (c == u'(' || c == u')') {
        parenDepth_ = static_cast<int16_t>(parenDepth_ + (c == u'(' ? 1 : -1));
        end = p + 1;
        return TokenKind::Normal;
    }
    if (lastKind_ == TokenKind::Label && c == u',') {
        end = p + 1;
        return RawTargetComma;
    }
    if ((c == u'G' || c == u'g') && scanGo(p, end))
        return RawGo;
    return scanWord(p, end);
}

int32_t LexClass::scanContinued(int32_t p, int32_t& end, int32_t partKind, int32_t wholeKind,
                                bool closes) {
    for (int32_t q = p;;) {
        if (q >= lineLength_) {
            end = q;
            return wholeKind;
        }
        if (isMark(q)) {
            end = q;
            return partKind;
        }
        const char16_t c = at(q++);
        if (closes && c == stringDelimiter_) {
            end = q;
            return wholeKind;
        }
    }
}

bool LexClass::scanLabel(int32_t p, int32_t& end, int32_t& kind) {
    const char16_t c = at(p);
    const int32_t length = lineLength_;
    if (CaseFold::IsAsciiDigit(c)) {
        // A number at the start of a line is a label even without its colon.
        int32_t q = p;
        while (q < length && (CaseFold::IsAsciiDigit(at(q)) || at(q) == u'.'))
            ++q;
        if (at(q) == u':')
            ++q;
        end = q;
        kind = lastKind_ == 0 ? RawLabel : TokenKind::Label;
        return true;
    }
    if (!CaseFold::IsAsciiLetter(c))
        return false;
    int32_t q = p;
    while (q < length) {
        const char16_t d = at(q);
        if (!CaseFold::IsAsciiLetter(d) && !CaseFold::IsAsciiDigit(d) && d != u'$' && d != u'.' &&
            d != u'_')
            break;
        ++q;
    }
    if (lastKind_ != 0) {
        // A target of GO TO, GO SUB or a list of them.
        if (at(q) == u':')
            ++q;
        end = q;
        kind = TokenKind::Label;
        return true;
    }
    // At the start of a line a name is a label only with its colon, and X:=1 is no label.
    if (at(q) == u':' && at(q + 1) != u'=') {
        end = q + 1;
        kind = RawLabel;
        return true;
    }
    return false;
}

bool LexClass::scanGo(int32_t p, int32_t& end) {
    const bool fold = !(table_ && table_->CaseSensitive());
    if (upperAt(p, fold) != u'G' || upperAt(p + 1, fold) != u'O')
        return false;
    int32_t q = p + 2;
    while (q < lineLength_ && at(q) == u' ')
        ++q;
    // One blank is required behind TO and SUB.
    if (upperAt(q, fold) == u'T' && upperAt(q + 1, fold) == u'O' && at(q + 2) == u' ') {
        end = q + 3;
        return true;
    }
    if (upperAt(q, fold) == u'S' && upperAt(q + 1, fold) == u'U' && upperAt(q + 2, fold) == u'B' &&
        at(q + 3) == u' ') {
        end = q + 4;
        return true;
    }
    if (at(q - 1) == u' ') {
        end = q;
        return true;
    }
    return false;
}

int32_t LexClass::scanWord(int32_t p, int32_t& end) {
    const char16_t c = at(p);
    if (!isWordStart(c)) {
        end = p + 1;
        return TokenKind::Normal;
    }
    const bool firstChar = isFirstChar(c);
    int32_t q = p + 1;
    while (q < lineLength_ && isWordPart(chars_[q]))
        ++q;
    lineFlags_ &= kClearMask;
    const clsKeyword* entry = table_ ? table_->Item(lineText_.sliced(p, q - p)) : nullptr;
    if (!entry) {
        // @ID that isn't a word of the table is "@" and then the word ID.
        end = firstChar ? p + 1 : q;
        return TokenKind::Normal;
    }
    end = q;
    const int32_t block = entry->BlockFlags;
    const bool firstOnly = block == clsKeyword::BlockFor || block == clsKeyword::BlockLoop ||
                           block == clsKeyword::BlockOpenFirst;
    if (!firstOnly || startsStatement(lastKind_))
        lineFlags_ |= block;
    const int32_t listed = clsKeyword::TypeBlock | clsKeyword::TypeLanguage;
    return (entry->KeywordType & listed) ? TokenKind::Reserved : TokenKind::Keyword;
}

inline void LexClass::scanToken(SourceToken& token) {
    const int32_t start = scanIndex_;
    int32_t end = start;
    const int32_t raw = scan(end);
    // Spaces and marks leave LastKind alone, so what follows them still knows what stood
    // before.
    if (raw != TokenKind::Plain && raw != TokenKind::ValueMark && raw != TokenKind::SubvalueMark)
        lastKind_ = static_cast<int16_t>(raw);
    if (raw == RawLabel)
        lineFlags_ |= FlagLabel;
    token.Kind = ReportedKind(raw);
    token.Start = start;
    token.Length = end - start;
    scanIndex_ = end;
}

void LexClass::ISourceLex4_ScanToken(SourceToken& token) {
    scanToken(token);
}

void LexClass::ISourceLex4_ScanLine(SourceBuffer& buffer, int32_t line, QStringView text,
                                    std::vector<SourceToken>* tokens) {
    // The same calls as token by token, without a virtual call per token.
    scanLineBy(buffer, line, text, tokens, [this](SourceToken& t) { scanToken(t); });
}
