#include "support/LockKeyState.h"

#include <QGuiApplication>

#ifdef BRIX_HAVE_X11
// After the Qt headers: Xlib defines macros (None, Bool, Status) that Qt's headers use.
#include <X11/XKBlib.h>
#endif

std::optional<bool> LockKeyState::IsOn(Key key) {
#ifdef BRIX_HAVE_X11
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    Display* display = x11 ? x11->display() : nullptr;
    if (!display)
        return std::nullopt;
    // The indicator by name, not by number: keymaps number their lights differently.
    const char* name = key == Key::CapsLock ? "Caps Lock" : "Num Lock";
    const Atom atom = XInternAtom(display, name, True);
    int on = 0;
    if (atom == 0 || !XkbGetNamedIndicator(display, atom, nullptr, &on, nullptr, nullptr))
        return std::nullopt;
    return on != 0;
#else
    Q_UNUSED(key);
    return std::nullopt;
#endif
}
