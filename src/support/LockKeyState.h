#pragma once

#include <optional>

// The lights of the lock keys, read from the window system. Empty where it can't tell:
// another window system than X11, or a server without the keyboard extension.
class LockKeyState {
public:
    enum class Key { CapsLock, NumLock };
    static std::optional<bool> IsOn(Key key);
};
