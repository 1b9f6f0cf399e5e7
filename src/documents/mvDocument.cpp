#include "documents/mvDocument.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/clsDocView.h"
#include "documents/mvConnection.h"
#include "documents/mvPath.h"
#include "documents/mvResource.h"
#include "editing/OpCommentBlock.h"
#include "editing/OpFormat.h"
#include "editing/OpIndentBlock.h"
#include "editing/OpReplace.h"
#include "editing/OpToggleCase.h"
#include "editing/frmDocument.h"
#include "editing/frmDocumentx.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "language/SourceViewControl.h"
#include "recovery/modAutoRecover.h"
#include "settings/Moriox.h"
#include "support/BrixError.h"
#include "support/BusyCursor.h"
#include "support/ForceForeground.h"
#include "support/IFrame.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

#include <QApplication>
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

// The busy pointer of one operation; it comes off while a question waits for the user.
class BusyPointer {
public:
    BusyPointer() { Show(); }
    ~BusyPointer() { Restore(); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
    void Show() {
        if (!shown_ && qobject_cast<QApplication*>(QCoreApplication::instance())) {
            QApplication::setOverrideCursor(Qt::WaitCursor);
            shown_ = true;
        }
    }
    void Restore() {
        if (shown_)
            QApplication::restoreOverrideCursor();
        shown_ = false;
    }

private:
    bool shown_ = false;
};

// The description of the exception being handled, as the user is to read it.
QString currentDescription() {
    try {
        throw;
    } catch (const BrixError& error) {
        return error.Description;
    } catch (const std::exception& error) {
        return QString::fromLocal8Bit(error.what());
    } catch (...) {
        return QStringLiteral("An unexpected error has occurred.");
    }
}

int32_t ask(const QString& question, int32_t buttons) {
    return BrixMessage(question, buttons | MsgBox::Question) & ~MsgBox::Ticked;
}

void tell(const QString& text) {
    BrixMessage(text, MsgBox::Exclamation);
}

void setStatus(const QString& text) {
    if (IFrame* frame = ProcessState::Instance().Frame())
        frame->SetStatusText(text);
}

void updateCommands() {
    if (IFrame* frame = ProcessState::Instance().Frame())
        frame->RefreshCommands();
}

// The one handler at the end of an operation, called from inside its catch: the pointer
// back, the status line cleared, the description shown. Gives false.
bool failed(BusyPointer& busy) {
    busy.Restore();
    setStatus(QString());
    tell(currentDescription());
    return false;
}

// New paths start from the place of the last item opened or saved.
void takeHostContext(const mvResource& resource) {
    HostContext context;
    context.Provider = resource.Provider();
    context.ServerName = resource.ServerName();
    context.Database = resource.Database();
    context.Folder = resource.Folder();
    ProcessState::Instance().Host = context;
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
        countIn();
    } catch (...) {
    }
    if (resource_) {
        try {
            takeHostContext(*resource_);
        } catch (...) {
        }
    }
    updateCommands();
    return true;
}

void mvDocument::countIn() {
    IFrame* frame = ProcessState::Instance().Frame();
    if (counted_ || !frame)
        return;
    frame->DocumentAdded();
    counted_ = true;
}

void mvDocument::countOut() {
    IFrame* frame = ProcessState::Instance().Frame();
    if (!counted_ || !frame)
        return;
    counted_ = false;
    frame->DocumentRemoved();
}

bool mvDocument::FileOpen(const QString& path, bool readOnly) {
    // A switch to read only works on copies: the caller's wish stays as it was.
    bool openReadOnly = readOnly;
    bool locking = Settings().RecordLocking;
    mvConnection& connection = mvConnection::Instance();
    std::shared_ptr<mvResource> resource;
    while (!resource) {
        try {
            resource = connection.GetResource(path, openReadOnly, locking, 0);
        } catch (const BrixError& error) {
            if (error.Number == BrixErrors::CannotWrite && (!openReadOnly || locking)) {
                // It can't be written at all, so it opens read only without a word.
                openReadOnly = true;
                locking = false;
                continue;
            }
            if (error.Number == BrixErrors::LockedByOther && locking) {
                QString name;
                try {
                    name = connection.GetResource(path, false, false, 0)->ShortName();
                } catch (...) {
                    tell(error.Description);
                    return false;
                }
                if (ask(name + QStringLiteral(" is locked by another user or process. Open in "
                                              "\"read only\" mode instead?"),
                        MsgBox::YesNo) == MsgBox::Yes) {
                    // No lock is tried again, so this can't be asked twice.
                    openReadOnly = true;
                    locking = false;
                    continue;
                }
            }
            tell(error.Description);
            return false;
        } catch (...) {
            tell(currentDescription());
            return false;
        }
    }
    return OpenResource(std::move(resource), openReadOnly);
}

