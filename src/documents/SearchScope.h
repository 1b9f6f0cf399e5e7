#pragma once

#include <cstdint>

// Where a search looks: a range of the text, start before end, or the whole document when
// every field is -1.
struct SearchScope {
    int32_t StartColumn = -1;
    int32_t StartLine = -1;
    int32_t EndColumn = -1;
    int32_t EndLine = -1;

    bool Whole() const { return StartLine < 0; }
    bool operator==(const SearchScope&) const = default;
};
