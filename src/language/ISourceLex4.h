#pragma once

#include <QString>
#include <QStringView>
#include <cstdint>
#include <vector>

class SourceBuffer;

// One token of a line: kind, zero-based start and length in 16-bit code units.
struct SourceToken {
    int32_t Kind = 0;
    int32_t Start = 0;
    int32_t Length = 0;
};

// The line scanner a buffer calls, one line at a time: BeginLineScan, ScanToken until it
// gives kind 0, EndLineScan. No state crosses a line.
class ISourceLex4 {
public:
    virtual ~ISourceLex4() = default;
    // `text` stays valid until EndLineScan returns.
    virtual void ISourceLex4_BeginLineScan(SourceBuffer& buffer, int32_t line, QStringView text,
                                           int32_t reserved) = 0;
    // A false result means no other line needs scanning because of this one.
    virtual void ISourceLex4_EndLineScan(SourceBuffer& buffer, bool& result) = 0;
    virtual QString ISourceLex4_GetDesiredCase(const QString& text) = 0;
    virtual void ISourceLex4_GetLineIndex(int32_t& index) = 0;
    virtual int32_t ISourceLex4_GetProperties(int32_t& properties) = 0;
    virtual void ISourceLex4_ScanToken(SourceToken& token) = 0;
    virtual void ISourceLex4_SetLineIndex(int32_t index) = 0;

    // One whole line in the order above: its tokens into `tokens` when given, its flags
    // stored by EndLineScan. A scanner may answer it in one go; buffers scan through it.
    virtual void ISourceLex4_ScanLine(SourceBuffer& buffer, int32_t line, QStringView text,
                                      std::vector<SourceToken>* tokens);

protected:
    // The loop of ScanLine around a way to take one token.
    template <typename ScanToken>
    void scanLineBy(SourceBuffer& buffer, int32_t line, QStringView text,
                    std::vector<SourceToken>* tokens, ScanToken&& scanToken);
};

namespace TokenKind {
constexpr int32_t End = 0;
constexpr int32_t Plain = 1;
constexpr int32_t Label = 2;
constexpr int32_t Keyword = 4;
constexpr int32_t Separator = 5;
constexpr int32_t Comment = 6;
constexpr int32_t String = 7;
constexpr int32_t Normal = 8;
constexpr int32_t Reserved = 10;
constexpr int32_t ValueMark = 1001;
constexpr int32_t SubvalueMark = 1002;
} // namespace TokenKind

template <typename ScanToken>
void ISourceLex4::scanLineBy(SourceBuffer& buffer, int32_t line, QStringView text,
                             std::vector<SourceToken>* tokens, ScanToken&& scanToken) {
    ISourceLex4_BeginLineScan(buffer, line, text, 0);
    SourceToken token;
    // A scanner that stops moving must not hang the editor: no line has more tokens than
    // characters.
    for (qsizetype guard = 0; guard <= text.size() + 1; ++guard) {
        scanToken(token);
        if (token.Kind == TokenKind::End || token.Length <= 0)
            break;
        if (tokens)
            tokens->push_back(token);
    }
    bool rescanOthers = false;
    ISourceLex4_EndLineScan(buffer, rescanOthers);
}
