#include "settings/modColors.h"

#include <QGuiApplication>
#include <QPalette>
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
Role roleOf(int index) {
    using P = QPalette;
    switch (index) {
    case 0:
        return {true, P::Active, P::Mid}; // scroll bar
    case 2:
        return {true, P::Active, P::Highlight}; // active caption
    case 3:
        return {true, P::Inactive, P::Highlight}; // inactive caption
    case 4:
        return {true, P::Active, P::Window}; // menu
    case 5:
        return {true, P::Active, P::Base}; // window
    case 6:
        return {true, P::Active, P::Shadow}; // window frame
    case 7:
        return {true, P::Active, P::WindowText}; // menu text
    case 8:
        return {true, P::Active, P::Text}; // window text
    case 9:
        return {true, P::Active, P::HighlightedText}; // caption text
    case 12:
        return {true, P::Active, P::Dark}; // application workspace
    case 13:
        return {true, P::Active, P::Highlight}; // selected item
    case 14:
        return {true, P::Active, P::HighlightedText}; // selected item text
    case 15:
        return {true, P::Active, P::Button}; // 3D face
    case 16:
        return {true, P::Active, P::Dark}; // 3D shadow
    case 17:
        return {true, P::Disabled, P::Text}; // grey text
    case 18:
        return {true, P::Active, P::ButtonText}; // button text
    case 19:
        return {true, P::Inactive, P::HighlightedText}; // inactive caption text
    case 20:
        return {true, P::Active, P::Light}; // 3D highlight
    case 21:
        return {true, P::Active, P::Shadow}; // 3D dark shadow
    case 22:
        return {true, P::Active, P::Midlight}; // 3D light
    case 23:
        return {true, P::Active, P::ToolTipText}; // tooltip text
    case 24:
        return {true, P::Active, P::ToolTipBase}; // tooltip background
    case 26:
        return {true, P::Active, P::Link}; // hot-tracked item
    case 29:
        return {true, P::Active, P::Highlight}; // menu highlight
    case 30:
        return {true, P::Active, P::Window}; // menu bar
    default:
        return {false, P::Active, P::NoRole};
    }
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
