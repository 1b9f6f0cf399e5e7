#include "documents/mvDocument.h"

#include "app/ProcessState.h"
#include "documents/DocumentSteps.h"
#include "editing/OpReplace.h"
#include "language/LexClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "support/BrixError.h"

#include <Qsci/qsciscintillabase.h>
#include <algorithm>

// The document's text as seen from outside the editing commands: the conversion of marks
// and tabs, the selection, the caret and the labels.

using namespace DocumentSteps;

namespace {

// The lexer's line flag for a line that begins with a label.
constexpr int32_t kLabelFlag = LexClass::FlagLabel;

} // namespace

QString mvDocument::HostToEditorText(const QString& text) {
    const int tabSize = Settings().TabSize >= 1 ? Settings().TabSize : 1;
    const QString blanks(tabSize, QLatin1Char(' '));
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        switch (c.unicode()) {
        case ValueMarkHost:
            out += QChar(ValueMark);
            break;
        case SubvalueMarkHost:
            out += QChar(SubvalueMark);
            break;
        case '\t':
            out += blanks;
            break;
        default:
            out += c;
        }
    }
    return out;
}

QString mvDocument::EditorToHostText(const QString& text) {
    QString out = text;
    out.replace(QChar(ValueMark), QChar(ValueMarkHost));
    out.replace(QChar(SubvalueMark), QChar(SubvalueMarkHost));
    if (out.count(QLatin1Char('\r')) != out.count(QLatin1Char('\n'))) {
        out.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        out.replace(QLatin1Char('\r'), QLatin1Char('\n'));
        out.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    }
    return out;
}

QString mvDocument::Text() {
    EnsureView();
    ScintillaBuffer* buffer = Buffer();
    return buffer ? EditorToHostText(buffer->AllText()) : QString();
}

void mvDocument::SetText(const QString& text) {
    EnsureView();
    ScintillaBuffer* buffer = Buffer();
    if (!buffer)
        return;
    const QString converted = HostToEditorText(text);
    // The buffer keeps LF line ends, so the text is compared in that form.
    QString asHeld = converted;
    asHeld.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    asHeld.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    if (asHeld == buffer->AllText())
        return;
    buffer->SetAllText(converted);
    buffer->ClearAllBookmarks();
    buffer->ClearUndoStack();
    buffer->SetModified(true);
    labels_.reset();
}

QString mvDocument::SelectedText() {
    SourceView* editor = Editor();
    if (!editor || !editor->HasSelection())
        return {};
    int32_t startColumn = 0, startLine = 0, endColumn = 0, endLine = 0;
    editor->GetSelection(startColumn, startLine, endColumn, endLine);
    if (endLine < startLine || (endLine == startLine && endColumn < startColumn)) {
        std::swap(startColumn, endColumn);
        std::swap(startLine, endLine);
    }
    return OpReplace::RangeText(editor->Buffer(), startColumn, startLine, endColumn, endLine);
}

QString mvDocument::SelText() {
    EnsureView();
    return EditorToHostText(SelectedText());
}

void mvDocument::ReplaceSelection(const QString& text) {
    SourceView* editor = Editor();
    if (!editor)
        return;
    auto op = std::make_unique<OpReplace>();
    op->Ctl = editor;
    if (editor->HasSelection()) {
        editor->GetSelection(op->StartColumn, op->StartLine, op->EndColumn, op->EndLine);
        if (op->EndLine < op->StartLine ||
            (op->EndLine == op->StartLine && op->EndColumn < op->StartColumn)) {
            std::swap(op->StartColumn, op->EndColumn);
            std::swap(op->StartLine, op->EndLine);
            op->Reversed = true;
        }
    } else {
        op->StartColumn = op->EndColumn = editor->CursorCol();
        op->StartLine = op->EndLine = editor->CursorLine();
    }
    op->Replacement = text;
    editor->Buffer().ExecuteOp(std::move(op));
}

