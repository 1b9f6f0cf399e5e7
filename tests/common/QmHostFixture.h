#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <memory>

// A real QM host (ScarletDME) for one test program. scripts/scarletdme.sh builds it once
// into the build folder and starts it in its own IPC and pid namespaces, so test programs
// running side by side never meet. It holds one account (DEMO unless named otherwise) with
// the directory file BP, in AccountsFolder()/<account>. The host stops when the fixture
// goes, and also when the test process dies: the host ends when its input closes.
//
//     QmHostFixture host;                          // a member of the test object
//     void initTestCase() {
//         QVERIFY2(host.Ready(), qPrintable(host.Error()));
//         host.UseProfile();                       // "qm", the default connection
//     }
//     host.WriteItem("BP", "MAIN", "CRT 1\nEND\n");
//     host.Run("BASIC BP MAIN");                   // any TCL command, in the account
//
// Test programs under tests/host/ get the ctest label "host".
class QmHostFixture {
public:
    explicit QmHostFixture(const QString& account = QStringLiteral("DEMO"));
    ~QmHostFixture();
    QmHostFixture(const QmHostFixture&) = delete;
    QmHostFixture& operator=(const QmHostFixture&) = delete;

    bool Ready() const { return error_.isEmpty(); }
    // Why the host is not ready.
    QString Error() const { return error_; }

    // The host's own folder: its system folder qmsys and bin/qm.
    QString Folder() const;
    // qm of this host: runs in the host's namespaces, in the current folder.
    QString QmProgram() const;
    QString Account() const { return account_; }
    QString AccountsFolder() const;
    QString AccountFolder() const;
    // Another account, with the file BP; false if it could not be made.
    bool CreateAccount(const QString& name) const;

    // One TCL command in the account, run as the connection layer runs it (no terminal);
    // the output as qm writes it, lines ending in CR LF.
    QByteArray Run(const QString& command) const;
    // Writes the program into BP, compiles and runs it: its output, or the compiler's
    // output when it did not compile.
    QByteArray RunProgram(const QString& name, const QByteArray& source) const;

    // Items by their OS file names (QM's escaping is the caller's).
    QString ItemFile(const QString& file, const QString& fileName) const;
    QByteArray ReadItem(const QString& file, const QString& fileName) const;
    void WriteItem(const QString& file, const QString& fileName, const QByteArray& bytes) const;

    // The connection profile of this host as the connections file holds it: local
    // transport, qm as the command, commands allowed, raw marks, QM's item names.
    QByteArray Profile(const QString& name = QStringLiteral("qm")) const;
    // Writes the connections file with that profile as the default and loads it.
    void UseProfile(const QString& name = QStringLiteral("qm")) const;
    // mvdb://*/<account>/<file>/<item>
    QString ItemPath(const QString& file, const QString& item) const;

private:
    std::unique_ptr<QTemporaryDir> tmp_;
    std::unique_ptr<QProcess> holder_;
    QString account_;
    QString error_;
};
