#include "FileTestSupport.h"
#include "SshServerFixture.h"
#include "TestEnv.h"

#include "documents/ConnectionErrors.h"
#include "documents/HostResource.h"
#include "documents/ItemLock.h"
#include "documents/LocalTransport.h"
#include "documents/SshTransport.h"
#include "documents/mvHost.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <sys/stat.h>

// The ssh transport against a real sshd on this machine: what it writes over the
// connection is checked on the disk directly.
class tst_SshTransport : public QObject {
    Q_OBJECT

    std::unique_ptr<SshServerFixture> server_;
    std::unique_ptr<QTemporaryDir> dir_;
    std::shared_ptr<SshTransport> ssh_;

    QString path(const QString& name) const { return dir_->path() + QLatin1Char('/') + name; }

private slots:
    void initTestCase() {
        server_ = std::make_unique<SshServerFixture>();
        if (!server_->Started())
            QSKIP(qPrintable(server_->Error()));
        ssh_ = std::make_shared<SshTransport>(server_->Target());
    }
    void init() { dir_ = std::make_unique<QTemporaryDir>(); }
    void cleanupTestCase() { server_.reset(); }

    // Names a shell would take apart, expand or run reach the host as they are.
    void namesReachTheHostUnharmed_data() {
        QTest::addColumn<QString>("name");
        QTest::newRow("quotes, blanks") << QStringLiteral("it's \"q\"  TWO ");
        QTest::newRow("expansions")
            << QStringLiteral("$HOME${PATH}$(touch RAN);touch RAN;`touch RAN`");
        QTest::newRow("dash, glob, backslash newline") << QStringLiteral("-rf *a\\\nb");
        QTest::newRow("latin") << QStringLiteral("ÆBLE");
    }
    void namesReachTheHostUnharmed() {
        QFETCH(QString, name);
        const QByteArray bytes("A\xfe"
                               "B\xfd"
                               "C\xfc\r\n\0end",
                               13);
        ssh_->WriteFile(path(name), bytes);
        QCOMPARE(FileTestSupport::ReadFile(path(name)), bytes);
        QCOMPARE(ssh_->ReadFile(path(name)), bytes);
        const auto info = ssh_->Stat(path(name));
        QVERIFY(info.Exists && info.IsFile && info.Size == bytes.size());
        const auto entries = ssh_->List(dir_->path());
        QCOMPARE(entries.size(), size_t(1));
        QCOMPARE(entries.front().Name, name);
        int exitCode = -1;
        const QByteArray echoed = ssh_->Run({QStringLiteral("printf"), QStringLiteral("%s"), name},
                                            dir_->path(), exitCode);
        QCOMPARE(exitCode, 0);
        QCOMPARE(QString::fromUtf8(echoed), name);
        QVERIFY(ssh_->Rename(path(name), path(name + QStringLiteral(".2"))));
        QVERIFY(!ssh_->Rename(path(name), path(name + QStringLiteral(".3"))));
        ssh_->Remove(path(name + QStringLiteral(".2")));
        QVERIFY(!QFile::exists(path(QStringLiteral("RAN"))));
        QVERIFY(QDir(dir_->path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }

    void writeKeepsModeAndCreateIsExclusive() {
        const QString file = path(QStringLiteral("X"));
        ssh_->WriteFile(file, "old");
        QVERIFY(::chmod(QFile::encodeName(file).constData(), 0640) == 0);
        ssh_->WriteFile(file, "new");
        struct stat st {};
        QVERIFY(::stat(QFile::encodeName(file).constData(), &st) == 0);
        QCOMPARE(st.st_mode & 07777, 0640u);
        ssh_->MakeFolder(path(QStringLiteral("a/b")));
        QVERIFY(QFileInfo(path(QStringLiteral("a/b"))).isDir());
        QVERIFY(ssh_->CreateExclusive(path(QStringLiteral("L")), "first"));
        QVERIFY(!ssh_->CreateExclusive(path(QStringLiteral("L")), "second"));
        QCOMPARE(FileTestSupport::ReadFile(path(QStringLiteral("L"))), QByteArray("first"));
        int exitCode = 0;
        ssh_->Run({QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("exit 7")}, {},
                  exitCode);
        QCOMPARE(exitCode, 7);
        QString error;
        QCOMPARE(
            FileTestSupport::ErrorOf([&] { ssh_->ReadFile(path(QStringLiteral("none"))); }, &error),
            ConnectionErrors::ReadFailed);
        QVERIFY2(error.contains(QLatin1String("No such file")), qPrintable(error));
    }

    // The editor's lock entry is made on the host, and goes with the lock.
    void itemsAndLocks() {
        QVERIFY(QDir().mkpath(path(QStringLiteral("ACC/BP"))));
        auto profile = std::make_shared<HostProfile>();
        profile->Name = QStringLiteral("remote");
        profile->Transport = QStringLiteral("ssh");
        profile->AccountsFolder = dir_->path();
        auto host = std::make_shared<mvHost>(profile, ssh_, QStringLiteral("ACC"));
        HostResource item(host, QStringLiteral("remote"), QStringLiteral("ACC"),
                          QStringLiteral("BP"), QStringLiteral("MAIN"));
        item.SetLocked(true);
        const QString entry =
            path(QStringLiteral("ACC/") + profile->LockFolder + QLatin1Char('/') +
                 ItemLock::EntryName(QStringLiteral("BP"), QStringLiteral("MAIN")));
        QVERIFY(QFile::exists(entry));
        item.SetLocked(false);
        QVERIFY(!QFile::exists(entry));
    }

    // What the host's files are, all looked at in one call, as this machine's own calls see
    // them; also after the shared connection went away under a working session.
    void statAllAgreesWithLocalFiles() {
        QVERIFY(QDir().mkpath(path(QStringLiteral("folder"))));
        const QStringList names{"folder", "own 0640", "read only", "two\nlines", "link", "none"};
        for (const QString& name : names.mid(1, 3))
            ssh_->WriteFile(path(name), name.toUtf8());
        QVERIFY(::chmod(QFile::encodeName(path(names[1])).constData(), 0640) == 0);
        QVERIFY(::chmod(QFile::encodeName(path(names[2])).constData(), 0444) == 0);
        QVERIFY(QFile::link(path(names[1]), path(QStringLiteral("link"))));
        QStringList paths;
        for (const QString& name : names)
            paths << path(name);
        for (int round = 0; round < 2; ++round) {
            const auto remote = ssh_->StatAll(paths);
            const auto local = LocalTransport().StatAll(paths);
            for (qsizetype i = 0; i < paths.size(); ++i) {
                const auto& r = remote.at(static_cast<size_t>(i));
                const auto& l = local.at(static_cast<size_t>(i));
                QVERIFY2(r.Exists == l.Exists && r.IsFolder == l.IsFolder && r.IsFile == l.IsFile &&
                             r.Writable == l.Writable && r.Mode == l.Mode &&
                             (r.Size == l.Size || l.IsFolder),
                         qPrintable(names.at(i)));
            }
            // The master connection ends: the next call starts afresh by itself.
            QProcess::execute(QStringLiteral("ssh"),
                              {QStringLiteral("-F"), server_->ClientConfig(), QStringLiteral("-o"),
                               QStringLiteral("ControlPath=") + ssh_->ControlPath(),
                               QStringLiteral("-p"), QString::number(server_->Port()),
                               QStringLiteral("-O"), QStringLiteral("exit"),
                               QStringLiteral("127.0.0.1")});
        }
    }

    void unknownHostKeyIsRefused() {
        SshTransport stranger(server_->Target(false));
        QString error;
        QVERIFY(FileTestSupport::ErrorOf([&] { stranger.Stat(QStringLiteral("/")); }, &error));
        QVERIFY2(error.contains(QLatin1String("host key")), qPrintable(error));
        QVERIFY(error.contains(QStringLiteral("ssh -p %1").arg(server_->Port())));
    }

    // Last: the server goes away; a save fails with a message and leaves the old item.
    void droppedConnectionLosesNothing() {
        const QString file = path(QStringLiteral("KEEP"));
        ssh_->WriteFile(file, "old");
        server_->Kill();
        QCOMPARE(FileTestSupport::ErrorOf([&] { ssh_->WriteFile(file, "new"); }),
                 ConnectionErrors::ConnectionLost);
        QCOMPARE(FileTestSupport::ReadFile(file), QByteArray("old"));
    }
};

BRIX_TEST_MAIN(tst_SshTransport)
#include "tst_SshTransport.moc"
