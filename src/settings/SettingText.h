#pragma once

#include <QString>
#include <QVariant>
#include <cstdint>
#include <optional>

// How settings are written as text: numbers in decimal or the "&H...&" hexadecimal form,
// booleans as "True" and "False".
class SettingText {
public:
    // Decimal text (blanks around it allowed) or "&H" followed by up to eight hexadecimal
    // digits and an optional "&", the latter taken as a signed 32-bit value. Anything else
    // gives no value.
    static std::optional<int64_t> ParseInteger(const QString& text);
    // The lenient form: text that does not parse counts as 0.
    static int64_t ParseNumber(const QString& text);
    // "True" or "False" in any case; any other word gives no value.
    static std::optional<bool> ParseBoolean(const QString& text);
    static QString FromBoolean(bool value);
    // A value of the per-user store as text; a hand-edited value with commas, which the store
    // hands back as a list, is joined again.
    static QString FromStored(const QVariant& value);
};