bool mvDocument::OpenResource(std::shared_ptr<mvResource> resource, bool readOnly) {
    if (!resource)
        return false;
    BusyPointer busy;
    try {
        EnsureView();
        if (!resource->IsItem()) {
            busy.Restore();
            tell(QStringLiteral("Unable to open item ") + resource->DisplayID() +
                 QStringLiteral(" because it appears to be a folder or file definition."));
            return false;
        }
        if (!resource->Exists()) {
            busy.Restore();
            if (ask(QStringLiteral("Item ") + resource->DisplayID() +
                        QStringLiteral(" does not exist. Create new item?"),
                    MsgBox::YesNo) == MsgBox::Yes)
                return MakeNew(std::move(resource));
            // Nothing to save yet, so the document goes at once.
            FileClose(false);
            return false;
        }
        if (readOnly) {
            resource->SetReadOnly(true);
        } else if (resource->ReadOnly()) {
            // Protected on the host, as opposed to a lock that was refused.
            busy.Restore();
            if (ask(QStringLiteral("Item ") + resource->DisplayID() +
                        QStringLiteral(" is \"read only\". Open in read-only mode?"),
                    MsgBox::YesNo) != MsgBox::Yes)
                return false;
            resource->SetReadOnly(true);
            busy.Show();
        }
        resource_.reset();
        resource_ = std::move(resource);

        ScintillaBuffer* buffer = Buffer();
        setStatus(QStringLiteral("Reading document from host"));
        {
            const modAutoRecover::Suspension suspended;
            const QString text = resource_->ReadText();
            buffer->SetAllText(HostToEditorText(text));
        }
        setStatus(QString());

        Editor()->SetCursor(0, 0);
        buffer->ClearAllBookmarks();
        buffer->ClearUndoStack();
        buffer->SetModified(false);
        View()->SetTitle(TitleText());
        labels_.reset();
        View()->Show();
        countIn();
        takeHostContext(*resource_);
        updateCommands();
        return true;
    } catch (...) {
        // What is already in the control stays; the caller decides about the document.
        return failed(busy);
    }
}

void mvDocument::writeToResource() {
    setStatus(QStringLiteral("Saving document to host"));
    {
        const modAutoRecover::Suspension suspended;
        const QString text = Text();
        resource_->WriteText(text);
        resource_->Commit();
    }
    setStatus(QString());
}

bool mvDocument::FileSave() {
    if (!resource_) {
        tell(QStringLiteral("Cannot save document - file name and/or item ID missing!"));
        return false;
    }
    if (ReadOnly()) {
        tell(QStringLiteral("Cannot save ") + DisplayName() +
             QStringLiteral(" - document is read-only!"));
        return false;
    }
    EnsureView();
    BusyPointer busy;
    try {
        writeToResource();
        takeHostContext(*resource_);
        SetDirty(false);
        updateCommands();
        labels_.reset();
        // A new item stops being "(New)" here.
        View()->SetTitle(TitleText());
        return true;
    } catch (...) {
        // The text and its modified state stay, and so does the resource.
        return failed(busy);
    }
}

bool mvDocument::FileSaveAs(const QString& path) {
    EnsureView();
    std::shared_ptr<mvResource> target;
    try {
        target = mvConnection::Instance().GetResource(path, false, false, 0);
    } catch (...) {
        tell(currentDescription());
        return false;
    }
    if (guarded([&] { return target->IsItem(); }, false))
        return SaveToResource(std::move(target));
    tell(QStringLiteral("Cannot save document - file name and/or item ID missing!"));
    return false;
}

