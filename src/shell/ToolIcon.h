#pragma once

#include <QIcon>
#include <QString>

// Icons of the tool bar: the desktop theme's where it has one for the command that stays
// sharp at large sizes, else the program's own drawing, which is vector.
class ToolIcon {
public:
    // `name` is a freedesktop icon name, with a shipped drawing of the same name as its
    // stand-in, or "brix:" and the name of a drawing for a command no theme has.
    static QIcon Find(const QString& name);
    // The program's own icon, as the desktop knows it or as shipped.
    static QIcon Application();
};
