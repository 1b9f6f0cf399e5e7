#include "documents/ItemTextCodec.h"

#include "documents/ConnectionErrors.h"

namespace {

constexpr char16_t kMarkBase = 0xF800; // U+F8FC..U+F8FE stand for bytes 0xFC..0xFE

bool isMarkChar(char16_t c) {
    return c >= 0xF8FC && c <= 0xF8FE;
}

// Every LF has a CR in front of it, and there is at least one.
bool allCrLf(const QByteArray& bytes) {
    const char* p = bytes.constData();
    const qsizetype n = bytes.size();
    bool any = false;
    for (const char* lf = static_cast<const char*>(memchr(p, '\n', static_cast<size_t>(n)));
         lf != nullptr;
         lf = static_cast<const char*>(memchr(lf + 1, '\n', static_cast<size_t>(p + n - lf - 1)))) {
        if (lf == p || lf[-1] != '\r')
            return false;
        any = true;
    }
    return any;
}

} // namespace

ItemTextCodec::Charset ItemTextCodec::CharsetFromName(const QString& name, bool* known) {
    const QString n = name.trimmed().toLower().remove(QLatin1Char('-')).remove(QLatin1Char('_'));
    if (known)
        *known = true;
    if (n == QLatin1String("utf8"))
        return Charset::Utf8;
    if (n.isEmpty() || n == QLatin1String("latin1") || n == QLatin1String("iso88591"))
        return Charset::Latin1;
    if (known)
        *known = false;
    return Charset::Latin1;
}

void ItemTextCodec::decodeLatin1(const QByteArray& bytes, QString& out) const {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.constData());
    const qsizetype n = bytes.size();
    out.resize(n + (crlf_ ? 0 : bytes.count('\n')));
    QChar* o = out.data();
    for (qsizetype i = 0; i < n; ++i) {
        const unsigned char b = p[i];
        if (b == '\n') {
            if (!crlf_)
                *o++ = QLatin1Char('\r');
            *o++ = QLatin1Char('\n');
        } else if (b >= 0xFC && b <= 0xFE && rawMarks_) {
            *o++ = QChar(static_cast<char16_t>(kMarkBase + b));
        } else if (b == 0xEF && !rawMarks_ && i + 2 < n && p[i + 1] == 0xA3 && p[i + 2] >= 0xBC &&
                   p[i + 2] <= 0xBE) {
            *o++ = QChar(static_cast<char16_t>(kMarkBase + 0x40 + p[i + 2]));
            i += 2;
        } else {
            *o++ = QChar(static_cast<char16_t>(b));
        }
    }
    out.resize(o - out.data());
}

