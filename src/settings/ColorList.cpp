#include "settings/ColorList.h"

#include "settings/modColors.h"

std::vector<ColorList::Entry> ColorList::Entries() {
    std::vector<Entry> entries;
    entries.push_back({QStringLiteral("Standard Colors"), StandardHead});
    for (int32_t row = 0; row < modColors::StandardColorCount; ++row)
        entries.push_back({modColors::StandardColorName(row), modColors::StandardColorValue(row)});
    entries.push_back({QStringLiteral("System Colors"), SystemHead});
    for (int32_t row = 0; row < modColors::SystemColorCount(); ++row)
        entries.push_back({modColors::SystemColorName(row), modColors::SystemColorValue(row)});
    entries.push_back({QStringLiteral("Custom Color >>"), CustomEntry});
    return entries;
}

int ColorList::RowOf(int32_t value) {
    if (IsMarker(value))
        return -1;
    const std::vector<Entry> entries = Entries();
    for (size_t row = 0; row < entries.size(); ++row)
        if (entries[row].Value == value)
            return static_cast<int>(row);
    return -1;
}

QString ColorList::NameOf(int32_t value) {
    const int row = RowOf(value);
    return row < 0 ? QStringLiteral("Custom") : Entries()[static_cast<size_t>(row)].Name;
}
