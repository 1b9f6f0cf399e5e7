#include "documents/mvDocument.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/clsDocView.h"
#include "documents/mvResource.h"
#include "editing/OpReplace.h"
#include "editing/frmDocument.h"
#include "editing/frmDocumentx.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"
#include "support/BrixError.h"
#include "support/BusyCursor.h"
#include "support/ForceForeground.h"

#include <Qsci/qsciscintillabase.h>
#include <algorithm>

namespace {

constexpr char16_t kValueMarkHost = 0xF8FD;
constexpr char16_t kSubvalueMarkHost = 0xF8FC;
constexpr char16_t kValueMark = 29;
constexpr char16_t kSubvalueMark = 28;
// The lexer's line flag for a line that holds a label.
constexpr int32_t kLabelFlag = 0x200;

// Reads of the resource never raise: an error gives the default.
template <typename Fn, typename T> T guarded(Fn&& fn, T fallback) {
    try {
        return fn();
    } catch (...) {
        return fallback;
    }
}

} // namespace

mvDocument::mvDocument(Token) {}

std::shared_ptr<mvDocument> mvDocument::Create() {
    ProcessState& state = ProcessState::Instance();
    auto document = std::make_shared<mvDocument>(Token{});
    document->applicationRef_ = state.ActiveApplication.lock();
    document->newNumber_ = 0;
    document->documentNumber_ = ++state.NextDocumentNumber;
    if (!state.Documents)
        state.Documents = std::make_unique<DocumentCollection>();
    state.Documents->Add(QString::number(document->documentNumber_), document);
    document->highlight_ = Settings().Highlight;
    return document;
}

mvDocument::~mvDocument() {
    // End of life: let go of the resource and its lock; errors are of no use here.
    if (resource_) {
        try {
            resource_->Release();
        } catch (...) {
        }
        try {
            resource_->SetLocked(false);
        } catch (...) {
        }
        resource_.reset();
    }
    applicationRef_.reset();
    dropView();
}

clsDocView* mvDocument::View() const {
    return viewWidget_ ? view_ : nullptr;
}

SourceView* mvDocument::Editor() const {
    clsDocView* view = View();
    return view ? view->txtText() : nullptr;
}

ScintillaBuffer* mvDocument::Buffer() const {
    SourceView* editor = Editor();
    return editor ? &editor->Buffer() : nullptr;
}

bool mvDocument::ReadOnly() const {
    if (!resource_)
        return false;
    return guarded([&] { return resource_->ReadOnly(); }, false);
}

bool mvDocument::NewItem() const {
    if (!resource_)
        return true;
    return guarded([&] { return !resource_->Exists(); }, true);
}

bool mvDocument::IsDirty() const {
    ScintillaBuffer* buffer = Buffer();
    return buffer ? buffer->Modified() : false;
}

QString mvDocument::Path() const {
    if (!resource_)
        return {};
    return guarded([&] { return resource_->Path(); }, QString());
}

QString mvDocument::FileName() const {
    if (!resource_)
        return {};
    return guarded([&] { return resource_->Folder(); }, QString());
}

QString mvDocument::ItemID() const {
    if (!resource_)
        return {};
    return guarded([&] { return resource_->ItemID(); }, QString());
}

bool mvDocument::LocalFile() const {
    if (!resource_)
        return false;
    return guarded([&] { return resource_->Provider() == QLatin1String("file"); }, false);
}

void mvDocument::SetHighlight(bool highlight) {
    if (highlight == highlight_)
        return;
    highlight_ = highlight;
    if (clsDocView* view = View())
        view->HighlightChanged(highlight);
}

QString mvDocument::DisplayName() const {
    if (!resource_)
        return QStringLiteral("NewItem") + QString::number(newNumber_);
    return guarded(
        [&] {
            if (resource_->Provider() == QLatin1String("file"))
                return resource_->ItemID();
            return resource_->Folder() + QLatin1Char(' ') + resource_->ItemID();
        },
        QString());
}

QString mvDocument::TitleText() const {
    QString title = DisplayName();
    if (!resource_)
        return title + QStringLiteral(" (New)");
    try {
        if (resource_->Provider() == QLatin1String("mvdb")) {
            const QString label = resource_->HostLabel();
            if (!label.isEmpty())
                title += QStringLiteral(" on ") + label;
        }
        if (!resource_->Exists())
            title += QStringLiteral(" (New)");
        else if (resource_->ReadOnly())
            title += QStringLiteral(" (Read only)");
    } catch (...) {
    }
    return title;
}

