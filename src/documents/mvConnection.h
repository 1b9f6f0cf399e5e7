#pragma once

#include "documents/ConnectionProfiles.h"
#include "documents/mvPath.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

class HostTransport;
class QWidget;
class QmLockKeeper;
class mvHost;
class mvResource;

// The one service object of the connection layer: it turns paths into resources and
// shows the browser. Providers: "file" (local files) and "mvdb" (host items, reached
// through a connection profile named by the server part).
class mvConnection {
public:
    static mvConnection& Instance();

    // Reads the connection profiles; called once at start-up with 1.
    void Initialize(int32_t mode);
    // Reads the profiles again from the given connections file (tests, or after an edit).
    void LoadProfiles(const QString& file);
    const ConnectionProfiles& Profiles();
    // Tells the user once, in a message box, what is wrong in the connections file as last
    // read; later calls show nothing until the file is read again.
    void ShowWarnings(QWidget* owner = nullptr);

    // With readOnly false and recordLocking true, takes the item's lock: an item locked by
    // someone else raises BrixErrors::LockedByOther, an item that can't be written
    // BrixErrors::CannotWrite. A missing item is no failure (Exists is false).
    std::shared_ptr<mvResource> GetResource(const QString& path, bool readOnly, bool recordLocking,
                                            int32_t reserved = 0);
    QString MakePath(const QString& provider, const QString& serverName, const QString& database,
                     const QString& folder, const QString& itemID) const;
    mvPath ParsePath(const QString& path) const { return mvPath::Parse(path); }
    void ParsePath(const QString& path, QString& provider, QString& serverName, QString& database,
                   QString& folder, QString& itemID) const;
    // A local file name, made absolute against the current folder.
    QString MakeFilePath(const QString& reserved1, const QString& reserved2,
                         const QString& fileName) const;

    // The modal browser for one target; null when cancelled.
    std::shared_ptr<mvResource> BrowseForResource(const QString& caption,
                                                  const std::shared_ptr<mvResource>& start,
                                                  const QString& extension, int32_t flag,
                                                  int32_t reserved1, bool recordLocking,
                                                  int32_t reserved2, QWidget* owner);
    // The modal browser for several; empty when cancelled.
    std::vector<std::shared_ptr<mvResource>>
    BrowseForResources(const QString& caption, const std::shared_ptr<mvResource>& start,
                       const QString& extension, int32_t flag, int32_t reserved1,
                       bool recordLocking, int32_t reserved2, QWidget* owner);

    // The connection to a profile; raises ConnectionErrors::UnknownServer.
    std::shared_ptr<mvHost> HostFor(const QString& serverName, const QString& account);

private:
    mvConnection() = default;
    std::shared_ptr<HostTransport> transportFor(const HostProfile& profile);

    bool initialized_ = false;
    bool warningsShown_ = false;
    ConnectionProfiles profiles_;
    std::map<QString, std::shared_ptr<const HostProfile>> profileCopies_;
    std::map<QString, std::shared_ptr<HostTransport>> transports_;
    // One per profile with Locks=qm; open resources keep theirs (and its locks) alive.
    std::map<QString, std::shared_ptr<QmLockKeeper>> keepers_;
};
