#include "documents/modOpen.h"

#include "app/ProcessState.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "documents/mvResource.h"
#include "recovery/modAutoRecover.h"
#include "settings/Moriox.h"
#include "support/BrixError.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

#include <QCoreApplication>

namespace {

const QString kAnyPart = QStringLiteral("*");

// Opened documents show before the next one is read, and a click in between is seen.
void letInputRun() {
    QCoreApplication::processEvents();
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
        if (document->OpenResource(resource, readOnly))
            AddRecent(document->Path());
        else
            document->FileClose(true);
        letInputRun();
    }
}

std::shared_ptr<mvDocument> modOpen::OpenPath(const QString& path, bool readOnly) {
    auto document = mvDocument::Create();
    const bool opened = document->FileOpen(path, readOnly);
    if (opened)
        AddRecent(document->Path());
    else
        document->FileClose(true);
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
        if (document->FileOpen(path, false))
            AddRecent(document->Path());
        else
            document->FileClose(true);
    }
    letInputRun();
}

std::shared_ptr<mvDocument> modOpen::OpenRecent(int16_t index) {
    const clsRecentList* recent = Settings().RecentList.get();
    if (!recent || index < 1 || index > recent->ListCount())
        return nullptr;
    return OpenPath(ResolveRecentPath(recent->ListItem(index)));
}

QString modOpen::RecentPathOf(const QString& path) {
    mvConnection& connection = mvConnection::Instance();
    QString provider, server, database, folder, itemId;
    connection.ParsePath(path, provider, server, database, folder, itemId);
    if (provider.compare(QLatin1String("file"), Qt::CaseInsensitive) == 0)
        return path;
    return connection.MakePath(provider, kAnyPart, kAnyPart, folder, itemId);
}

QString modOpen::ResolveRecentPath(const QString& path) {
    mvConnection& connection = mvConnection::Instance();
    QString provider, server, database, folder, itemId;
    connection.ParsePath(path, provider, server, database, folder, itemId);
    if (provider.compare(QLatin1String("file"), Qt::CaseInsensitive) == 0)
        return path;
    const HostContext& host = ProcessState::Instance().Host;
    const bool hostContext = host.Provider.compare(provider, Qt::CaseInsensitive) == 0;
    if (server == kAnyPart && hostContext && !host.ServerName.isEmpty())
        server = host.ServerName;
    if (database == kAnyPart) {
        if (hostContext && !host.Database.isEmpty() && host.Database != kAnyPart) {
            database = host.Database;
        } else if (const HostProfile* profile = connection.Profiles().Find(server)) {
            if (!profile->DefaultAccount.isEmpty())
                database = profile->DefaultAccount;
        }
    }
    return connection.MakePath(provider, server, database, folder, itemId);
}
