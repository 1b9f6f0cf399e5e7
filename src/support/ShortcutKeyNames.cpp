#include "support/ShortcutKeyNames.h"

QString ShortcutKeyNames::Name(int16_t number) {
    if (number >= 1 && number <= 26)
        return QStringLiteral("Ctrl+") + QChar(QLatin1Char('A').unicode() + number - 1);
    // Four rows of the twelve function keys, each row with its own modifiers.
    static const char* const functionRows[] = {"", "Ctrl+", "Shift+", "Ctrl+Shift+"};
    if (number >= 27 && number <= 74) {
        const int offset = number - 27;
        return QLatin1String(functionRows[offset / 12]) + QStringLiteral("F") +
               QString::number(offset % 12 + 1);
    }
    static const char* const others[] = {"Ctrl+Ins", "Shift+Ins", "Del", "Shift+Del", "Alt+Bkspc"};
    if (number >= 75 && number <= 79)
        return QLatin1String(others[number - 75]);
    return QString();
}
