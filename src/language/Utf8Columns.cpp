#include "language/Utf8Columns.h"

#include <cstring>

namespace {

// Bytes in the character that starts with `lead`; a stray continuation byte counts as one.
inline int32_t SequenceLength(unsigned char lead) {
    if (lead < 0xC0)
        return 1;
    if (lead < 0xE0)
        return 2;
    if (lead < 0xF0)
        return 3;
    return 4;
}

inline int32_t UnitsOf(int32_t sequenceLength) {
    return sequenceLength == 4 ? 2 : 1;
}

} // namespace

namespace Utf8Columns {

bool IsAscii(const char* bytes, int32_t length) {
    int32_t i = 0;
    // Eight bytes at a time: any high bit set means non-ASCII.
    for (; i + 8 <= length; i += 8) {
        uint64_t word;
        std::memcpy(&word, bytes + i, 8);
        if (word & 0x8080808080808080ull)
            return false;
    }
    for (; i < length; ++i)
        if (static_cast<unsigned char>(bytes[i]) & 0x80)
            return false;
    return true;
}

int32_t CodeUnits(const char* bytes, int32_t length) {
    if (IsAscii(bytes, length))
        return length;
    int32_t units = 0;
    for (int32_t i = 0; i < length;) {
        const int32_t n = SequenceLength(static_cast<unsigned char>(bytes[i]));
        units += UnitsOf(n);
        i += n;
    }
    return units;
}

int32_t ByteOffset(const char* bytes, int32_t length, int32_t column) {
    if (column <= 0)
        return 0;
    int32_t units = 0;
    int32_t i = 0;
    while (i < length) {
        const int32_t n = SequenceLength(static_cast<unsigned char>(bytes[i]));
        const int32_t u = UnitsOf(n);
        if (units + u > column)
            return i;
        units += u;
        i += n;
        if (units == column)
            return i < length ? i : length;
    }
    return length;
}

int32_t Column(const char* bytes, int32_t length, int32_t byteOffset) {
    if (byteOffset > length)
        byteOffset = length;
    int32_t units = 0;
    for (int32_t i = 0; i < byteOffset;) {
        const int32_t n = SequenceLength(static_cast<unsigned char>(bytes[i]));
        if (i + n > byteOffset)
            break;
        units += UnitsOf(n);
        i += n;
    }
    return units;
}

} // namespace Utf8Columns
