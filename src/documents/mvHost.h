#pragma once

#include "documents/HostProfile.h"

#include <QString>
#include <QStringList>
#include <memory>

class HostTransport;
class QmLockKeeper;

// The connection to a host as one resource sees it: its profile, the transport to its
// machine and the account in use. A local file's host has no profile and runs nothing.
class mvHost {
public:
    struct SessionInfo {
        QString AccountName;
    };

    mvHost(std::shared_ptr<const HostProfile> profile, std::shared_ptr<HostTransport> transport,
           QString account);

    // Runs one TCL command through the profile's command line, the command being one
    // argument: no shell sees its text. It runs in the account's folder, without a
    // terminal. Gives the whole output, lines ending in CR LF.
    QString Execute(const QString& command, const QString& reserved = QString(), int32_t flags = 0);
    SessionInfo Session() const { return {account_}; }
    bool AllowsCommands() const;

    // The folder of an account, by name without regard to case; raises
    // ConnectionErrors::UnknownAccount when there is none.
    QString AccountFolder(const QString& account) const;
    QStringList AccountNames() const;

    const HostProfile* Profile() const { return profile_.get(); }
    const std::shared_ptr<HostTransport>& Transport() const { return transport_; }
    // What holds real QM record locks for this host (Locks=qm); null for lock files.
    const std::shared_ptr<QmLockKeeper>& LockKeeper() const { return keeper_; }
    void SetLockKeeper(std::shared_ptr<QmLockKeeper> keeper) { keeper_ = std::move(keeper); }

private:
    std::shared_ptr<const HostProfile> profile_;
    std::shared_ptr<HostTransport> transport_;
    QString account_;
    std::shared_ptr<QmLockKeeper> keeper_;
};
