#include "documents/ItemTextCodec.h"

#include "documents/ConnectionErrors.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>
#include <vector>

namespace {

constexpr char16_t kMarkBase = 0xF800; // U+F8FC..U+F8FE stand for bytes 0xFC..0xFE

bool isMarkChar(char32_t c) {
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

// The length of the UTF-8 character at `p` (0 when the bytes start none), and its code.
int utf8Sequence(const unsigned char* p, qsizetype left, char32_t& cp) {
    const unsigned char b = p[0];
    int length = 0;
    char32_t minimum = 0;
    if (b >= 0xC2 && b <= 0xDF)
        length = 2, cp = b & 0x1F, minimum = 0x80;
    else if (b >= 0xE0 && b <= 0xEF)
        length = 3, cp = b & 0x0F, minimum = 0x800;
    else if (b >= 0xF0 && b <= 0xF4)
        length = 4, cp = b & 0x07, minimum = 0x10000;
    else
        return 0;
    if (length > left)
        return 0;
    for (int k = 1; k < length; ++k) {
        if ((p[k] & 0xC0) != 0x80)
            return 0;
        cp = (cp << 6) | (p[k] & 0x3F);
    }
    if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        return 0;
    return length;
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

void ItemTextCodec::decodeUtf8(const QByteArray& bytes, QString& out) {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.constData());
    const qsizetype n = bytes.size();
    const bool rawRead = rawMarks_ || bothMarkForms_;
    bool sawRaw = false;
    bool sawUtf8 = false;
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
        if (b >= 0xFC && b <= 0xFE && rawRead) {
            *o++ = QChar(static_cast<char16_t>(kMarkBase + b));
            sawRaw = true;
            ++i;
            continue;
        }
        char32_t cp = 0;
        const int length = utf8Sequence(p + i, n - i, cp);
        // With raw marks only, a UTF-8 mark would come back as a raw byte: it isn't one.
        if (length > 0 && !(isMarkChar(cp) && rawMarks_ && !bothMarkForms_)) {
            multiByte_ = true;
            sawUtf8 = sawUtf8 || isMarkChar(cp);
            if (cp >= 0x10000) {
                *o++ = QChar(static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
                *o++ = QChar(static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
            } else {
                *o++ = QChar(static_cast<char16_t>(cp));
            }
            i += length;
            continue;
        }
        // A byte that starts no character reads as Latin-1, and its stretch with it.
        fallback_ = true;
        *o++ = QChar(static_cast<char16_t>(b));
        ++i;
    }
    out.resize(o - out.data());
    settleMarkForm(sawRaw, sawUtf8);
}

void ItemTextCodec::AcceptBothMarkForms(bool rawForUnmarked) {
    bothMarkForms_ = true;
    rawForUnmarked_ = rawForUnmarked;
    rawMarks_ = rawForUnmarked;
}

void ItemTextCodec::settleMarkForm(bool sawRaw, bool sawUtf8) {
    if (bothMarkForms_)
        rawMarks_ = sawRaw || (!sawUtf8 && rawForUnmarked_);
}

QString ItemTextCodec::Decode(const QByteArray& bytes) {
    crlf_ = allCrLf(bytes);
    fallback_ = multiByte_ = false;
    singleByteLines_.clear();
    QString out;
    if (charset_ == Charset::Utf8)
        decodeUtf8(bytes, out);
    else
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

namespace {

// Output with room made as it grows: the hot loop checks one pointer.
class ByteWriter {
public:
    explicit ByteWriter(qsizetype expected) {
        out_.resize(std::max<qsizetype>(expected, 64));
        o_ = out_.data();
        end_ = o_ + out_.size();
    }
    void Room(qsizetype bytes) {
        if (end_ - o_ >= bytes)
            return;
        const qsizetype used = o_ - out_.data();
        out_.resize(std::max(out_.size() * 2, used + bytes + 64));
        o_ = out_.data() + used;
        end_ = out_.data() + out_.size();
    }
    void Put(char c) { *o_++ = c; }
    void Put(const char* bytes, qsizetype count) {
        Room(count);
        std::memcpy(o_, bytes, static_cast<size_t>(count));
        o_ += count;
    }
    void PutLatin1(unsigned char b) {
        *o_++ = static_cast<char>(0xC0 | (b >> 6));
        *o_++ = static_cast<char>(0x80 | (b & 0x3F));
    }
    qsizetype Size() const { return o_ - out_.constData(); }
    const char* At(qsizetype offset) const { return out_.constData() + offset; }
    QByteArray Take() {
        out_.truncate(Size());
        return std::move(out_);
    }

private:
    QByteArray out_;
    char* o_ = nullptr;
    char* end_ = nullptr;
};

constexpr char kLoneCrUtf8[] = "\xEF\xA0\x8D";

} // namespace

QByteArray ItemTextCodec::DecodeForEditor(const QByteArray& bytes, int tabBlanks) {
    crlf_ = allCrLf(bytes);
    fallback_ = multiByte_ = false;
    singleByteLines_.clear();
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.constData());
    const qsizetype n = bytes.size();
    const bool rawRead = rawMarks_ || bothMarkForms_;
    const bool utf8 = charset_ == Charset::Utf8;
    bool sawRaw = false;
    bool sawUtf8 = false;
    tabBlanks = std::max(tabBlanks, 1);
    ByteWriter out(n + n / 16);
    const QByteArray blanks(tabBlanks, ' ');
    qsizetype lineIn = 0;
    qsizetype lineOut = 0;
    bool lineSingle = false;
    std::vector<bool> keptLine;
    std::unordered_set<std::string> ambiguous;
    // A line whose bytes the editor's form can't give back (tabs, bytes 28 and 29, Latin-1
    // stretches inside UTF-8) remembers them, to be written as they were while unchanged.
    auto endLine = [&](qsizetype inEnd) {
        keptLine.push_back(lineSingle);
        if (lineSingle) {
            std::string editorLine(out.At(lineOut), static_cast<size_t>(out.Size() - lineOut));
            std::string original(bytes.constData() + lineIn, static_cast<size_t>(inEnd - lineIn));
            const auto [at, added] = singleByteLines_.emplace(editorLine, original);
            if (!added && at->second != original)
                ambiguous.insert(std::move(editorLine));
        }
        lineSingle = false;
    };
    qsizetype i = 0;
    while (i < n) {
        // Plain text goes over a run at a time.
        qsizetype run = i;
        while (run < n && p[run] >= 0x20 && p[run] < 0x80)
            ++run;
        if (run > i) {
            out.Put(reinterpret_cast<const char*>(p + i), run - i);
            i = run;
            if (i >= n)
                break;
        }
        out.Room(8);
        const unsigned char b = p[i];
        if (b < 0x80) {
            if (b == '\n' || (b == '\r' && crlf_ && i + 1 < n && p[i + 1] == '\n')) {
                endLine(i);
                i += b == '\r' ? 2 : 1;
                out.Put('\n');
                lineIn = i;
                lineOut = out.Size();
                continue;
            }
            if (b == '\r') {
                out.Put(kLoneCrUtf8, 3);
            } else if (b == '\t') {
                out.Put(blanks.constData(), tabBlanks);
                lineSingle = true;
            } else {
                lineSingle = lineSingle || b == 0x1C || b == 0x1D;
                out.Put(static_cast<char>(b));
            }
            ++i;
            continue;
        }
        if (b >= 0xFC && b <= 0xFE && rawRead) {
            sawRaw = true;
            if (b == 0xFE)
                out.Put("\xEF\xA3\xBE", 3);
            else
                out.Put(b == 0xFD ? '\x1D' : '\x1C');
            ++i;
            continue;
        }
        if (!utf8) {
            out.PutLatin1(b);
            ++i;
            continue;
        }
        char32_t cp = 0;
        const int length = utf8Sequence(p + i, n - i, cp);
        const bool foreignMark = isMarkChar(cp) && rawMarks_ && !bothMarkForms_;
        if (length > 0 && !foreignMark && cp != LoneCr) {
            multiByte_ = true;
            sawUtf8 = sawUtf8 || isMarkChar(cp);
            if (cp == 0xF8FD || cp == 0xF8FC)
                out.Put(cp == 0xF8FD ? '\x1D' : '\x1C');
            else
                out.Put(reinterpret_cast<const char*>(p + i), length);
            i += length;
            continue;
        }
        fallback_ = true;
        lineSingle = true;
        out.PutLatin1(b);
        ++i;
    }
    endLine(n);
    settleMarkForm(sawRaw, sawUtf8);
    QByteArray text = out.Take();
    forgetAmbiguousLines(text, keptLine, ambiguous);
    return text;
}

void ItemTextCodec::forgetAmbiguousLines(const QByteArray& text, const std::vector<bool>& kept,
                                         std::unordered_set<std::string>& ambiguous) {
    if (singleByteLines_.empty())
        return;
    // A line that reads the same as a kept one but came from other bytes: neither can tell
    // which bytes it stands for, so both are written from the editor's form.
    const std::string_view all(text.constData(), static_cast<size_t>(text.size()));
    size_t start = 0;
    for (size_t line = 0; start <= all.size(); ++line) {
        const size_t end = std::min(all.find('\n', start), all.size());
        if (line >= kept.size() || !kept[line]) {
            const std::string editorLine(all.substr(start, end - start));
            if (singleByteLines_.count(editorLine))
                ambiguous.insert(editorLine);
        }
        start = end + 1;
    }
    for (const std::string& line : ambiguous)
        singleByteLines_.erase(line);
}

void ItemTextCodec::failAt(std::string_view text, size_t at, char32_t cp, const QString& what,
                           const QString& why) const {
    const qsizetype line = std::count(text.begin(), text.begin() + at, '\n') + 1;
    throw BrixError(ConnectionErrors::Unrepresentable,
                    QStringLiteral("%1 can't be saved: the character \"%2\" (U+%3) on line %4 %5. "
                                   "Nothing was written.")
                        .arg(what, QString::fromUcs4(&cp, 1),
                             QStringLiteral("%1").arg(uint(cp), 4, 16, QLatin1Char('0')).toUpper(),
                             QString::number(line), why));
}

QByteArray ItemTextCodec::EncodeFromEditor(std::string_view text, const QString& what) const {
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const size_t n = text.size();
    const bool latin1 = effectiveCharset() == Charset::Latin1;
    const bool raw = writeRawMarks();
    ByteWriter out(static_cast<qsizetype>(n + n / 32 + 16));
    size_t i = 0;
    while (i < n) {
        const void* lf = std::memchr(p + i, '\n', n - i);
        const size_t lineEnd = lf ? static_cast<const unsigned char*>(lf) - p : n;
        if (!singleByteLines_.empty()) {
            const auto kept = singleByteLines_.find(std::string(text.substr(i, lineEnd - i)));
            if (kept != singleByteLines_.end()) {
                out.Put(kept->second.data(), static_cast<qsizetype>(kept->second.size()));
                i = lineEnd;
            }
        }
        for (; i < lineEnd; ++i) {
            // Plain text goes over a run at a time.
            size_t run = i;
            while (run < lineEnd && p[run] >= 0x20 && p[run] < 0x80)
                ++run;
            if (run > i) {
                out.Put(reinterpret_cast<const char*>(p + i), static_cast<qsizetype>(run - i));
                i = run;
                if (i >= lineEnd)
                    break;
            }
            out.Room(8);
            const unsigned char b = p[i];
            if (b < 0x80) {
                if (b == 0x1D || b == 0x1C) {
                    if (raw)
                        out.Put(static_cast<char>(b == 0x1D ? 0xFD : 0xFC));
                    else
                        out.Put(b == 0x1D ? "\xEF\xA3\xBD" : "\xEF\xA3\xBC", 3);
                } else {
                    out.Put(static_cast<char>(b));
                }
                continue;
            }
            char32_t cp = 0;
            const int length = utf8Sequence(p + i, static_cast<qsizetype>(lineEnd - i), cp);
            if (length == 0) {
                // Not from the editor; kept as it stands.
                out.Put(static_cast<char>(b));
                continue;
            }
            if (cp == LoneCr) {
                out.Put('\r');
            } else if (isMarkChar(cp) && raw) {
                out.Put(static_cast<char>(cp - kMarkBase));
            } else if (!latin1 || isMarkChar(cp)) {
                out.Put(reinterpret_cast<const char*>(p + i), length);
            } else if (cp > 0xFF) {
                failAt(text, i, cp, what,
                       QStringLiteral("can't be stored in the character set ISO-8859-1"));
            } else if (raw && cp >= 0xFC && cp <= 0xFE) {
                failAt(text, i, cp, what, QStringLiteral("would be read back as a mark"));
            } else {
                out.Put(static_cast<char>(cp));
            }
            i += static_cast<size_t>(length) - 1;
        }
        if (lf) {
            out.Room(2);
            if (crlf_)
                out.Put('\r');
            out.Put('\n');
            ++i;
        }
    }
    return out.Take();
}
