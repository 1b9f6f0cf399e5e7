#pragma once

#include <QString>

class CommandBar;

// The tools of every band as the program ships them: keys, captions, shortcuts, tool tips,
// groups and types, in the order they stand.
class CommandTable {
public:
    static void Build(CommandBar& bar);
};
