#pragma once

#include <QString>

// Maps item ids (and file names of an account) to names of the operating system's files
// and back. "plain" uses the id as the name and refuses ids that can't be one ("/", NUL,
// ".", ".."). "qm" escapes the characters that are not safe in file names:
//   %% for %   %S for /   %B for \   %C for :   %A for *   %Q for ?   %D for "
//   %L for <   %G for >   %V for |   %E for a leading .   %hh (lower-case hex) for
//   control characters.
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
