// The search of a document: matching runs over the editor component's own bytes, so no
// copy of the document is made, and Replace All is one OpReplace.
#include "documents/SearchScope.h"
#include "documents/mvDocument.h"
#include "editing/OpReplace.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "language/TextSearch.h"
#include "language/Utf8Columns.h"
#include "support/BusyCursor.h"

#include <algorithm>

namespace {

// The byte range of a scope.
void scopeRange(SourceView& editor, const SearchScope& scope, long& low, long& high) {
    const long length = editor.SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
    if (scope.Whole()) {
        low = 0;
        high = length;
        return;
    }
    low = editor.Buffer().PositionOf(scope.StartColumn, scope.StartLine);
    high = std::min(length, editor.Buffer().PositionOf(scope.EndColumn, scope.EndLine));
}

// Column and line of a byte position; the cost follows the line, not the document.
void columnLineOf(SourceView& editor, long position, int32_t& column, int32_t& line) {
    line = static_cast<int32_t>(editor.SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION,
                                                     static_cast<unsigned long>(position)));
    const long start = editor.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE,
                                            static_cast<unsigned long>(line));
    const auto count = static_cast<int32_t>(position - start);
    if (count <= 0) {
        column = 0;
        return;
    }
    const auto* bytes = reinterpret_cast<const char*>(editor.SendScintilla(
        QsciScintillaBase::SCI_GETRANGEPOINTER, static_cast<unsigned long>(start), count));
    column = Utf8Columns::IsAscii(bytes, count) ? count : Utf8Columns::Column(bytes, count, count);
}

} // namespace

bool mvDocument::Find(const QString& text, bool up, bool wholeWord, bool matchCase, int32_t column,
                      int32_t line, const SearchScope& scope) {
    SourceView* editor = Editor();
    if (!editor)
        return false;
    const TextSearch search(*editor, text, wholeWord, matchCase);
    if (!search.Valid())
        return false;
    long low = 0;
    long high = 0;
    scopeRange(*editor, scope, low, high);
    long from = 0;
    if (line < 0)
        from = editor->SendScintilla(up ? QsciScintillaBase::SCI_GETSELECTIONSTART
                                        : QsciScintillaBase::SCI_GETSELECTIONEND);
    else
        from = editor->Buffer().PositionOf(column, line);
    long length = 0;
    const long at = up ? search.Backward(low, std::clamp(from, low, high), length)
                       : search.Forward(std::clamp(from, low, high), high, length);
    if (at < 0)
        return false;
    int32_t startColumn = 0, startLine = 0, endColumn = 0, endLine = 0;
    columnLineOf(*editor, at, startColumn, startLine);
    columnLineOf(*editor, at + length, endColumn, endLine);
    editor->SetSelection(startColumn, startLine, endColumn, endLine);
    return true;
}

int32_t mvDocument::ReplaceAll(const QString& text, const QString& replacement, bool wholeWord,
                               bool matchCase, const SearchScope& scope) {
    SourceView* editor = Editor();
    if (!editor)
        return 0;
    const TextSearch search(*editor, text, wholeWord, matchCase);
    if (!search.Valid())
        return 0;
    const BusyCursor busy;
    long low = 0;
    long high = 0;
    scopeRange(*editor, scope, low, high);
    auto op = std::make_unique<OpReplace>();
    long length = 0;
    // Matches never cross a line end: each line is looked up once, and its columns are
    // counted on from the last match, never again from the line's start.
    long nextLineStart = -1;
    int32_t line = -1;
    long counted = 0;
    int32_t column = 0;
    const auto columnAt = [&](long position) {
        const auto count = static_cast<int32_t>(position - counted);
        if (count > 0) {
            const auto* bytes = reinterpret_cast<const char*>(
                editor->SendScintilla(QsciScintillaBase::SCI_GETRANGEPOINTER,
                                      static_cast<unsigned long>(counted), count));
            column += Utf8Columns::CodeUnits(bytes, count);
            counted = position;
        }
        return column;
    };
    for (long at = search.Forward(low, high, length); at >= 0;
         at = search.Forward(at + length, high, length)) {
        if (at >= nextLineStart) {
            line = static_cast<int32_t>(editor->SendScintilla(
                QsciScintillaBase::SCI_LINEFROMPOSITION, static_cast<unsigned long>(at)));
            counted = editor->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE,
                                            static_cast<unsigned long>(line));
            nextLineStart = editor->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE,
                                                  static_cast<unsigned long>(line) + 1);
            column = 0;
        }
        OpReplace::Match match;
        match.Line = line;
        match.Column = columnAt(at);
        match.Length = columnAt(at + length) - match.Column;
        op->Matches.push_back(match);
    }
    const auto count = static_cast<int32_t>(op->Matches.size());
    if (count == 0)
        return 0;
    op->Ctl = editor;
    op->StartColumn = op->Matches.front().Column;
    op->StartLine = op->Matches.front().Line;
    op->EndColumn = op->Matches.back().Column + op->Matches.back().Length;
    op->EndLine = op->Matches.back().Line;
    op->Replacement = replacement;
    editor->Buffer().ExecuteOp(std::move(op));
    return count;
}
