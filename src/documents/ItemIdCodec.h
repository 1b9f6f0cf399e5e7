#pragma once

#include <QString>

// Maps item ids (and file names of an account) to names of the operating system's files
// and back. "plain" uses the id as the name and refuses ids that can't be one ("/", NUL,
// ".", ".."). "qm" escapes as QM does in its directory files:
//   %A for *   %B for \   %C for ,   %E for =   %G for >   %L for <   %P for %
//   %Q for "   %S for /   %V for +   %X for :   %Y for ;   %Z for ?
//   %d for a leading .   %t for a leading ~   (%D and %T are read too)
// and, beyond what QM writes, %hh (lower-case hex) for control characters.
// No name that comes out ever leaves its folder.
class ItemIdCodec {
public:
    enum class Mode { Plain, Qm };

    explicit ItemIdCodec(Mode mode = Mode::Plain) : mode_(mode) {}

    // Raises a BrixError (ConnectionErrors::BadItemId) for an id that has no name.
    QString ToFileName(const QString& id) const;
    // The id of a name; an empty string for names that are no item (ours, or not
    // decodable).
    QString FromFileName(const QString& name) const;

    static Mode ModeFromName(const QString& name, bool* known = nullptr);

private:
    Mode mode_;
};
