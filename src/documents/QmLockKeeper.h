#pragma once

#include "documents/ItemTextCodec.h"

#include <QByteArray>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <map>
#include <memory>

class HostTransport;
class QmClientSession;

// Real QM record locks for the items a user edits: one QM process per account in QM's
// client mode, started through the host's transport (locally, or carried by ssh) and kept
// while locks or reads need it. It takes READU locks that every QM program sees and honours,
// reads and writes the items through QM (WRITEU keeps the lock), and lets go with RELEASE.
// When this program ends, killed or not, the QM process loses its input and ends, and QM
// frees its locks. Each call waits as every host call does (HostCallWaiter).
class QmLockKeeper {
public:
    struct Item {
        QString AccountFolder;
        // The file's name in the account and the item's id, as QM knows them.
        QString File;
        QString Id;
        // Names the item in messages.
        QString Label;
    };

    // `qmCommand` runs QM's qm program on the host (the connection's command line).
    QmLockKeeper(std::shared_ptr<HostTransport> transport, QStringList qmCommand,
                 ItemTextCodec::Charset charset);
    ~QmLockKeeper();
    QmLockKeeper(const QmLockKeeper&) = delete;
    QmLockKeeper& operator=(const QmLockKeeper&) = delete;

    // Takes the item's update lock, also for an item not written yet. A lock held by another
    // QM user raises BrixErrors::LockedByOther naming that user as QM reports it. One process
    // may take the same lock several times; it stays until the last Unlock.
    void Lock(const Item& item);
    // Never raises: a session that has gone has let go already.
    void Unlock(const Item& item);
    // The item's bytes as its OS file holds them.
    QByteArray Read(const Item& item);
    // Replaces the item whole: WRITEU while this process holds its lock (taking it again
    // first if the QM process had to be restarted), WRITE otherwise.
    void Write(const Item& item, const QByteArray& bytes);
    // The QM user number that holds this process's locks in the account.
    int UserNumber(const QString& accountFolder);

private:
    struct Held {
        int Count = 0;
        // The session that took it; a restarted session has lost it.
        int Generation = 0;
    };
    QmClientSession& session(const QString& accountFolder);
    QByteArray bytes(const QString& text, const Item& item) const;
    QString key(const Item& item) const;
    // Takes the lock in the current session; raises as Lock does.
    void readU(const Item& item);
    QString holder(QmClientSession& s, int userNumber);

    std::shared_ptr<HostTransport> transport_;
    QStringList command_;
    ItemTextCodec::Charset charset_;
    mutable QMutex mutex_;
    std::map<QString, std::unique_ptr<QmClientSession>> sessions_;
    std::map<QString, int> generations_;
    std::map<QString, Held> held_;
};
