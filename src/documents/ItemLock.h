#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

class HostTransport;

// An advisory editor lock on one item: an entry file in the account's lock folder that
// names its holder. The entry is created whole in one step, so two editors can't both
// get it. An entry whose process on this machine is gone is stale and is taken over.
// One process may take the same lock through several resources: the entry stays until
// the last of them lets go.
class ItemLock {
public:
    struct Holder {
        QString User;
        QString Machine;
        qint64 Pid = 0;
        QString Program;
        QString Time;

        static Holder Self();
        static Holder Parse(const QByteArray& bytes);
        QByteArray ToBytes() const;
        // "alice on host1 (process 4242, brix) since 2024-05-01 10:12:03"
        QString Describe() const;
    };

    // `label` names the item in messages.
    ItemLock(std::shared_ptr<HostTransport> transport, QString lockFolder, QString entryName,
             QString label);
    ~ItemLock();
    ItemLock(const ItemLock&) = delete;
    ItemLock& operator=(const ItemLock&) = delete;

    // Raises BrixErrors::LockedByOther, naming the holder, when someone else has it.
    void Acquire();
    void Release();
    bool Held() const { return held_; }
    QString EntryPath() const;

    // A file name for the lock entry of an item of a file.
    static QString EntryName(const QString& fileName, const QString& itemId);
    static bool IsStale(const Holder& holder);

private:
    QString registryKey() const;

    std::shared_ptr<HostTransport> transport_;
    QString folder_;
    QString entry_;
    QString label_;
    bool held_ = false;
};
