#pragma once

#include <QIcon>
#include <QString>

// Icons of the tool bar: the desktop theme's where it has one for the command, else the
// program's own drawing, which is vector and so sharp at any scale.
class ToolIcon {
public:
    // `name` is a freedesktop icon name, or "brix:" and the name of a shipped drawing.
    // A theme name the theme lacks gives a null icon.
    static QIcon Find(const QString& name);
    // The program's own icon, as the desktop knows it or as shipped.
    static QIcon Application();
};