bool mvDocument::SaveToResource(std::shared_ptr<mvResource> target) {
    if (!target)
        return false;
    QString itemId;
    try {
        // Before any test: a refused save still moves the context.
        takeHostContext(*target);
        itemId = target->ItemID();
        const QString quoted = QLatin1Char('\'') + itemId + QLatin1Char('\'');

        bool checkOverwrite = true;
        if (resource_ && mvPath::Same(resource_->Path(), target->Path())) {
            checkOverwrite = false;
            if (resource_->ReadOnly()) {
                tell(QStringLiteral("Item ") + quoted +
                     QStringLiteral(" is open in read-only mode. Please save using a different "
                                    "name."));
                return false;
            }
        }
        if (checkOverwrite) {
            if (!target->IsItem()) {
                tell(quoted +
                     QStringLiteral(" appears to be a file or folder and cannot be overwritten!"));
                return false;
            }
            if (target->Exists()) {
                if (target->ReadOnly()) {
                    tell(QStringLiteral("Item ") + quoted +
                         QStringLiteral(" exists and cannot be overwritten. Please save using a "
                                        "different name."));
                    return false;
                }
                if (ask(QStringLiteral("Item ") + quoted + QStringLiteral(" exists. Overwrite?"),
                        MsgBox::YesNo) != MsgBox::Yes)
                    return false;
            }
        }
        if (Settings().RecordLocking) {
            try {
                target->SetLocked(true);
            } catch (...) {
                // The document's own resource is untouched: it stays as it was.
                tell(QStringLiteral("Item ") + quoted +
                     QStringLiteral(" is currently locked and cannot be updated!"));
                return false;
            }
        }
    } catch (...) {
        tell(currentDescription());
        return false;
    }

    BusyPointer busy;
    try {
        // The old lock goes before the write: a failed write leaves only the target held.
        if (resource_) {
            try {
                resource_->Release();
            } catch (...) {
            }
            resource_.reset();
        }
        resource_ = std::move(target);
        writeToResource();
        SetDirty(false);
        labels_.reset();
        View()->SetTitle(TitleText());
        updateCommands();
        return true;
    } catch (...) {
        return failed(busy);
    }
}

bool mvDocument::FileClose(bool prompt) {
    if (closed_)
        return true;
    ProcessState& state = ProcessState::Instance();
    // Keeps this object alive while it takes itself out of the collection.
    std::shared_ptr<mvDocument> self = shared_from_this();
    if (View()) {
        if (prompt && IsDirty()) {
            const int32_t answer =
                ask(QStringLiteral("Save changes to ") + DisplayName() + QStringLiteral(" ?"),
                    MsgBox::YesNoCancel);
            if (answer == MsgBox::Yes) {
                // A document that was never saved stays: its caller offers Save As.
                if (!resource_ || !FileSave())
                    return false;
            } else if (answer == MsgBox::No) {
                if (resource_) {
                    try {
                        resource_->Release();
                    } catch (...) {
                    }
                }
            } else {
                return false;
            }
        }
        dropView();
    }
    if (state.Documents)
        state.Documents->Remove(QString::number(documentNumber_));
    countOut();
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
        if (IFrame* frame = ProcessState::Instance().Frame())
            ForceForeground(frame->OwnerWindow());
        EnsureView();
        if (clsDocView* view = View())
            view->Activate();
    } catch (...) {
    }
}

void mvDocument::EnsureView() {
    if (!View()) {
        IFrame* frame = ProcessState::Instance().Frame();
        // The frame's document area owns the window; without a frame (a tool or a test) the
        // document does, through Unload.
        frmDocument* form =
            Settings().MinMaxClose ? new frmDocumentx(frame) : new frmDocument(frame);
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

// The block commands and Format: each is one undoable operation on the editor's buffer.

template <typename Op> std::unique_ptr<Op> mvDocument::newOperation() {
    EnsureView();
    SourceView* editor = Editor();
    if (!editor)
        return nullptr;
    auto op = std::make_unique<Op>();
    op->Ctl = std::make_shared<SourceViewControl>(editor);
    return op;
}

void mvDocument::IndentBlock(bool indent) {
    if (auto op = newOperation<OpIndentBlock>()) {
        op->Indent = indent;
        Buffer()->ExecuteOp(std::move(op));
    }
}

void mvDocument::CommentBlock(bool comment) {
    if (auto op = newOperation<OpCommentBlock>()) {
        op->Comment = comment;
        Buffer()->ExecuteOp(std::move(op));
    }
}

void mvDocument::ToggleCase() {
    if (auto op = newOperation<OpToggleCase>())
        Buffer()->ExecuteOp(std::move(op));
}

void mvDocument::Format() {
    const BusyCursor busy;
    auto op = newOperation<OpFormat>();
    if (!op)
        return;
    // The levels come from the lexer's line flags, and lines that were never shown were
    // never scanned.
    ScintillaBuffer* buffer = Buffer();
    int32_t last = buffer->NumLines() - 1;
    buffer->UpdateLines(0, last, last);
    buffer->ExecuteOp(std::move(op));
}
