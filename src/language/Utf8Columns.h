#pragma once

#include <cstdint>

// Conversions between UTF-8 byte offsets of one line (as the editor component counts)
// and 16-bit code-unit columns (as the editor contract counts). Cost is proportional to
// the line, never to the document; ASCII lines take a fast path.
namespace Utf8Columns {

bool IsAscii(const char* bytes, int32_t length);

// Code units of the whole line.
int32_t CodeUnits(const char* bytes, int32_t length);

// Byte offset of a column; a column past the end gives the length, one inside a
// surrogate pair gives the start of its character.
int32_t ByteOffset(const char* bytes, int32_t length, int32_t column);

// Column of a byte offset; an offset inside a character counts as that character's start.
int32_t Column(const char* bytes, int32_t length, int32_t byteOffset);

} // namespace Utf8Columns
