#include "documents/CommandOutput.h"

namespace {

constexpr char kEscape = '\x1b';

// The length of the control sequence at `at` (which holds ESC).
qsizetype sequenceLength(const QByteArray& text, qsizetype at) {
    qsizetype i = at + 1;
    if (i >= text.size())
        return 1;
    const char kind = text.at(i);
    if (kind == '[') {
        // CSI: parameter and intermediate bytes, then one final byte.
        for (++i; i < text.size(); ++i) {
            const auto c = static_cast<unsigned char>(text.at(i));
            if (c >= 0x40 && c <= 0x7e)
                return i + 1 - at;
            if (c < 0x20 || c > 0x3f)
                return i - at;
        }
        return i - at;
    }
    if (kind == ']') {
        // OSC: up to BEL or ESC backslash.
        for (++i; i < text.size(); ++i) {
            if (text.at(i) == '\a')
                return i + 1 - at;
            if (text.at(i) == kEscape)
                return i + (i + 1 < text.size() && text.at(i + 1) == '\\' ? 2 : 0) - at;
        }
        return i - at;
    }
    return 2;
}

} // namespace

QStringList CommandOutput::Prepare(const QStringList& commandLine, const QString& command) {
    // 32767 lines is the deepest page QM takes; others take it too.
    QStringList line{QStringLiteral("env"), QStringLiteral("TERM=dumb"),
                     QStringLiteral("LINES=32767")};
    line << commandLine << command;
    return line;
}

QString CommandOutput::Clean(const QByteArray& output, ItemTextCodec::Charset charset) {
    QByteArray text;
    text.reserve(output.size() + output.size() / 16);
    for (qsizetype i = 0; i < output.size(); ++i) {
        const char c = output.at(i);
        if (c == kEscape) {
            i += sequenceLength(output, i) - 1;
            continue;
        }
        if (c == '\n' && (text.isEmpty() || text.back() != '\r'))
            text += '\r';
        text += c;
    }
    return charset == ItemTextCodec::Charset::Utf8 ? QString::fromUtf8(text)
                                                   : QString::fromLatin1(text);
}
