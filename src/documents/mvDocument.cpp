#include "documents/mvDocument.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/DocumentSteps.h"
#include "documents/clsDocView.h"
#include "documents/mvResource.h"
#include "editing/OpCommentBlock.h"
#include "editing/OpFormat.h"
#include "editing/OpIndentBlock.h"
#include "editing/OpToggleCase.h"
#include "editing/frmDocument.h"
#include "editing/frmDocumentx.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "language/SourceViewControl.h"
#include "settings/Moriox.h"
#include "support/BusyCursor.h"
#include "support/ForceForeground.h"
#include "support/IFrame.h"

using namespace DocumentSteps;

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
    // End of life: let go of the resource and its lock.
    dropResource();
    applicationRef_.reset();
    dropView();
}

void mvDocument::dropResource() {
    // Errors are of no use here: the document is going either way.
    if (!resource_)
        return;
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
    return Guarded([&] { return resource_->ReadOnly(); }, false);
}

bool mvDocument::NewItem() const {
    if (!resource_)
        return true;
    return Guarded([&] { return !resource_->Exists(); }, true);
}

bool mvDocument::IsDirty() const {
    ScintillaBuffer* buffer = Buffer();
    return buffer ? buffer->Modified() : false;
}

QString mvDocument::Path() const {
    if (!resource_)
        return {};
    return Guarded([&] { return resource_->Path(); }, QString());
}

QString mvDocument::FileName() const {
    if (!resource_)
        return {};
    return Guarded([&] { return resource_->Folder(); }, QString());
}

QString mvDocument::ItemID() const {
    if (!resource_)
        return {};
    return Guarded([&] { return resource_->ItemID(); }, QString());
}

bool mvDocument::LocalFile() const {
    if (!resource_)
        return false;
    return Guarded([&] { return resource_->Provider() == QLatin1String("file"); }, false);
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
    return Guarded(
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
    return !LocalFile() && !ReadOnly() && Guarded([&] { return resource_->IsItem(); }, false);
}

bool mvDocument::FileNew() {
    return MakeNew(nullptr);
}

namespace {

// One step of making a document new: a failure of one step does not skip the next.
template <typename Fn> void swallowing(Fn&& step) {
    try {
        step();
    } catch (...) {
    }
}

} // namespace

bool mvDocument::MakeNew(std::shared_ptr<mvResource> resource) {
    ProcessState& state = ProcessState::Instance();
    BusyCursor busy;
    // Each step on its own, so that the document still gets its title, shows and counts.
    swallowing([&] { resource_.reset(); });
    swallowing([&] { resource_ = std::move(resource); });
    swallowing([&] { EnsureView(); });
    swallowing([&] {
        if (ScintillaBuffer* buffer = Buffer())
            buffer->SetAllText(QString());
    });
    swallowing([&] {
        if (ScintillaBuffer* buffer = Buffer())
            buffer->ClearAllBookmarks();
    });
    swallowing([&] {
        if (ScintillaBuffer* buffer = Buffer())
            buffer->ClearUndoStack();
    });
    newNumber_ = ++state.NextNewNumber;
    labels_.reset();
    swallowing([&] {
        if (clsDocView* view = View())
            view->SetTitle(TitleText());
    });
    swallowing([&] {
        if (clsDocView* view = View())
            view->Show();
    });
    swallowing([&] { countIn(); });
    if (resource_)
        swallowing([&] { TakeHostContext(*resource_); });
    UpdateCommands();
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
