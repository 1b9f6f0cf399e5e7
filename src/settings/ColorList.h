#pragma once

#include <QString>
#include <cstdint>
#include <vector>

// The entries of a colour list: a head entry, the standard colours, a head entry, the
// system colours this desktop has, and the entry that opens the colour picker. Each entry
// carries a stored colour value, or one of the markers below, which are not colours.
class ColorList {
public:
    static constexpr int32_t StandardHead = -1;
    static constexpr int32_t SystemHead = -2;
    static constexpr int32_t CustomEntry = -3;

    struct Entry {
        QString Name;
        int32_t Value = 0;
    };

    static std::vector<Entry> Entries();
    // A head entry can't be chosen; the custom entry asks for a colour instead.
    static bool IsMarker(int32_t value) {
        return value == StandardHead || value == SystemHead || value == CustomEntry;
    }
    // The row of the entries that holds `value`, or -1 for a colour none of them holds.
    static int RowOf(int32_t value);
    // What a list shows for a value: the name of its entry, else "Custom".
    static QString NameOf(int32_t value);
};
