#include "settings/modColors.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

namespace {

struct Named {
    const char* name;
    int32_t value;
};

constexpr Named kStandard[modColors::StandardColorCount] = {
    {"Black", 0x000000},     {"Dark Blue", 0x800000},  {"Dark Green", 0x008000},
    {"Turquoise", 0x808000}, {"Dark Red", 0x000080},   {"Purple", 0x800080},
    {"Olive", 0x008080},     {"Light Gray", 0xC0C0C0}, {"Dark Gray", 0x808080},
    {"Blue", 0xFF0000},      {"Green", 0x00FF00},      {"Cyan", 0xFFFF00},
    {"Red", 0x0000FF},       {"Magenta", 0xFF00FF},    {"Yellow", 0x00FFFF},
    {"White", 0xFFFFFF},
};

// Name and system colour index, in the order of the lists.
constexpr Named kSystem[] = {
    {"3D Dark Shadow", 21},
    {"3D Face", 15},
    {"3D Highlight", 20},
    {"3D Light", 22},
    {"3D Shadow", 16},
    {"Active Border", 10},
    {"Active Caption Background", 2},
    {"Active Caption Text", 9},
    {"Alternate Button Face", 25},
    {"Application Workspace", 12},
    {"Button Text", 18},
    {"Desktop Background", 1},
    {"Gradient Active Caption", 27},
    {"Gradient Inactive Caption", 28},
    {"Gray Text", 17},
    {"Hotlight", 26},
    {"Inactive Border", 11},
    {"Inactive Caption Background", 3},
    {"Inactive Caption Text", 19},
    {"Menu Background", 4},
    {"Menu Bar Background", 30},
    {"Menu Highlight", 29},
    {"Menu Text", 7},
    {"Scrollbar", 0},
    {"Selected Item Background", 13},
    {"Selected Item Text", 14},
    {"Tooltip Background", 24},
    {"Tooltip Text", 23},
    {"Window Background", 5},
    {"Window Frame", 6},
    {"Window Text", 8},
};

struct Role {
    bool known;
    QPalette::ColorGroup group;
    QPalette::ColorRole role;
};

// System colour index to the palette role that plays its part on this desktop. Window
// borders, the desktop and caption gradients belong to the window manager: no role.
constexpr QPalette::ColorGroup A = QPalette::Active;
constexpr Role kNone = {false, QPalette::Active, QPalette::NoRole};
constexpr Role kRoles[] = {
    {true, A, QPalette::Mid},                              // 0 scroll bar
    kNone,                                                 // 1 desktop
    {true, A, QPalette::Highlight},                        // 2 active caption
    {true, QPalette::Inactive, QPalette::Highlight},       // 3 inactive caption
    {true, A, QPalette::Window},                           // 4 menu
    {true, A, QPalette::Base},                             // 5 window
    {true, A, QPalette::Shadow},                           // 6 window frame
    {true, A, QPalette::WindowText},                       // 7 menu text
    {true, A, QPalette::Text},                             // 8 window text
    {true, A, QPalette::HighlightedText},                  // 9 caption text
    kNone,                                                 // 10 active border
    kNone,                                                 // 11 inactive border
    {true, A, QPalette::Dark},                             // 12 application workspace
    {true, A, QPalette::Highlight},                        // 13 selected item
    {true, A, QPalette::HighlightedText},                  // 14 selected item text
    {true, A, QPalette::Button},                           // 15 3D face
    {true, A, QPalette::Dark},                             // 16 3D shadow
    {true, QPalette::Disabled, QPalette::Text},            // 17 grey text
    {true, A, QPalette::ButtonText},                       // 18 button text
    {true, QPalette::Inactive, QPalette::HighlightedText}, // 19 inactive caption text
    {true, A, QPalette::Light},                            // 20 3D highlight
    {true, A, QPalette::Shadow},                           // 21 3D dark shadow
    {true, A, QPalette::Midlight},                         // 22 3D light
    {true, A, QPalette::ToolTipText},                      // 23 tooltip text
    {true, A, QPalette::ToolTipBase},                      // 24 tooltip background
    kNone,                                                 // 25 alternate button face
    {true, A, QPalette::Link},                             // 26 hot-tracked item
    kNone,                                                 // 27 gradient active caption
    kNone,                                                 // 28 gradient inactive caption
    {true, A, QPalette::Highlight},                        // 29 menu highlight
    {true, A, QPalette::Window},                           // 30 menu bar
};

Role roleOf(int index) {
    return index >= 0 && index < static_cast<int>(std::size(kRoles)) ? kRoles[index] : kNone;
}

int32_t toStored(const QColor& color) {
    return (color.blue() << 16) | (color.green() << 8) | color.red();
}

struct SystemTable {
    std::vector<int32_t> values;
    std::vector<QString> names;
};

SystemTable& systemTable() {
    static SystemTable table;
    return table;
}

} // namespace

