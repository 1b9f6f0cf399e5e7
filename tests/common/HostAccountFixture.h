#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <memory>

// A demo-style host account in a temporary folder: account DEMO with the directory-type
// file BP (the demo programs, plus PROT, which can't be written), a second file LIB and a
// hashed file CUSTOMERS; and a local folder beside it. The connections file names it as
// the default connection "test" (label "TEST"), and the connection layer is pointed at it.
//
// A test program can start itself as a second process that holds a lock: call
// RunChildIfAsked() first thing in the test object's constructor.
class HostAccountFixture {
public:
    HostAccountFixture();
    ~HostAccountFixture();

    QString Accounts() const { return accounts_; }
    QString ProfilesFile() const;
    QString LocalFolder() const { return accounts_ + QStringLiteral("/local"); }
    // mvdb://*/DEMO/<file>/<item>
    static QString ItemPath(const QString& file, const QString& item);
    QString ItemFile(const QString& file, const QString& item) const;
    QByteArray ReadItem(const QString& file, const QString& item) const;
    void WriteItem(const QString& file, const QString& item, const QByteArray& bytes) const;
    // The process that holds the editor lock on an item, 0 for none.
    qint64 LockHolder(const QString& file, const QString& item) const;

    // Another process holding the lock of a path until it is destroyed.
    class LockHolderProcess {
    public:
        LockHolderProcess(const HostAccountFixture& fixture, const QString& path);
        ~LockHolderProcess();
        bool Holding() const { return holding_; }
        qint64 Pid() const { return process_.processId(); }

    private:
        QProcess process_;
        bool holding_ = false;
    };

    // Starts this program again with the given mode and values in the environment.
    static void StartChild(QProcess& child, const QByteArray& mode, const QString& profiles,
                           const QString& path);
    // In a child started by StartChild: runs its mode and ends the process. `own` handles the
    // modes of one test program (given the path); it returns false for a mode it doesn't know.
    static void RunChildIfAsked(bool (*own)(const QByteArray& mode, const QString& path) = nullptr);

private:
    std::unique_ptr<QTemporaryDir> tmp_;
    QString accounts_;
};
