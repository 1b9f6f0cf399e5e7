#pragma once

#include <QString>
#include <QStringList>

// The user start's command line: switches that set the host context and name items, "/L"
// for read-only opens, and plain local file names, applied from left to right.
class CommandLine {
public:
    // The arguments as one raw line, the way the walk reads it: joined with single blanks,
    // an argument that holds a blank put in double quotes (a switch's value only, after
    // its "=").
    static QString JoinArguments(const QStringList& arguments);
    // Walks the line: opens its documents, activates the first one, and with a host named
    // alone connects early to learn its account. An error is shown and ends the walk; what
    // opened so far stays.
    static void Process(const QString& line);
};