bool ItemTextCodec::decodeUtf8(const QByteArray& bytes, QString& out) const {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.constData());
    const qsizetype n = bytes.size();
    out.resize(n + (crlf_ ? 0 : bytes.count('\n')));
    QChar* o = out.data();
    qsizetype i = 0;
    while (i < n) {
        const unsigned char b = p[i];
        if (b < 0x80) {
            if (b == '\n' && !crlf_)
                *o++ = QLatin1Char('\r');
            *o++ = QChar(static_cast<char16_t>(b));
            ++i;
            continue;
        }
        if (b >= 0xFC && b <= 0xFE) {
            if (!rawMarks_)
                return false;
            *o++ = QChar(static_cast<char16_t>(kMarkBase + b));
            ++i;
            continue;
        }
        int length = 0;
        char32_t cp = 0;
        char32_t minimum = 0;
        if (b >= 0xC2 && b <= 0xDF) {
            length = 2, cp = b & 0x1F, minimum = 0x80;
        } else if (b >= 0xE0 && b <= 0xEF) {
            length = 3, cp = b & 0x0F, minimum = 0x800;
        } else if (b >= 0xF0 && b <= 0xF4) {
            length = 4, cp = b & 0x07, minimum = 0x10000;
        } else {
            return false;
        }
        if (i + length > n)
            return false;
        for (int k = 1; k < length; ++k) {
            const unsigned char c = p[i + k];
            if ((c & 0xC0) != 0x80)
                return false;
            cp = (cp << 6) | (c & 0x3F);
        }
        if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            return false;
        // With raw marks, a UTF-8 mark character would come back as a raw byte.
        if (rawMarks_ && isMarkChar(static_cast<char16_t>(cp)) && cp < 0x10000)
            return false;
        if (cp >= 0x10000) {
            *o++ = QChar(static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
            *o++ = QChar(static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
        } else {
            *o++ = QChar(static_cast<char16_t>(cp));
        }
        i += length;
    }
    out.resize(o - out.data());
    return true;
}

QString ItemTextCodec::Decode(const QByteArray& bytes) {
    crlf_ = allCrLf(bytes);
    fallback_ = false;
    QString out;
    if (charset_ == Charset::Utf8 && decodeUtf8(bytes, out))
        return out;
    fallback_ = charset_ == Charset::Utf8;
    decodeLatin1(bytes, out);
    return out;
}

QByteArray ItemTextCodec::Encode(const QString& text, const QString& what) const {
    const Charset charset = effectiveCharset();
    const QChar* t = text.constData();
    const qsizetype n = text.size();
    QByteArray out;
    // Room for the worst case: three bytes a character, or two for a line end.
    const bool mayGrow = charset == Charset::Utf8 || !rawMarks_ || crlf_;
    out.resize(mayGrow ? n * 3 + 4 : n + 4);
    auto* o = reinterpret_cast<unsigned char*>(out.data());
    auto fail = [&](qsizetype at, const QString& why) {
        const qsizetype line = QStringView(text).left(at).count(QLatin1Char('\n')) + 1;
        QString shown = QString(text.at(at));
        if (text.at(at).isHighSurrogate() && at + 1 < n)
            shown += text.at(at + 1);
        throw BrixError(
            ConnectionErrors::Unrepresentable,
            QStringLiteral("%1 can't be saved: the character \"%2\" (U+%3) on line %4 %5. "
                           "Nothing was written.")
                .arg(what, shown,
                     QStringLiteral("%1")
                         .arg(text.at(at).unicode(), 4, 16, QLatin1Char('0'))
                         .toUpper(),
                     QString::number(line), why));
    };
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = t[i].unicode();
        if (c == '\r') {
            if (i + 1 < n && t[i + 1].unicode() == '\n') {
                if (crlf_)
                    *o++ = '\r';
                *o++ = '\n';
                ++i;
            } else {
                *o++ = '\r';
            }
        } else if (c == '\n') {
            if (crlf_)
                *o++ = '\r';
            *o++ = '\n';
        } else if (c < 0x80) {
            *o++ = static_cast<unsigned char>(c);
        } else if (isMarkChar(c)) {
            if (rawMarks_) {
                *o++ = static_cast<unsigned char>(c - kMarkBase);
            } else {
                *o++ = 0xEF, *o++ = 0xA3, *o++ = static_cast<unsigned char>(c - kMarkBase - 0x40);
            }
        } else if (charset == Charset::Latin1) {
            if (c > 0xFF)
                fail(i, QStringLiteral("can't be stored in the character set ISO-8859-1"));
            if (rawMarks_ && c >= 0xFC && c <= 0xFE)
                fail(i, QStringLiteral("would be read back as a mark"));
            *o++ = static_cast<unsigned char>(c);
        } else if (c < 0x800) {
            *o++ = static_cast<unsigned char>(0xC0 | (c >> 6));
            *o++ = static_cast<unsigned char>(0x80 | (c & 0x3F));
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            if (c >= 0xDC00 || i + 1 >= n || !t[i + 1].isLowSurrogate())
                fail(i, QStringLiteral("is half of a surrogate pair"));
            const char32_t cp =
                0x10000 + ((char32_t(c) - 0xD800) << 10) + (t[i + 1].unicode() - 0xDC00);
            ++i;
            *o++ = static_cast<unsigned char>(0xF0 | (cp >> 18));
            *o++ = static_cast<unsigned char>(0x80 | ((cp >> 12) & 0x3F));
            *o++ = static_cast<unsigned char>(0x80 | ((cp >> 6) & 0x3F));
            *o++ = static_cast<unsigned char>(0x80 | (cp & 0x3F));
        } else {
            *o++ = static_cast<unsigned char>(0xE0 | (c >> 12));
            *o++ = static_cast<unsigned char>(0x80 | ((c >> 6) & 0x3F));
            *o++ = static_cast<unsigned char>(0x80 | (c & 0x3F));
        }
    }
    out.resize(reinterpret_cast<char*>(o) - out.data());
    return out;
}
