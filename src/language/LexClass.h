#pragma once

#include "language/ISourceLex4.h"
#include "language/clsKeywords.h"

#include <QStringView>
#include <cstdint>
#include <memory>

// The scanner of MultiValue BASIC. The buffer calls it one line at a time; it reports the
// tokens of the line and leaves the line's flags in data word 1, which the formatter reads
// to find block levels. Nothing carries over from one line to the next.
class LexClass final : public ISourceLex4 {
public:
    // Kinds that only the scanner sees: they tell the following tokens what stood before,
    // and are reported as ordinary kinds.
    enum RawKind : int16_t {
        RawLabel = 100,       // statement label at the start of the line; reported as 2
        RawGo = 101,          // GO TO or GO SUB word; reported as 10
        RawSeparator = 102,   // statement separator; reported as 5
        RawTargetComma = 103, // comma in a list of targets; reported as 8
        RawStringPart = 104,  // string interrupted by a mark; reported as 7
        RawCommentPart = 105, // comment interrupted by a mark; reported as 6
    };

    // Line flags besides the block flags of the keywords.
    static constexpr int32_t FlagComment = 0x10000;
    static constexpr int32_t FlagLabel = 0x20000;
    // What a token that isn't a space, mark, comment or separator keeps of the low word:
    // THEN, ELSE, LOCKED and an open-if-last word count only as a line's last token.
    static constexpr int32_t KeepMask = 0x7C7F;

    LexClass();

    // False reports every line as plain text and marks, with flags 0.
    bool Highlight = true;
    // The table words are looked up in; a new default table until the owner sets the
    // shared one.
    std::shared_ptr<clsKeywords> Keywords;

    void ISourceLex4_BeginLineScan(SourceBuffer& buffer, int32_t line, QStringView text,
                                   int32_t reserved) override;
    void ISourceLex4_EndLineScan(SourceBuffer& buffer, bool& result) override;
    QString ISourceLex4_GetDesiredCase(const QString& text) override;
    void ISourceLex4_GetLineIndex(int32_t& index) override { index = scanIndex_; }
    int32_t ISourceLex4_GetProperties(int32_t& properties) override;
    void ISourceLex4_ScanToken(SourceToken& token) override;
    void ISourceLex4_SetLineIndex(int32_t index) override { scanIndex_ = index; }
    void ISourceLex4_ScanLine(SourceBuffer& buffer, int32_t line, QStringView text,
                              std::vector<SourceToken>* tokens) override;

    // Scan state of the current line, for those who look inside.
    int16_t LastKind() const { return lastKind_; }
    int16_t ParenDepth() const { return parenDepth_; }
    int32_t LineFlags() const { return lineFlags_; }

    // The kind a raw kind is reported as.
    static int32_t ReportedKind(int32_t raw);

private:
    char16_t at(int32_t i) const {
        return static_cast<uint32_t>(i) < static_cast<uint32_t>(lineLength_) ? chars_[i]
                                                                             : char16_t(0);
    }
    char16_t upperAt(int32_t i, bool fold) const;
    bool isMark(int32_t i) const {
        const char16_t c = at(i);
        return c == kValueMark || c == kSubvalueMark;
    }
    void scanToken(SourceToken& token);
    // The raw kind of the token that starts at scanIndex_; `end` becomes where it ends.
    int32_t scan(int32_t& end);
    int32_t scanContinued(int32_t p, int32_t& end, int32_t partKind, int32_t wholeKind,
                          bool closes);
    bool scanLabel(int32_t p, int32_t& end, int32_t& kind);
    bool scanGo(int32_t p, int32_t& end);
    int32_t scanWord(int32_t p, int32_t& end);

    bool isFirstChar(char16_t c) const {
        return c < 128 ? (classes_[c] & clsKeywords::CharFirst) != 0
                       : table_ && table_->IsFirstChar(c);
    }
    // A letter A to Z or a to z, or a first character.
    bool isWordStart(char16_t c) const {
        return c < 128 ? (classes_[c] & (clsKeywords::CharFirst | clsKeywords::CharLetter)) != 0
                       : table_ && table_->IsFirstChar(c);
    }
    // A letter, a digit or a next character.
    bool isWordPart(char16_t c) const {
        constexpr uint8_t part =
            clsKeywords::CharNext | clsKeywords::CharLetter | clsKeywords::CharDigit;
        return c < 128 ? (classes_[c] & part) != 0 : table_ && table_->IsNextChar(c);
    }

    static constexpr char16_t kValueMark = 29;
    static constexpr char16_t kSubvalueMark = 28;

    QStringView lineText_;
    const char16_t* chars_ = nullptr;
    int32_t lineNumber_ = 0;
    int32_t lineLength_ = 0;
    int32_t scanIndex_ = 0;
    int16_t parenDepth_ = 0;
    int32_t lineFlags_ = 0;
    int16_t lastKind_ = 0;
    char16_t stringDelimiter_ = 0;
    // The table of this line's scan and its character classes, taken at its start.
    const clsKeywords* table_ = nullptr;
    const uint8_t* classes_ = nullptr;
};
