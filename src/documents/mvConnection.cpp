#include "documents/mvConnection.h"

#include "documents/ConnectionErrors.h"
#include "documents/FileResource.h"
#include "documents/HostResource.h"
#include "documents/LocalTransport.h"
#include "documents/QmLockKeeper.h"
#include "documents/SshTransport.h"
#include "documents/WaitingTransport.h"
#include "documents/frmBrowse.h"
#include "documents/mvHost.h"

#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

mvConnection& mvConnection::Instance() {
    static mvConnection connection;
    return connection;
}

void mvConnection::Initialize(int32_t) {
    LoadProfiles(ConnectionProfiles::DefaultFile());
}

void mvConnection::LoadProfiles(const QString& file) {
    profiles_.Load(file);
    profileCopies_.clear();
    transports_.clear();
    keepers_.clear();
    initialized_ = true;
    warningsShown_ = false;
}

void mvConnection::ShowWarnings(QWidget* owner) {
    const QStringList warnings = Profiles().Warnings;
    if (warningsShown_ || warnings.isEmpty())
        return;
    warningsShown_ = true;
    BrixMessage(QStringLiteral("The connections file %1 has problems:\n\n%2\n\n"
                               "Correct the file and start the program again.")
                    .arg(ConnectionProfiles::DefaultFile(),
                         QStringLiteral("- ") + warnings.join(QStringLiteral("\n- "))),
                MsgBox::Exclamation, owner);
}

const ConnectionProfiles& mvConnection::Profiles() {
    if (!initialized_)
        Initialize(1);
    return profiles_;
}

std::shared_ptr<HostTransport> mvConnection::transportFor(const HostProfile& profile) {
    const bool ssh = profile.Transport == QLatin1String("ssh");
    if (!ssh && profile.Transport != QLatin1String("local"))
        throw BrixError(
            ConnectionErrors::UnknownServer,
            QStringLiteral("The connection \"%1\" uses the transport \"%2\", which this "
                           "program doesn't have.")
                .arg(profile.Name, profile.Transport));
    const QString key = profile.Name.toLower();
    auto& transport = transports_[key];
    if (!transport && ssh)
        transport = std::make_shared<WaitingTransport>(std::make_shared<SshTransport>(
            SshTransport::Target{profile.SshHost, profile.SshPort, profile.SshUser,
                                 profile.SshIdentityFile, profile.SshConfigFile}));
    else if (!transport)
        transport = std::make_shared<WaitingTransport>(std::make_shared<LocalTransport>());
    transport->SetCommandTimeout(profile.CommandTimeout * 1000);
    return transport;
}

std::shared_ptr<mvHost> mvConnection::HostFor(const QString& serverName, const QString& account) {
    const HostProfile* profile = Profiles().Find(serverName);
    if (!profile)
        throw BrixError(ConnectionErrors::UnknownServer,
                        QStringLiteral("There is no connection named \"%1\". Connections are set "
                                       "up in %2.")
                            .arg(serverName, ConnectionProfiles::DefaultFile()));
    const QString key = profile->Name.toLower();
    auto& copy = profileCopies_[key];
    if (!copy)
        copy = std::make_shared<const HostProfile>(*profile);
    auto host = std::make_shared<mvHost>(copy, transportFor(*profile),
                                         account.isEmpty() ? profile->DefaultAccount : account);
    if (profile->QmLocks) {
        auto& keeper = keepers_[key];
        if (!keeper)
            keeper = std::make_shared<QmLockKeeper>(
                host->Transport(), QProcess::splitCommand(profile->CommandLine), profile->Charset);
        host->SetLockKeeper(keeper);
    }
    return host;
}

std::shared_ptr<mvResource> mvConnection::GetResource(const QString& path, bool readOnly,
                                                      bool recordLocking, int32_t) {
    const mvPath parts = mvPath::Parse(path);
    std::shared_ptr<mvResource> resource;
    if (parts.Provider == QLatin1String("file")) {
        resource = std::make_shared<FileResource>(parts.Folder, parts.ItemID);
    } else if (parts.Provider == QLatin1String("mvdb")) {
        // "*" as the account (a recent entry's form) is the connection's default account.
        QString account = parts.Database;
        if (account == QLatin1String("*")) {
            const HostProfile* profile = Profiles().Find(parts.ServerName);
            account = profile ? profile->DefaultAccount : QString();
        }
        resource = std::make_shared<HostResource>(HostFor(parts.ServerName, account),
                                                  parts.ServerName.isEmpty() ? QStringLiteral("*")
                                                                             : parts.ServerName,
                                                  account, parts.Folder, parts.ItemID);
    } else {
        throw BrixError(ConnectionErrors::BadPath,
                        QStringLiteral("\"%1\" is not a path this program knows.").arg(path));
    }
    if (readOnly) {
        resource->SetReadOnly(true);
    } else if (recordLocking && resource->IsItem()) {
        if (resource->ReadOnly())
            throw BrixError(BrixErrors::CannotWrite,
                            QStringLiteral("%1 can't be opened for writing: it is read-only.")
                                .arg(resource->DisplayID()));
        resource->SetLocked(true);
    }
    return resource;
}

QString mvConnection::MakePath(const QString& provider, const QString& serverName,
                               const QString& database, const QString& folder,
                               const QString& itemID) const {
    return mvPath{provider, serverName, database, folder, itemID}.ToString();
}

void mvConnection::ParsePath(const QString& path, QString& provider, QString& serverName,
                             QString& database, QString& folder, QString& itemID) const {
    const mvPath parts = mvPath::Parse(path);
    provider = parts.Provider;
    serverName = parts.ServerName;
    database = parts.Database;
    folder = parts.Folder;
    itemID = parts.ItemID;
}

QString mvConnection::MakeFilePath(const QString&, const QString&, const QString& fileName) const {
    const QFileInfo info(QDir::current(), fileName);
    const QString absolute = QDir::cleanPath(info.absoluteFilePath());
    return mvPath{
        QStringLiteral("file"), {}, {}, QFileInfo(absolute).path(), QFileInfo(absolute).fileName()}
        .ToString();
}

std::shared_ptr<mvResource>
mvConnection::BrowseForResource(const QString& caption, const std::shared_ptr<mvResource>& start,
                                const QString& extension, int32_t, int32_t, bool recordLocking,
                                int32_t, QWidget* owner) {
    const auto chosen = frmBrowse::Run(caption, start, extension, false, recordLocking, owner);
    return chosen.empty() ? nullptr : chosen.front();
}

std::vector<std::shared_ptr<mvResource>>
mvConnection::BrowseForResources(const QString& caption, const std::shared_ptr<mvResource>& start,
                                 const QString& extension, int32_t, int32_t, bool recordLocking,
                                 int32_t, QWidget* owner) {
    return frmBrowse::Run(caption, start, extension, true, recordLocking, owner);
}
