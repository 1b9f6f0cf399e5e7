#include "documents/modOpen.h"

#include "app/ProcessState.h"
#include "documents/BusyPointer.h"
#include "documents/DocumentSteps.h"
#include "documents/clsDocView.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "documents/mvPath.h"
#include "documents/mvResource.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "recovery/modAutoRecover.h"
#include "settings/Moriox.h"
#include "support/BrixError.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

#include <QCoreApplication>
#include <algorithm>
#include <optional>

namespace {

const QString kAnyPart = QStringLiteral("*");

// Opened documents show before the next one is read, and a click in between is seen.
void letInputRun() {
    QCoreApplication::processEvents();
}

// What opened goes on the recent list; what failed is closed again. Gives `opened`.
bool settle(const std::shared_ptr<mvDocument>& document, bool opened) {
    if (opened)
        modOpen::AddRecent(document->Path());
    else
        document->FileClose(true);
    return opened;
}

} // namespace

void modOpen::AddRecent(const QString& path) {
    if (clsRecentList* recent = Settings().RecentList.get())
        recent->AddItem(RecentPathOf(path));
}

std::shared_ptr<mvResource> modOpen::DefaultResource(const std::shared_ptr<mvResource>& current) {
    if (current)
        return current;
    const HostContext& host = ProcessState::Instance().Host;
    mvConnection& connection = mvConnection::Instance();
    return connection.GetResource(
        connection.MakePath(host.Provider, host.ServerName, host.Database, host.Folder, QString()),
        false, false, 0);
}

void modOpen::OpenCommand(QWidget* owner) {
    std::vector<std::shared_ptr<mvResource>> chosen;
    {
        const modAutoRecover::Suspension suspended;
        std::shared_ptr<mvResource> start;
        try {
            start = DefaultResource(nullptr);
        } catch (const BrixError&) {
            // A context that no longer leads anywhere: the browser starts at its default.
        }
        try {
            chosen = mvConnection::Instance().BrowseForResources(
                QStringLiteral("Open"), start, QString(), -1, 0, Settings().RecordLocking, 0,
                owner);
        } catch (const BrixError& error) {
            BrixMessage(error.Description, MsgBox::Exclamation);
            return;
        }
    }
    for (const auto& resource : chosen) {
        const auto document = mvDocument::Create();
        // A read-only choice in the browser comes back on the resource.
        bool readOnly = false;
        try {
            readOnly = resource->ReadOnly();
        } catch (...) {
        }
        settle(document, document->OpenResource(resource, readOnly));
        letInputRun();
    }
}

std::shared_ptr<mvDocument> modOpen::OpenPath(const QString& path, bool readOnly) {
    auto document = mvDocument::Create();
    const bool opened = settle(document, document->FileOpen(path, readOnly));
    letInputRun();
    return opened ? document : nullptr;
}

void modOpen::OpenDroppedFiles(const QStringList& fileNames) {
    mvConnection& connection = mvConnection::Instance();
    for (const QString& name : fileNames) {
        const auto document = mvDocument::Create();
        QString path;
        try {
            path = connection.MakeFilePath(QString(), QString(), name);
        } catch (...) {
        }
        settle(document, document->FileOpen(path, false));
    }
    letInputRun();
}

std::shared_ptr<mvDocument> modOpen::OpenRecent(int16_t index) {
    const clsRecentList* recent = Settings().RecentList.get();
    if (!recent || index < 1 || index > recent->ListCount())
        return nullptr;
    return OpenPath(ResolveRecentPath(recent->ListItem(index)));
}

namespace {

// The parts of a host path; none for a local file, which is kept as it is.
std::optional<mvPath> hostParts(const QString& path) {
    mvPath parts = mvConnection::Instance().ParsePath(path);
    if (parts.Provider.compare(QLatin1String("file"), Qt::CaseInsensitive) == 0)
        return std::nullopt;
    return parts;
}

} // namespace

QString modOpen::RecentPathOf(const QString& path) {
    const auto parts = hostParts(path);
    if (!parts)
        return path;
    return mvConnection::Instance().MakePath(parts->Provider, kAnyPart, kAnyPart, parts->Folder,
                                             parts->ItemID);
}

QString modOpen::ResolveRecentPath(const QString& path) {
    auto parts = hostParts(path);
    if (!parts)
        return path;
    mvConnection& connection = mvConnection::Instance();
    const HostContext& host = ProcessState::Instance().Host;
    const bool hostContext = host.Provider.compare(parts->Provider, Qt::CaseInsensitive) == 0;
    if (parts->ServerName == kAnyPart && hostContext && !host.ServerName.isEmpty())
        parts->ServerName = host.ServerName;
    if (parts->Database == kAnyPart) {
        if (hostContext && !host.Database.isEmpty() && host.Database != kAnyPart) {
            parts->Database = host.Database;
        } else if (const HostProfile* profile = connection.Profiles().Find(parts->ServerName)) {
            if (!profile->DefaultAccount.isEmpty())
                parts->Database = profile->DefaultAccount;
        }
    }
    return connection.MakePath(parts->Provider, parts->ServerName, parts->Database, parts->Folder,
                               parts->ItemID);
}

using namespace DocumentSteps;

// The document's own members of opening: the lock question, read only, missing items.

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
                    Tell(error.Description);
                    return false;
                }
                if (Ask(name + QStringLiteral(" is locked by another user or process. Open in "
                                              "\"read only\" mode instead?"),
                        MsgBox::YesNo) == MsgBox::Yes) {
                    // No lock is tried again, so this can't be asked twice.
                    openReadOnly = true;
                    locking = false;
                    continue;
                }
            }
            Tell(error.Description);
            return false;
        } catch (...) {
            Tell(CurrentDescription());
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
            Tell(QStringLiteral("Unable to open item ") + resource->DisplayID() +
                 QStringLiteral(" because it appears to be a folder or file definition."));
            return false;
        }
        if (!resource->Exists()) {
            busy.Restore();
            if (Ask(QStringLiteral("Item ") + resource->DisplayID() +
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
            if (Ask(QStringLiteral("Item ") + resource->DisplayID() +
                        QStringLiteral(" is \"read only\". Open in read-only mode?"),
                    MsgBox::YesNo) != MsgBox::Yes)
                return false;
            resource->SetReadOnly(true);
            busy.Show();
        }
        resource_.reset();
        resource_ = std::move(resource);

        ScintillaBuffer* buffer = Buffer();
        SetStatus(QStringLiteral("Reading document from host"));
        bool binary = false;
        {
            const modAutoRecover::Suspension suspended;
            // Straight into the editor's form: the text is never built twice.
            const QByteArray text = resource_->ReadEditorText(std::max<int>(Settings().TabSize, 1));
            binary = text.contains('\0');
            buffer->SetAllBytes(text);
        }
        SetStatus(QString());
        // Told, not asked: an automation client opening it must not wait on a box.
        View()->ShowNotice(binary ? QStringLiteral("This document holds NUL bytes and looks like a "
                                                   "binary file. Every byte is kept as it was; "
                                                   "control characters show as signs.")
                                  : QString());

        Editor()->SetCursor(0, 0);
        buffer->ClearAllBookmarks();
        buffer->ClearUndoStack();
        buffer->SetModified(false);
        View()->SetTitle(TitleText());
        labels_.reset();
        View()->Show();
        countIn();
        TakeHostContext(*resource_);
        UpdateCommands();
        return true;
    } catch (...) {
        // What is already in the control stays; the caller decides about the document.
        return Failed(busy);
    }
}
