#pragma once

#include <QColor>
#include <QString>
#include <cstdint>

// Named colours and the meaning of a stored colour value. A value of 0 or above is
// 0x00BBGGRR, red in the low byte; a negative one is 0x80000000 plus a system colour index,
// which follows the desktop's palette.
namespace modColors {

constexpr int32_t SystemBit = static_cast<int32_t>(0x80000000u);
constexpr int32_t StandardColorCount = 16;

// The sixteen standard colours, in the order the colour lists show them.
QString StandardColorName(int32_t row);
int32_t StandardColorValue(int32_t row);

// Builds the table of the system colours this platform has, once; later calls do nothing.
void SetUpColors();
// The compact table that SetUpColors leaves: rows in alphabetical order of their names.
int32_t SystemColorCount();
int32_t SystemColorValue(int32_t row);
QString SystemColorName(int32_t row);

// A stored value as a plain 0x00BBGGRR colour; a system colour this platform lacks is 0.
int32_t ResolveColor(int32_t value);
QColor ToQColor(int32_t value);
// The stored form of a plain colour.
int32_t FromQColor(const QColor& color);

// The text colour as drawn on this paper: a fixed colour that a dark desktop palette has
// made unreadable (dark blue on dark grey) gets its lightness mirrored, keeping its hue.
// Light paper, or enough contrast already, leaves it as it is.
QColor ReadableOn(const QColor& text, const QColor& paper);

// The tooltip text of a colour: its name and kind, and its red, green and blue parts.
QString DescribeColor(int32_t value);

} // namespace modColors
