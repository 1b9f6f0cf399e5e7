#include "language/BufferLexer.h"

#include "language/ScintillaBuffer.h"

#include <Qsci/qsciscintilla.h>

BufferLexer::BufferLexer(ScintillaBuffer& buffer, QObject* parent)
    : QsciLexerCustom(parent), buffer_(buffer) {}

QString BufferLexer::description(int style) const {
    static const char* const names[StyleCount] = {
        "Plain",   "Label",  "Keyword",  "Separator",  "Comment",
        "String",  "Normal", "Reserved", "Value mark", "Subvalue mark"};
    return style >= 0 && style < StyleCount ? QString::fromLatin1(names[style]) : QString();
}

void BufferLexer::styleText(int start, int end) {
    QsciScintilla* ed = editor();
    if (!ed)
        return;
    const auto first = static_cast<int32_t>(ed->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, start));
    const auto last = static_cast<int32_t>(
        ed->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, end > start ? end - 1 : start));
    buffer_.StyleLines(first, last);
}
