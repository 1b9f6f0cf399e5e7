#include "language/TextSearch.h"

#include <QChar>
#include <Qsci/qsciscintillabase.h>
#include <algorithm>
#include <cstring>

namespace {

// Bytes read on either side of a range, so that the characters around a match can be told
// without another call into the component.
constexpr long kMargin = 4;

uint32_t decode(const char* bytes, long count) {
    const QString text = QString::fromUtf8(bytes, count);
    return text.isEmpty() ? 0 : text.toUcs4().value(0);
}

} // namespace

TextSearch::TextSearch(QsciScintillaBase& editor, const QString& text, bool wholeWord,
                       bool matchCase)
    : editor_(editor), wholeWord_(wholeWord), matchCase_(matchCase) {
    if (!text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r')))
        needle_ = text.toUtf8();
    bool ascii = true;
    for (const char c : std::as_const(needle_))
        ascii = ascii && static_cast<unsigned char>(c) < 0x80;
    byteMatch_ = matchCase_ || ascii;
    for (int c = 0; c < 256; ++c)
        fold_[c] = static_cast<unsigned char>(!matchCase_ && c >= 'A' && c <= 'Z' ? c + 32 : c);
    const long m = needle_.size();
    std::fill(std::begin(skip_), std::end(skip_), m);
    std::fill(std::begin(skipBack_), std::end(skipBack_), m);
    for (long i = 0; i + 1 < m; ++i)
        skip_[fold_[static_cast<unsigned char>(needle_.at(i))]] = m - 1 - i;
    for (long i = m - 1; i >= 1; --i)
        skipBack_[fold_[static_cast<unsigned char>(needle_.at(i))]] = i;
    for (char& c : needle_)
        c = static_cast<char>(fold_[static_cast<unsigned char>(c)]);
}

bool TextSearch::IsWordChar(uint32_t codePoint) {
    if (codePoint < 0x80)
        return (codePoint >= 'a' && codePoint <= 'z') || (codePoint >= 'A' && codePoint <= 'Z') ||
               (codePoint >= '0' && codePoint <= '9') || codePoint == '_';
    return QChar::isLetterOrNumber(static_cast<char32_t>(codePoint));
}

const char* TextSearch::bytes(long from, long to) const {
    // The component hands out its own storage for a range; the gap of its buffer moves
    // only when the range spans it.
    return reinterpret_cast<const char*>(editor_.SendScintilla(
        QsciScintillaBase::SCI_GETRANGEPOINTER, static_cast<unsigned long>(from), to - from));
}

bool TextSearch::equalAt(const char* at) const {
    const long m = needle_.size();
    const auto* needle = reinterpret_cast<const unsigned char*>(needle_.constData());
    for (long i = 0; i < m; ++i)
        if (fold_[static_cast<unsigned char>(at[i])] != needle[i])
            return false;
    return true;
}

uint32_t TextSearch::codePointBefore(long position) const {
    if (position <= 0)
        return 0;
    const long start = std::max(0L, position - kMargin);
    const char* at = bytes(start, position);
    long begin = position - start - 1;
    while (begin > 0 && (static_cast<unsigned char>(at[begin]) & 0xC0) == 0x80)
        --begin;
    return decode(at + begin, position - start - begin);
}

uint32_t TextSearch::codePointAt(long position) const {
    const long length = editor_.SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
    if (position >= length)
        return 0;
    const long end = std::min(length, position + kMargin);
    const char* at = bytes(position, end);
    long count = 1;
    while (count < end - position && (static_cast<unsigned char>(at[count]) & 0xC0) == 0x80)
        ++count;
    return decode(at, count);
}

bool TextSearch::wholeWordAt(long position, long length) const {
    return !IsWordChar(codePointBefore(position)) && !IsWordChar(codePointAt(position + length));
}

long TextSearch::Forward(long from, long to, long& length) const {
    const long m = needle_.size();
    from = std::max(0L, from);
    if (m == 0 || to - from < m)
        return -1;
    if (!byteMatch_)
        return foldedSearch(from, to, false, length);
    const char* text = bytes(from, to);
    const long n = to - from;
    const auto last = static_cast<unsigned char>(needle_.at(m - 1));
    for (long p = 0; p + m <= n;) {
        const unsigned char tail = fold_[static_cast<unsigned char>(text[p + m - 1])];
        if (tail == last && equalAt(text + p)) {
            if (!wholeWord_ || wholeWordAt(from + p, m)) {
                length = m;
                return from + p;
            }
            // The checks around the match read the component: its storage may have moved.
            text = bytes(from, to);
        }
        p += skip_[tail];
    }
    return -1;
}

long TextSearch::Backward(long from, long to, long& length) const {
    const long m = needle_.size();
    from = std::max(0L, from);
    if (m == 0 || to - from < m)
        return -1;
    if (!byteMatch_)
        return foldedSearch(from, to, true, length);
    const char* text = bytes(from, to);
    const auto first = static_cast<unsigned char>(needle_.at(0));
    for (long p = to - from - m; p >= 0;) {
        const unsigned char head = fold_[static_cast<unsigned char>(text[p])];
        if (head == first && equalAt(text + p)) {
            if (!wholeWord_ || wholeWordAt(from + p, m)) {
                length = m;
                return from + p;
            }
            text = bytes(from, to);
        }
        p -= skipBack_[head];
    }
    return -1;
}

long TextSearch::foldedSearch(long from, long to, bool backward, long& length) const {
    // Line by line, each line decoded and compared with case folding; a needle of ASCII
    // letters never comes here.
    const QString needle = QString::fromUtf8(needle_);
    const char* text = bytes(from, to);
    const long n = to - from;
    long best = -1;
    long lineStart = 0;
    while (lineStart <= n) {
        const void* found = std::memchr(text + lineStart, '\n', static_cast<size_t>(n - lineStart));
        const long lineEnd = found ? static_cast<const char*>(found) - text : n;
        const QString line =
            QString::fromUtf8(text + lineStart, static_cast<qsizetype>(lineEnd - lineStart));
        qsizetype at = backward ? line.lastIndexOf(needle, -1, Qt::CaseInsensitive)
                                : line.indexOf(needle, 0, Qt::CaseInsensitive);
        while (at >= 0) {
            const long start = from + lineStart + QStringView(line).left(at).toUtf8().size();
            const long size = QStringView(line).mid(at, needle.size()).toUtf8().size();
            if (!wholeWord_ || wholeWordAt(start, size)) {
                length = size;
                if (!backward)
                    return start;
                best = start;
                break;
            }
            text = bytes(from, to);
            at = backward ? (at > 0 ? line.lastIndexOf(needle, at - 1, Qt::CaseInsensitive) : -1)
                          : line.indexOf(needle, at + 1, Qt::CaseInsensitive);
        }
        lineStart = lineEnd + 1;
    }
    return best;
}
