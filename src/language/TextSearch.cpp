#include "language/TextSearch.h"

#include <QChar>
#include <Qsci/qsciscintillabase.h>
#include <algorithm>
#include <cstring>

namespace {

// Bytes read on either side of a range, so that the characters around a match can be told
// without another call into the component.
constexpr long kMargin = 4;

// How often a byte turns up in program text, roughly: blanks and common letters often,
// digits and most signs seldom.
int commonness(unsigned char byte) {
    if (byte >= 'A' && byte <= 'Z')
        byte = static_cast<unsigned char>(byte + 32);
    if (byte == 0)
        return 5;
    if (byte == ' ')
        return 100;
    if (byte >= 'a' && byte <= 'z')
        return std::strchr("etaoinsrlcd", byte) ? 40 : std::strchr("qzxjkvw", byte) ? 4 : 20;
    if (byte >= '0' && byte <= '9')
        return byte <= '1' ? 12 : 6;
    if (std::strchr(".,()='\"<>;*:", byte))
        return 15;
    return byte >= 0x80 ? 10 : 5;
}

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
    for (char& c : needle_)
        c = static_cast<char>(fold_[static_cast<unsigned char>(c)]);
    // The anchor is the needle's byte that is likely rarest in program text.
    long best = -1;
    int bestWeight = 1 << 30;
    for (long i = 0; i < needle_.size(); ++i) {
        const auto byte = static_cast<unsigned char>(needle_.at(i));
        const bool folds = !matchCase_ && byte >= 'a' && byte <= 'z';
        const int weight = commonness(byte) * (folds ? 2 : 1);
        if (weight < bestWeight) {
            bestWeight = weight;
            best = i;
        }
    }
    if (best >= 0) {
        anchor_ = best;
        anchorByte_ = static_cast<unsigned char>(needle_.at(best));
        if (!matchCase_ && anchorByte_ >= 'a' && anchorByte_ <= 'z')
            anchorOther_ = anchorByte_ - 32;
    }
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
    // Candidates are the places of the anchor byte, found by memchr (in both cases when
    // case doesn't count); each is then compared whole.
    const long last = n - m + anchor_;
    long q = anchor_;
    long nextA = -1;
    long nextB = -1;
    while (q <= last) {
        auto find = [&](long& next, int byte) {
            if (byte < 0 || (next >= q && next >= 0) || next == n)
                return;
            const void* at = std::memchr(text + q, byte, static_cast<size_t>(last - q + 1));
            next = at ? static_cast<const char*>(at) - text : n;
        };
        find(nextA, anchorByte_);
        find(nextB, anchorOther_);
        const long c = std::min(nextA, nextB < 0 ? n : nextB);
        if (c > last)
            return -1;
        const long p = c - anchor_;
        if (equalAt(text + p)) {
            if (!wholeWord_ || wholeWordAt(from + p, m)) {
                length = m;
                return from + p;
            }
            // The checks around the match read the component: its storage may have moved.
            text = bytes(from, to);
            nextA = nextB = -1;
        }
        q = c + 1;
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
    const long n = to - from;
    // The same, from the end: memrchr finds the anchor's places backwards.
    long q = n - m + anchor_;
    long nextA = n;
    long nextB = n;
    while (q >= anchor_) {
        auto find = [&](long& next, int byte) {
            if (byte < 0 || (next <= q && next < n) || next == -1)
                return;
            const void* at = memrchr(text + anchor_, byte, static_cast<size_t>(q - anchor_ + 1));
            next = at ? static_cast<const char*>(at) - text : -1;
        };
        find(nextA, anchorByte_);
        find(nextB, anchorOther_);
        const long c = std::max(nextA == n ? -1 : nextA, nextB == n ? -1 : nextB);
        if (c < anchor_)
            return -1;
        const long p = c - anchor_;
        if (equalAt(text + p)) {
            if (!wholeWord_ || wholeWordAt(from + p, m)) {
                length = m;
                return from + p;
            }
            text = bytes(from, to);
            nextA = nextB = n;
        }
        q = c - 1;
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
