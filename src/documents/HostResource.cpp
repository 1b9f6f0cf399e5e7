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

HostResource::Probe HostResource::probe() const {
    // UniVerse-style, QM's on Windows, and QM's on Linux (ScarletDME).
    static const char* const markers[] = {"DATA.30", "OVER.30", "%0", "%1", "~0", "~1"};
    QStringList paths{fileFolder_};
    if (!hashed_) {
        for (const char* marker : markers)
            paths << fileFolder_ + QLatin1Char('/') + QLatin1String(marker);
    }
    if (!itemFile_.isEmpty())
        paths << itemFile_;
    const std::vector<HostTransport::FileInfo> infos = host_->Transport()->StatAll(paths);
    Probe found;
    found.Folder = infos.front();
    if (!itemFile_.isEmpty())
        found.Item = infos.back();
    if (hashed_) {
        found.Hashed = *hashed_;
        return found;
    }
    found.Hashed = found.Folder.IsFile;
    for (size_t i = 1; found.Folder.IsFolder && i <= std::size(markers); ++i)
        found.Hashed = found.Hashed || infos.at(i).Exists;
    if (found.Folder.Exists)
        hashed_ = found.Hashed;
    return found;
}

bool HostResource::HashedFile() const {
    return !fileFolder_.isEmpty() && probe().Hashed;
}

bool HostResource::IsItem() const {
    if (itemFile_.isEmpty())
        return false;
    const Probe found = probe();
    return !found.Hashed && !found.Item.IsFolder;
}

bool HostResource::Exists() const {
    HostTransport& files = *host_->Transport();
    if (!itemFile_.isEmpty()) {
        // An item of a hashed file can't be looked at here: the file stands for it.
        const Probe found = probe();
        return found.Hashed ? found.Folder.Exists : found.Item.Exists;
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
    const Probe found = probe();
    // A new item can be written where its file's folder can.
    return found.Item.Exists ? !found.Item.Writable : !found.Folder.Writable;
}

QByteArray HostResource::readBytes() {
    if (!IsItem())
        throw BrixError(
            ConnectionErrors::NotAnItem,
            QStringLiteral("%1 is a folder or file definition, not an item.").arg(DisplayID()));
    try {
        if (!host_->LockKeeper())
            return host_->Transport()->ReadStamped(itemFile_, stamp_);
        // QM gives the bytes as the item's OS file holds them: their hash is the file's.
        QByteArray bytes = host_->LockKeeper()->Read(qmItem());
        stamp_ = {true, bytes.size(), {}, HostTransport::Stamp::HashOf(bytes)};
        return bytes;
    } catch (const BrixError& e) {
        throw BrixError(e.Number,
                        QStringLiteral("%1 could not be read. %2").arg(itemLabel(), e.Description));
    }
}

void HostResource::checkWritable() const {
    if (itemFile_.isEmpty())
        throw BrixError(
            ConnectionErrors::NotAnItem,
            QStringLiteral("%1 is a folder or file definition, not an item.").arg(DisplayID()));
    const Probe found = probe();
    if (found.Hashed || found.Item.IsFolder)
        throw BrixError(
            ConnectionErrors::NotAnItem,
            QStringLiteral("%1 is a folder or file definition, not an item.").arg(DisplayID()));
    if (readOnly_ || (found.Item.Exists ? !found.Item.Writable : !found.Folder.Writable))
        throw BrixError(BrixErrors::CannotWrite,
                        QStringLiteral("%1 can't be written: it is read-only.").arg(itemLabel()));
}

void HostResource::writeBytes(const QByteArray& bytes) {
    bool written = false;
    HostTransport::Stamp stamp;
    try {
        written = host_->LockKeeper()
                      ? writeThroughQm(bytes, stamp)
                      : host_->Transport()->WriteUnchanged(itemFile_, bytes, stamp_, stamp);
    } catch (const BrixError& e) {
        if (e.Number == ConnectionErrors::ConnectionLost)
            throw BrixError(e.Number, QStringLiteral("%1 may not have been saved. %2 Your text "
                                                     "stays here; save it again once the host "
                                                     "can be reached.")
                                          .arg(itemLabel(), e.Description));
        throw BrixError(e.Number,
                        QStringLiteral("%1 was not saved; the item on the host is unchanged. %2")
                            .arg(itemLabel(), e.Description));
    }
    if (!written)
        throw ConnectionErrors::ChangedSinceRead(itemLabel());
    stamp_ = stamp;
}

bool HostResource::writeThroughQm(const QByteArray& bytes, HostTransport::Stamp& written) {
    QmLockKeeper& qm = *host_->LockKeeper();
    // Our READU lock keeps QM programs out, but not an editor that works on the OS file.
    if (stamp_.Known) {
        try {
            if (HostTransport::Stamp::HashOf(qm.Read(qmItem())) != stamp_.Hash)
                return false;
        } catch (const BrixError& e) {
            // Gone from the host is changed too.
            if (e.Number != ConnectionErrors::ReadFailed || Exists())
                throw;
            return false;
        }
    }
    qm.Write(qmItem(), bytes);
    written = {true, bytes.size(), {}, HostTransport::Stamp::HashOf(bytes)};
    return true;
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
        // Which folders are hashed files, all looked at in one call.
        QStringList markers;
        for (const auto& entry : files.List(accountFolder_)) {
            if (entry.Name.startsWith(QLatin1Char('.')) || isOurs(entry.Name))
                continue;
            const QString name = names_.FromFileName(entry.Name);
            if (name.isEmpty())
                continue;
            children.push_back({name, entry.IsFolder, false});
            if (entry.IsFolder) {
                const QString path =
                    accountFolder_ + QLatin1Char('/') + entry.Name + QLatin1Char('/');
                markers << path + QStringLiteral("DATA.30") << path + QStringLiteral("%0")
                        << path + QStringLiteral("~0");
            }
        }
        const std::vector<HostTransport::FileInfo> found =
            markers.isEmpty() ? std::vector<HostTransport::FileInfo>() : files.StatAll(markers);
        size_t next = 0;
        for (Child& child : children) {
            if (!child.Container)
                continue;
            for (int i = 0; i < 3; ++i, ++next)
                child.Container = child.Container && !found.at(next).Exists;
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
