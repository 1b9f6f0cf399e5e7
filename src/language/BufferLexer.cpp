#include "language/BufferLexer.h"

#include "language/ScintillaBuffer.h"

#include <QEvent>
#include <Qsci/qsciscintilla.h>
#include <algorithm>

BufferLexer::BufferLexer(ScintillaBuffer& buffer, QObject* parent)
    : QsciLexerCustom(parent), buffer_(buffer) {}

QString BufferLexer::description(int style) const {
    static const char* const names[StyleCount] = {
        "Plain",  "Label",  "Keyword",  "Separator",  "Comment",
        "String", "Normal", "Reserved", "Value mark", "Subvalue mark"};
    return style >= 0 && style < StyleCount ? QString::fromLatin1(names[style]) : QString();
}

void BufferLexer::setEditor(QsciScintilla* editor) {
    if (QsciScintilla* old = this->editor()) {
        old->removeEventFilter(this);
        disconnect(old, &QsciScintillaBase::SCN_CHARADDED, this, nullptr);
    }
    QsciLexerCustom::setEditor(editor);
    typing_ = {};
    if (editor) {
        editor->installEventFilter(this);
        connect(editor, &QsciScintillaBase::SCN_CHARADDED, this,
                [this](int character) { noteCharAdded(character); });
    }
}

bool BufferLexer::eventFilter(QObject* watched, QEvent* event) {
    QsciScintilla* ed = editor();
    if (event->type() == QEvent::KeyPress && watched == ed) {
        // What was styled before the key: the lines behind its change keep their colours.
        typing_ = {};
        typing_.armed = true;
        typing_.linesBefore = ed->SendScintilla(QsciScintillaBase::SCI_GETLINECOUNT);
        const long styled = ed->SendScintilla(QsciScintillaBase::SCI_GETENDSTYLED);
        typing_.styledLinesBefore =
            styled >= ed->SendScintilla(QsciScintillaBase::SCI_GETLENGTH)
                ? typing_.linesBefore
                : ed->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, styled);
    }
    return QsciLexerCustom::eventFilter(watched, event);
}

void BufferLexer::noteCharAdded(int character) {
    QsciScintilla* ed = editor();
    if (!ed || !typing_.armed)
        return;
    const auto line = static_cast<int>(
        ed->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION,
                          ed->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS)));
    // A line end changes the line it split as well as the new one.
    const int first = (character == '\n' || character == '\r') ? std::max(line - 1, 0) : line;
    typing_.first = typing_.typed ? std::min(typing_.first, first) : first;
    typing_.last = typing_.typed ? std::max(typing_.last, line) : line;
    typing_.typed = true;
    typing_.linesAfter = ed->SendScintilla(QsciScintillaBase::SCI_GETLINECOUNT);
    typing_.lengthAfter = ed->SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
}

bool BufferLexer::styleTyped(int first, int last) {
    QsciScintilla* ed = editor();
    const Typing t = typing_;
    typing_ = {};
    // Any other change since the key moves the styling start, the length or the lines.
    if (!t.typed || first != t.first ||
        ed->SendScintilla(QsciScintillaBase::SCI_GETLINECOUNT) != t.linesAfter ||
        ed->SendScintilla(QsciScintillaBase::SCI_GETLENGTH) != t.lengthAfter)
        return false;
    buffer_.StyleLines(t.first, t.last);
    // Lines behind the typed ones moved with their styles; those that had none yet still
    // need them.
    const long shift = t.linesAfter - t.linesBefore;
    const int unstyled = static_cast<int>(std::max<long>(t.last + 1, t.styledLinesBefore + shift));
    if (unstyled <= last) {
        int32_t top = 0, bottom = 0;
        viewLines(top, bottom);
        buffer_.StyleLinesFor(unstyled, last, top, bottom);
        return true;
    }
    // Everything up to the first unstyled line is styled again, as it was before the key.
    const long end = unstyled < t.linesAfter
                         ? ed->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, unstyled)
                         : t.lengthAfter;
    if (end > ed->SendScintilla(QsciScintillaBase::SCI_GETENDSTYLED))
        ed->SendScintilla(QsciScintillaBase::SCI_STARTSTYLING, static_cast<unsigned long>(end), 0L);
    return true;
}

void BufferLexer::viewLines(int32_t& first, int32_t& last) const {
    // The lines in view, and a screen more either way for scrolling.
    QsciScintilla* ed = editor();
    const auto top = static_cast<int32_t>(
        ed->SendScintilla(QsciScintillaBase::SCI_DOCLINEFROMVISIBLE,
                          ed->SendScintilla(QsciScintillaBase::SCI_GETFIRSTVISIBLELINE)));
    const auto rows = static_cast<int32_t>(ed->SendScintilla(QsciScintillaBase::SCI_LINESONSCREEN));
    first = top - rows;
    last = top + 2 * rows + 1;
}

void BufferLexer::styleText(int start, int end) {
    QsciScintilla* ed = editor();
    if (!ed)
        return;
    const auto first =
        static_cast<int32_t>(ed->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, start));
    const auto last = static_cast<int32_t>(
        ed->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, end > start ? end - 1 : start));
    if (typing_.armed && styleTyped(first, last))
        return;
    typing_ = {};
    int32_t top = 0, bottom = 0;
    viewLines(top, bottom);
    buffer_.StyleLinesFor(first, last, top, bottom);
}
