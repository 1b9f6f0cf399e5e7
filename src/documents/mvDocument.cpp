#include "documents/mvDocument.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/clsDocView.h"
#include "documents/mvResource.h"
#include "editing/frmDocument.h"
#include "editing/frmDocumentx.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"
#include "support/BusyCursor.h"
#include "support/ForceForeground.h"

namespace {

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

clsDocView* mvDocument::View() const { return viewWidget_ ? view_ : nullptr; }

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

bool mvDocument::FileNew() { return MakeNew(nullptr); }

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