bool mvDocument::CanCompile() const {
    if (!resource_)
        return false;
    return !LocalFile() && !ReadOnly() && guarded([&] { return resource_->IsItem(); }, false);
}

bool mvDocument::FileNew() {
    return MakeNew(nullptr);
}

bool mvDocument::MakeNew(std::shared_ptr<mvResource> resource) {
    ProcessState& state = ProcessState::Instance();
    BusyCursor busy;
    // Errors up to the count are swallowed, so that the document still comes up.
    try {
        resource_.reset();
        resource_ = std::move(resource);
        EnsureView();
        if (ScintillaBuffer* buffer = Buffer()) {
            buffer->SetAllText(QString());
            buffer->ClearAllBookmarks();
            buffer->ClearUndoStack();
        }
        newNumber_ = ++state.NextNewNumber;
        labels_.reset();
        if (clsDocView* view = View()) {
            view->SetTitle(TitleText());
            view->Show();
        }
        if (state.MainWindow)
            state.MainWindow->DocumentCount += 1;
    } catch (...) {
    }
    if (resource_) {
        try {
            HostContext context;
            context.Provider = resource_->Provider();
            context.ServerName = resource_->ServerName();
            context.Database = resource_->Database();
            context.Folder = resource_->Folder();
            state.Host = context;
        } catch (...) {
        }
    }
    if (state.MainWindow)
        state.MainWindow->UpdateToolBar();
    return true;
}

bool mvDocument::FileClose(bool) {
    if (closed_)
        return true;
    ProcessState& state = ProcessState::Instance();
    // Keeps this object alive while it takes itself out of the collection.
    std::shared_ptr<mvDocument> self = shared_from_this();
    dropView();
    if (state.Documents)
        state.Documents->Remove(QString::number(documentNumber_));
    if (state.MainWindow) {
        state.MainWindow->DocumentCount -= 1;
        if (state.MainWindow->DocumentCount < 1)
            state.MainWindow->ShowDocumentPanes(false);
    }
    closed_ = true;
    labels_.reset();
    Q_EMIT DocumentClose();
    if (resource_) {
        try {
            resource_->Release();
        } catch (...) {
        }
        try {
            resource_->SetLocked(false);
        } catch (...) {
        }
        resource_.reset();
    }
    return true;
}

void mvDocument::dropView() {
    clsDocView* view = View();
    view_ = nullptr;
    viewWidget_.clear();
    if (view) {
        // Break the cycle first, so that a late event of the window finds no document.
        view->SetViewObject(nullptr);
        view->Unload();
    }
}

void mvDocument::Activate() {
    try {
        ProcessState& state = ProcessState::Instance();
        if (state.MainWindow)
            ForceForeground(state.MainWindow);
        EnsureView();
        if (clsDocView* view = View())
            view->Activate();
    } catch (...) {
    }
}

void mvDocument::EnsureView() {
    if (!View()) {
        ProcessState& state = ProcessState::Instance();
        // The frame's document area owns the window; without a frame (a tool or a test) the
        // document does, through Unload.
        frmDocument* form = Settings().MinMaxClose ? new frmDocumentx(state.MainWindow)
                                                   : new frmDocument(state.MainWindow);
        view_ = form;
        viewWidget_ = form;
        view_->SetViewObject(shared_from_this());
        view_->SetTag(QString::number(documentNumber_));
        form->Load();
    }
    if (!view_->Visible())
        view_->SetVisible(true);
}

void mvDocument::SetDirty(bool flag) {
    if (ScintillaBuffer* buffer = Buffer())
        buffer->SetModified(flag);
}

bool mvDocument::AutoSaveFlag() const {
    clsDocView* view = View();
    return view ? view->AutoSaveFlag() : false;
}

void mvDocument::SetAutoSaveFlag(bool flag) {
    if (clsDocView* view = View())
        view->SetAutoSaveFlag(flag);
}

QString mvDocument::HostToEditorText(const QString& text) {
    const int tabSize = Settings().TabSize >= 1 ? Settings().TabSize : 1;
    const QString blanks(tabSize, QLatin1Char(' '));
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        switch (c.unicode()) {
        case kValueMarkHost:
            out += QChar(kValueMark);
            break;
        case kSubvalueMarkHost:
            out += QChar(kSubvalueMark);
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
    out.replace(QChar(kValueMark), QChar(kValueMarkHost));
    out.replace(QChar(kSubvalueMark), QChar(kSubvalueMarkHost));
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
    SetSelText(QString(QChar(kValueMarkHost)));
}

void mvDocument::InsSubValue() {
    EnsureView();
    SetSelText(QString(QChar(kSubvalueMarkHost)));
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
