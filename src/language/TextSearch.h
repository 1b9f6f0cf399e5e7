#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

class QsciScintillaBase;

// Looks for a piece of text in the editor component's own bytes (UTF-8), reading them in
// place: nothing of the document is copied. ASCII text is matched at the places of its
// rarest byte, found with memchr, so a search through tens of megabytes takes
// milliseconds; text with other letters, looked for without regard to case, is compared
// line by line with Unicode case folding. Positions are byte positions of the component;
// a match never crosses a line end.
class TextSearch {
public:
    TextSearch(QsciScintillaBase& editor, const QString& text, bool wholeWord, bool matchCase);

    // The first match that starts at or after `from` and ends by `to`; -1 when none. The
    // match's length in bytes goes to `length`.
    long Forward(long from, long to, long& length) const;
    // The last match that starts at or after `from` and ends by `to`.
    long Backward(long from, long to, long& length) const;

    // Whether the text can be looked for at all: not empty, on one line.
    bool Valid() const { return !needle_.isEmpty(); }

    // Word characters: letters, digits and "_"; a whole word has none of them on either side.
    static bool IsWordChar(uint32_t codePoint);

private:
    const char* bytes(long from, long to) const;
    bool equalAt(const char* at) const;
    bool wholeWordAt(long position, long length) const;
    long foldedSearch(long from, long to, bool backward, long& length) const;
    uint32_t codePointBefore(long position) const;
    uint32_t codePointAt(long position) const;

    QsciScintillaBase& editor_;
    QByteArray needle_;
    bool wholeWord_ = false;
    bool matchCase_ = false;
    // Folded ASCII needle matched byte by byte; false sends the search to the component.
    bool byteMatch_ = true;
    unsigned char fold_[256];
    // The needle's byte that candidates are looked for by, its place in the needle, and
    // its other case (-1 when case counts or it has none).
    long anchor_ = 0;
    int anchorByte_ = 0;
    int anchorOther_ = -1;
};
