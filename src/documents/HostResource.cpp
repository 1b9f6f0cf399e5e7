#include "documents/HostResource.h"

#include "documents/ConnectionErrors.h"
#include "documents/HostProfile.h"
#include "documents/HostTransport.h"
#include "documents/ItemLock.h"
#include "documents/QmLockKeeper.h"
#include "documents/mvHost.h"
#include "documents/mvPath.h"

#include <algorithm>

namespace {

constexpr int32_t kRunCommands = 12;

bool isOurs(const QString& name) {
    // Temporary files of a save in progress.
    return name.startsWith(QLatin1String(".brix-save-"));
}

} // namespace

HostResource::HostResource(std::shared_ptr<mvHost> host, QString server, QString database,
                           QString folder, QString itemId)
    : host_(std::move(host)), server_(std::move(server)), database_(std::move(database)),
      folder_(std::move(folder)), item_(std::move(itemId)), names_(profile().ItemNames),
      codec_(profile().RawMarks, profile().Charset) {
    // A path that names no account means the host's default one, where it has one.
    if (database_.isEmpty() && (!folder_.isEmpty() || !item_.isEmpty()))
        database_ = profile().DefaultAccount;
    if (database_.isEmpty() && (!folder_.isEmpty() || !item_.isEmpty()))
        throw BrixError(ConnectionErrors::BadPath,
                        QStringLiteral("The path names a file but no account."));
    if (folder_.isEmpty() && !item_.isEmpty())
        throw BrixError(ConnectionErrors::BadPath,
                        QStringLiteral("The path names item \"%1\" but no file.").arg(item_));
    if (database_.isEmpty())
        return;
    accountFolder_ = host_->AccountFolder(database_);
    if (folder_.isEmpty())
        return;
    fileFolder_ = accountFolder_ + QLatin1Char('/') + names_.ToFileName(folder_);
    if (!item_.isEmpty())
        itemFile_ = fileFolder_ + QLatin1Char('/') + names_.ToFileName(item_);
}

HostResource::~HostResource() {
    if (qmLocked_)
        host_->LockKeeper()->Unlock(qmItem());
}

QmLockKeeper::Item HostResource::qmItem() const {
    return {accountFolder_, folder_, item_, itemLabel()};
}

const HostProfile& HostResource::profile() const {
    return *host_->Profile();
}

QString HostResource::Path() const {
    return mvPath{QStringLiteral("mvdb"), server_, database_, folder_, item_}.ToString();
}

QString HostResource::DisplayID() const {
    if (!item_.isEmpty())
        return item_;
    if (!folder_.isEmpty())
        return folder_;
    if (!database_.isEmpty())
        return database_;
    return profile().Name;
}

QString HostResource::itemLabel() const {
    return QStringLiteral("Item %1 in %2").arg(item_, folder_);
}

QString HostResource::HostLabel() const {
    return profile().Label;
}

QString HostResource::HostDatabaseLabel() const {
    return database_.isEmpty() ? profile().DefaultAccount : database_;
}

bool HostResource::HashedFile() const {
    if (fileFolder_.isEmpty())
        return false;
    HostTransport& files = *host_->Transport();
    const HostTransport::FileInfo info = files.Stat(fileFolder_);
    if (info.IsFile)
        return true;
    if (!info.IsFolder)
        return false;
    auto has = [&](const char* name) {
        return files.Stat(fileFolder_ + QLatin1Char('/') + QLatin1String(name)).Exists;
    };
    // UniVerse-style, QM's on Windows, and QM's on Linux (ScarletDME).
    return has("DATA.30") || has("OVER.30") || has("%0") || has("%1") || has("~0") || has("~1");
}

bool HostResource::IsItem() const {
    if (itemFile_.isEmpty() || HashedFile())
        return false;
    return !host_->Transport()->Stat(itemFile_).IsFolder;
}

bool HostResource::Exists() const {
    HostTransport& files = *host_->Transport();
    if (!itemFile_.isEmpty()) {
        // An item of a hashed file can't be looked at here: the file stands for it.
        if (HashedFile())
            return files.Stat(fileFolder_).Exists;
        return files.Stat(itemFile_).Exists;
    }
    if (!fileFolder_.isEmpty())
        return files.Stat(fileFolder_).Exists;
    if (!accountFolder_.isEmpty())
        return files.Stat(accountFolder_).IsFolder;
    return true;
}

bool HostResource::ReadOnly() const {
    if (readOnly_)
        return true;
    if (itemFile_.isEmpty())
        return false;
    HostTransport& files = *host_->Transport();
    const HostTransport::FileInfo info = files.Stat(itemFile_);
    if (info.Exists)
        return !info.Writable;
    // A new item can be written where its file's folder can.
    return !files.Stat(fileFolder_).Writable;
}

