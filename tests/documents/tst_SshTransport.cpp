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

using namespace Qt::StringLiterals;

// The ssh transport against a real sshd on this machine, checked on the disk directly.
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
        QTest::newRow("quotes, blanks") << u"it's \"q\"  TWO "_s;
        QTest::newRow("expansions") << u"$HOME${PATH}$(touch RAN);touch RAN;`touch RAN`"_s;
        QTest::newRow("dash, glob, backslash newline") << u"-rf *a\\\nb"_s;
        QTest::newRow("latin") << u"ÆBLE"_s;
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
        const QByteArray echoed = ssh_->Run({u"printf"_s, u"%s"_s, name}, dir_->path(), exitCode);
        QCOMPARE(exitCode, 0);
        QCOMPARE(QString::fromUtf8(echoed), name);
        QVERIFY(ssh_->Rename(path(name), path(name + u".2"_s)));
        QVERIFY(!ssh_->Rename(path(name), path(name + u".3"_s)));
        ssh_->Remove(path(name + u".2"_s));
        QVERIFY(!QFile::exists(path(u"RAN"_s)));
        QVERIFY(QDir(dir_->path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }

    void writeKeepsModeAndCreateIsExclusive() {
        const QString file = path(u"X"_s);
        ssh_->WriteFile(file, "old");
        QVERIFY(::chmod(QFile::encodeName(file).constData(), 0640) == 0);
        ssh_->WriteFile(file, "new");
        struct stat st {};
        QVERIFY(::stat(QFile::encodeName(file).constData(), &st) == 0);
        QCOMPARE(st.st_mode & 07777, 0640u);
        QVERIFY(ssh_->CreateExclusive(path(u"L"_s), "first"));
        QVERIFY(!ssh_->CreateExclusive(path(u"L"_s), "second"));
        QCOMPARE(FileTestSupport::ReadFile(path(u"L"_s)), QByteArray("first"));
        int exitCode = 0;
        ssh_->Run({u"sh"_s, u"-c"_s, u"exit 7"_s}, {}, exitCode);
        QCOMPARE(exitCode, 7);
        QString error;
        QCOMPARE(FileTestSupport::ErrorOf([&] { ssh_->ReadFile(path(u"none"_s)); }, &error),
                 ConnectionErrors::ReadFailed);
        QVERIFY2(error.contains(QLatin1String("No such file")), qPrintable(error));
    }

    // The editor's lock entry is made on the host, and goes with the lock.
    void itemsAndLocks() {
        QVERIFY(QDir().mkpath(path(u"ACC/BP"_s)));
        auto profile = std::make_shared<HostProfile>();
        profile->Name = u"remote"_s;
        profile->Transport = u"ssh"_s;
        profile->AccountsFolder = dir_->path();
        auto host = std::make_shared<mvHost>(profile, ssh_, u"ACC"_s);
        HostResource item(host, u"remote"_s, u"ACC"_s, u"BP"_s, u"MAIN"_s);
        item.SetLocked(true);
        const QString entry = path(u"ACC/"_s + profile->LockFolder + QLatin1Char('/') +
                                   ItemLock::EntryName(u"BP"_s, u"MAIN"_s));
        QVERIFY(QFile::exists(entry));
        item.SetLocked(false);
        QVERIFY(!QFile::exists(entry));
    }

    // What the host's files are, all looked at in one call, as this machine's own calls see
    // them; also after the shared connection went away under a working session.
    void statAllAgreesWithLocalFiles() {
        QVERIFY(QDir().mkpath(path(u"folder"_s)));
        const QStringList names{"folder", "own 0640", "read only", "two\nlines", "link", "none"};
        for (const QString& name : names.mid(1, 3))
            ssh_->WriteFile(path(name), name.toUtf8());
        QVERIFY(::chmod(QFile::encodeName(path(names[1])).constData(), 0640) == 0);
        QVERIFY(::chmod(QFile::encodeName(path(names[2])).constData(), 0444) == 0);
        QVERIFY(QFile::link(path(names[1]), path(u"link"_s)));
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
            QProcess::execute(u"ssh"_s, {u"-F"_s, server_->ClientConfig(), u"-o"_s,
                                         u"ControlPath="_s + ssh_->ControlPath(), u"-p"_s,
                                         QString::number(server_->Port()), u"-O"_s, u"exit"_s,
                                         u"127.0.0.1"_s});
        }
    }

    void unknownHostKeyIsRefused() {
        SshTransport stranger(server_->Target(false));
        QString error;
        QVERIFY(FileTestSupport::ErrorOf([&] { stranger.Stat(u"/"_s); }, &error));
        QVERIFY2(error.contains(QLatin1String("host key")), qPrintable(error));
        QVERIFY(error.contains(u"ssh -p %1"_s.arg(server_->Port())));
    }

    // Last: the server goes away; a save fails with a message and leaves the old item.
    void droppedConnectionLosesNothing() {
        const QString file = path(u"KEEP"_s);
        ssh_->WriteFile(file, "old");
        server_->Kill();
        QCOMPARE(FileTestSupport::ErrorOf([&] { ssh_->WriteFile(file, "new"); }),
                 ConnectionErrors::ConnectionLost);
        QCOMPARE(FileTestSupport::ReadFile(file), QByteArray("old"));
    }
};

BRIX_TEST_MAIN(tst_SshTransport)
#include "tst_SshTransport.moc"