void mvDocument::SetSelText(const QString& text) {
    EnsureView();
    ReplaceSelection(HostToEditorText(text));
}

void mvDocument::InsValue() {
    EnsureView();
    SetSelText(QString(QChar(ValueMarkHost)));
}

void mvDocument::InsSubValue() {
    EnsureView();
    SetSelText(QString(QChar(SubvalueMarkHost)));
}

QWidget* mvDocument::CursorLineVisible() const {
    SourceView* editor = Editor();
    if (!editor)
        return nullptr;
    const int32_t top = editor->FirstVisibleLine();
    const int32_t rows = editor->VisibleRows();
    const int32_t line = editor->CursorLine();
    return rows > 0 && line >= top && line < top + rows ? editor->viewport() : nullptr;
}

void mvDocument::ScrollTo(int32_t column, int32_t line, bool adjust) {
    SourceView* editor = Editor();
    if (!editor)
        return;
    const int32_t top = editor->FirstVisibleLine();
    const int32_t rows = editor->VisibleRows();
    const bool wasInView = line >= top && line < top + rows;
    editor->SetCursor(column, line);
    if (!adjust || wasInView || !CursorLineVisible())
        return;
    // A target that came from out of view stands in the upper part of the window.
    const int32_t target = editor->CursorLine();
    const int32_t lines = editor->Buffer().NumLines();
    const int32_t newTop = std::max(0, std::min(target - rows / 4, lines - rows));
    const long visible = editor->SendScintilla(QsciScintillaBase::SCI_VISIBLEFROMDOCLINE,
                                               static_cast<unsigned long>(newTop));
    editor->SendScintilla(QsciScintillaBase::SCI_SETFIRSTVISIBLELINE,
                          static_cast<unsigned long>(visible));
}

void mvDocument::GotoLine(int32_t line) {
    ScrollTo(0, std::max(line - 1, 0), true);
}

void mvDocument::BuildLabels() {
    LabelList labels;
    if (ScintillaBuffer* buffer = Buffer()) {
        const int32_t count = buffer->NumLines();
        for (int32_t line = 0; line < count; ++line) {
            if (!(buffer->GetLineData(line, 1) & kLabelFlag))
                continue;
            const QString text = buffer->GetLine(line);
            qsizetype start = 0;
            while (start < text.size() && text.at(start) == QLatin1Char(' '))
                ++start;
            if (start >= text.size())
                continue;
            auto isAsciiLetter = [](QChar c) {
                return (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
                       (c >= QLatin1Char('a') && c <= QLatin1Char('z'));
            };
            auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };
            const QChar first = text.at(start);
            qsizetype end = start;
            if (isDigit(first)) {
                while (end < text.size() && isDigit(text.at(end)))
                    ++end;
            } else if (isAsciiLetter(first)) {
                while (end < text.size()) {
                    const QChar c = text.at(end);
                    if (!isAsciiLetter(c) && !isDigit(c) && c != QLatin1Char('$') &&
                        c != QLatin1Char('.') && c != QLatin1Char('_'))
                        break;
                    ++end;
                }
            }
            if (end > start)
                labels.Add(text.mid(start, end - start), line, static_cast<int32_t>(start));
        }
    }
    labels_ = std::move(labels);
}

const LabelList& mvDocument::Labels() {
    if (!labels_ || labels_->Count() == 0)
        BuildLabels();
    return *labels_;
}

void mvDocument::GotoLabel(const QString& target) {
    const LabelList& labels = Labels();
    const int32_t index = labels.Find(target);
    if (index < 0)
        throw BrixError(BrixErrors::LabelNotFound, QStringLiteral("Target label not found!"));
    ScrollTo(labels.Columns[static_cast<size_t>(index)], labels.Lines[static_cast<size_t>(index)],
             true);
}

// The block commands and Format: each is one undoable operation on the editor's buffer.
