#pragma once

#include <QString>

// The editor's console font, "mvluconw.ttf" beside the executable, made available to this
// process only for the length of a run. The program ships no such file; without it the
// default font rule falls back to "Courier New".
class EditorFont {
public:
    // Adds the file of `folder` (empty: the folder of the executable). True when the platform
    // took at least one font family from it; errors give false.
    static bool Add(const QString& folder = QString());
    // When `installed` is set, clears it and takes the font away again.
    static void Remove(bool& installed);

private:
    static int fontId_;
};