namespace modColors {

QString StandardColorName(int32_t row) {
    return row >= 0 && row < StandardColorCount ? QString::fromLatin1(kStandard[row].name)
                                                : QString();
}

int32_t StandardColorValue(int32_t row) {
    return row >= 0 && row < StandardColorCount ? kStandard[row].value : 0;
}

void SetUpColors() {
    SystemTable& table = systemTable();
    if (!table.values.empty())
        return;
    for (const Named& row : kSystem) {
        if (!roleOf(row.value).known)
            continue;
        table.values.push_back(SystemBit | row.value);
        table.names.push_back(QString::fromLatin1(row.name));
    }
}

int32_t SystemColorCount() {
    SetUpColors();
    return static_cast<int32_t>(systemTable().values.size());
}

int32_t SystemColorValue(int32_t row) {
    SetUpColors();
    const SystemTable& table = systemTable();
    return row >= 0 && row < SystemColorCount() ? table.values[static_cast<size_t>(row)] : 0;
}

QString SystemColorName(int32_t row) {
    SetUpColors();
    const SystemTable& table = systemTable();
    return row >= 0 && row < SystemColorCount() ? table.names[static_cast<size_t>(row)] : QString();
}

int32_t ResolveColor(int32_t value) {
    if (value >= 0)
        return value;
    const Role role = roleOf(value & 0xFFFF);
    if (!role.known)
        return 0;
    return toStored(QGuiApplication::palette().color(role.group, role.role));
}

QColor ToQColor(int32_t value) {
    const int32_t rgb = ResolveColor(value);
    return QColor(rgb & 0xFF, (rgb >> 8) & 0xFF, (rgb >> 16) & 0xFF);
}

namespace {

double luminance(const QColor& c) {
    const auto channel = [](double v) {
        return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(c.redF()) + 0.7152 * channel(c.greenF()) + 0.0722 * channel(c.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

} // namespace

QColor ReadableOn(const QColor& text, const QColor& paper) {
    // 3:1 is where coloured words on a dark ground stop being easy to read.
    if (luminance(paper) >= 0.2 || contrast(text, paper) >= 3.0)
        return text;
    const QColor hsl = text.toHsl();
    const QColor mirrored = QColor::fromHslF(hsl.hslHueF(), hsl.hslSaturationF(),
                                             std::max(1.0 - hsl.lightnessF(), 0.65));
    return mirrored.toRgb();
}

int32_t FromQColor(const QColor& color) {
    return toStored(color);
}

QString DescribeColor(int32_t value) {
    const int32_t rgb = ResolveColor(value);
    const QString parts = QStringLiteral(" R=%1 G=%2 B=%3")
                              .arg(rgb & 0xFF)
                              .arg((rgb >> 8) & 0xFF)
                              .arg((rgb >> 16) & 0xFF);
    if (value < 0) {
        // Looked up by row, not by index: the rows are alphabetical, so the name may not
        // be that of the colour shown, as it always was.
        const int32_t row = value & 0xFF;
        if (row >= SystemColorCount())
            return QStringLiteral("unknown system color ") + QString::number(row) + parts;
        return SystemColorName(row) + QStringLiteral(" (system color)") + parts;
    }
    for (int32_t i = 0; i < StandardColorCount; ++i) {
        if (kStandard[i].value == value)
            return StandardColorName(i) + QStringLiteral(" (standard color)") + parts;
    }
    return QStringLiteral("custom color:") + parts;
}

} // namespace modColors
