#pragma once

#include <QString>

// The manual: HTML pages installed with the program and shown in the desktop's browser.
class HelpFile {
public:
    // The start page's name, which the help path is composed from.
    static constexpr const char* StartPage = "index.html";

    // The folder of the running program, also before there is an application object.
    static QString ProgramFolder();
    // The page `name` for a program in `programFolder`: the installed manual
    // (<prefix>/share/doc/brix/manual beside <prefix>/bin), the build tree's (manual/ beside
    // the program), else the name in the program's folder, which need not exist.
    static QString Locate(const QString& programFolder, const QString& name);
    // Shows a page in the desktop's browser; false for a missing page or when nothing
    // took it.
    static bool Open(const QString& path);
};