QByteArray HostResource::readBytes() {
    if (!IsItem())
        throw BrixError(
            ConnectionErrors::NotAnItem,
            QStringLiteral("%1 is a folder or file definition, not an item.").arg(DisplayID()));
    try {
        if (host_->LockKeeper())
            return host_->LockKeeper()->Read(qmItem());
        return host_->Transport()->ReadFile(itemFile_);
    } catch (const BrixError& e) {
        throw BrixError(e.Number,
                        QStringLiteral("%1 could not be read. %2").arg(itemLabel(), e.Description));
    }
}

void HostResource::checkWritable() const {
    if (!IsItem())
        throw BrixError(
            ConnectionErrors::NotAnItem,
            QStringLiteral("%1 is a folder or file definition, not an item.").arg(DisplayID()));
    if (ReadOnly())
        throw BrixError(BrixErrors::CannotWrite,
                        QStringLiteral("%1 can't be written: it is read-only.").arg(itemLabel()));
}

void HostResource::writeBytes(const QByteArray& bytes) {
    try {
        if (host_->LockKeeper())
            host_->LockKeeper()->Write(qmItem(), bytes);
        else
            host_->Transport()->WriteFile(itemFile_, bytes);
    } catch (const BrixError& e) {
        throw BrixError(e.Number,
                        QStringLiteral("%1 was not saved; the item on the host is unchanged. %2")
                            .arg(itemLabel(), e.Description));
    }
}

QString HostResource::ReadText() {
    return codec_.Decode(readBytes());
}

void HostResource::WriteText(const QString& text) {
    checkWritable();
    writeBytes(codec_.Encode(text, itemLabel()));
}

QByteArray HostResource::ReadEditorText(int tabBlanks) {
    return codec_.DecodeForEditor(readBytes(), tabBlanks);
}

void HostResource::WriteEditorText(std::string_view text) {
    checkWritable();
    writeBytes(codec_.EncodeFromEditor(text, itemLabel()));
}

void HostResource::SetLocked(bool locked) {
    if (!locked) {
        Release();
        return;
    }
    if (itemFile_.isEmpty())
        return;
    if (host_->LockKeeper()) {
        if (!qmLocked_)
            host_->LockKeeper()->Lock(qmItem());
        qmLocked_ = true;
        return;
    }
    if (!lock_)
        lock_ = std::make_unique<ItemLock>(host_->Transport(),
                                           accountFolder_ + QLatin1Char('/') + profile().LockFolder,
                                           ItemLock::EntryName(folder_, item_), itemLabel());
    lock_->Acquire();
}

bool HostResource::Locked() const {
    return qmLocked_ || (lock_ && lock_->Held());
}

void HostResource::Release() {
    if (qmLocked_) {
        qmLocked_ = false;
        host_->LockKeeper()->Unlock(qmItem());
    }
    if (lock_)
        lock_->Release();
}

bool HostResource::HostAllows(int32_t code) {
    return code == kRunCommands && host_->AllowsCommands();
}

std::vector<mvResource::Child> HostResource::Children() {
    std::vector<Child> children;
    HostTransport& files = *host_->Transport();
    if (database_.isEmpty()) {
        for (const QString& account : host_->AccountNames())
            children.push_back({account, true, false});
        return children;
    }
    if (folder_.isEmpty()) {
        for (const auto& entry : files.List(accountFolder_)) {
            if (entry.Name.startsWith(QLatin1Char('.')) || isOurs(entry.Name))
                continue;
            const QString name = names_.FromFileName(entry.Name);
            if (name.isEmpty())
                continue;
            bool directoryFile = entry.IsFolder;
            if (directoryFile) {
                const QString path =
                    accountFolder_ + QLatin1Char('/') + entry.Name + QLatin1Char('/');
                directoryFile = !files.Stat(path + QStringLiteral("DATA.30")).Exists &&
                                !files.Stat(path + QStringLiteral("%0")).Exists &&
                                !files.Stat(path + QStringLiteral("~0")).Exists;
            }
            children.push_back({name, directoryFile, false});
        }
    } else if (item_.isEmpty() && !HashedFile()) {
        for (const auto& entry : files.List(fileFolder_)) {
            if (entry.IsFolder || isOurs(entry.Name))
                continue;
            const QString name = names_.FromFileName(entry.Name);
            if (!name.isEmpty())
                children.push_back({name, false, true});
        }
    }
    std::sort(children.begin(), children.end(), [](const Child& a, const Child& b) {
        return a.Name.compare(b.Name, Qt::CaseInsensitive) < 0;
    });
    return children;
}
