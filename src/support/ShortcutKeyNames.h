#pragma once

#include <QString>
#include <cstdint>

// The menu shortcut codes that automation clients pass, as the text the menus take.
class ShortcutKeyNames {
public:
    // 1 to 79 give their name ("Ctrl+A", "F1", "Shift+Del"...); any other number nothing.
    static QString Name(int16_t number);
};
