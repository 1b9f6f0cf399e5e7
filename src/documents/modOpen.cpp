#include "documents/modOpen.h"

#include "app/ProcessState.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "documents/mvPath.h"
#include "documents/mvResource.h"
#include "recovery/modAutoRecover.h"
#include "settings/Moriox.h"
#include "support/BrixError.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

#include <QCoreApplication>
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
