#include "editing/TextFormatter.h"

#include "editing/OpFormat.h"
#include "language/LexClass.h"
#include "language/LineBuffer.h"
#include "language/clsKeywords.h"
#include "settings/Moriox.h"

#include <vector>

namespace {

// Bytes of a line that isn't UTF-8 become the characters of the same number, except the
// two raw marks, which become the editor's marks, and the two bytes that are the editor's
// marks themselves, which go to private characters so that the way back stays one to one.
constexpr unsigned char kRawValueMark = 0xFD;
constexpr unsigned char kRawSubvalueMark = 0xFC;
constexpr char16_t kValueMark = 29;
constexpr char16_t kSubvalueMark = 28;
constexpr char16_t kPrivateBase = 0xE000;

bool isAscii(QByteArrayView bytes) {
    for (const char c : bytes)
        if (static_cast<unsigned char>(c) >= 0x80)
            return false;
    return true;
}

} // namespace

TextFormatter::TextFormatter(const Moriox& settings)
    : settings_(settings), lex_(std::make_shared<LexClass>()) {
    lex_->Keywords = KeywordsOf(settings);
    lex_->Highlight = true;
}

TextFormatter::~TextFormatter() = default;

std::shared_ptr<clsKeywords> TextFormatter::KeywordsOf(const Moriox& settings) {
    return settings.Keywords;
}

QString TextFormatter::Decode(QByteArrayView line, bool& bytewise) {
    bytewise = false;
    if (isAscii(line))
        return QString::fromLatin1(line);
    QString text = QString::fromUtf8(line);
    // Valid UTF-8 is exactly what comes back out of its decoding.
    if (text.toUtf8() == line)
        return text;
    bytewise = true;
    text.resize(line.size());
    QChar* out = text.data();
    for (qsizetype i = 0; i < line.size(); ++i) {
        const auto b = static_cast<unsigned char>(line[i]);
        char16_t c = b;
        if (b == kRawValueMark)
            c = kValueMark;
        else if (b == kRawSubvalueMark)
            c = kSubvalueMark;
        else if (b == kValueMark || b == kSubvalueMark)
            c = static_cast<char16_t>(kPrivateBase + b);
        out[i] = QChar(c);
    }
    return text;
}

QByteArray TextFormatter::Encode(const QString& line, bool bytewise) {
    if (!bytewise)
        return line.toUtf8();
    QByteArray bytes(line.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < line.size(); ++i) {
        const char16_t c = line.at(i).unicode();
        unsigned char b = static_cast<unsigned char>(c);
        if (c == kValueMark)
            b = kRawValueMark;
        else if (c == kSubvalueMark)
            b = kRawSubvalueMark;
        else if (c == kPrivateBase + kValueMark || c == kPrivateBase + kSubvalueMark)
            b = static_cast<unsigned char>(c - kPrivateBase);
        bytes[i] = static_cast<char>(b);
    }
    return bytes;
}

QByteArray TextFormatter::Format(const QByteArray& bytes) const {
    // The lines and how each ended: LF, CR LF, or nothing for the last.
    std::vector<QString> lines;
    std::vector<QByteArrayView> ends;
    std::vector<bool> bytewise;
    const QByteArrayView all(bytes);
    qsizetype from = 0;
    for (;;) {
        const qsizetype lf = all.indexOf('\n', from);
        qsizetype stop = lf < 0 ? all.size() : lf;
        QByteArrayView end = lf < 0 ? QByteArrayView() : all.sliced(lf, 1);
        if (lf >= 0 && stop > from && all[stop - 1] == '\r') {
            --stop;
            end = all.sliced(stop, 2);
        }
        bool raw = false;
        lines.push_back(Decode(all.sliced(from, stop - from), raw));
        bytewise.push_back(raw);
        ends.push_back(end);
        if (lf < 0)
            break;
        from = lf + 1;
    }

    LineBuffer buffer;
    buffer.SetLex(lex_);
    buffer.SetLines(std::move(lines));
    int32_t scanTo = buffer.NumLines() - 1;
    buffer.UpdateLines(0, scanTo, scanTo);
    auto op = std::make_unique<OpFormat>();
    op->Ctl = buffer.Control();
    op->Options = &settings_;
    buffer.ExecuteOp(std::move(op));

    QByteArray out;
    out.reserve(bytes.size() + bytes.size() / 8);
    for (int32_t i = 0; i < buffer.NumLines(); ++i) {
        const auto index = static_cast<size_t>(i);
        out += Encode(buffer.LineText(i), bytewise[index]);
        out += ends[index];
    }
    return out;
}
