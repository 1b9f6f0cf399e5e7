#pragma once

#include <QString>

// The system clipboard's text, as the menus and the results window need it.
class UnicodeClipboard {
public:
    // Puts the text on the clipboard; an empty text leaves it empty. False when there is
    // no clipboard to put it on.
    static bool SetText(const QString& text);
    // True when the clipboard holds text that a paste can take.
    static bool TextAvailable();
};
