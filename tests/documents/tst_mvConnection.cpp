#include "BoxAnswers.h"
#include "FileTestSupport.h"
#include "TestEnv.h"

#include "documents/ConnectionErrors.h"
#include "documents/ConnectionProfiles.h"
#include "documents/mvConnection.h"
#include "documents/mvHost.h"
#include "documents/mvResource.h"

#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

// The connection service: path strings, profiles from the connections file, resources as
// GetResource hands them out, and commands on a host.
class tst_mvConnection : public QObject {
    Q_OBJECT
    QTemporaryDir tmp;
    QString accounts;

    static mvConnection& connection() { return mvConnection::Instance(); }
    QByteArray prodProfile() const {
        const QByteArray folder = accounts.toUtf8();
        QByteArray text = "[General]\nDefault=prod\n";
        for (const char* host : {"prod:/bin/echo -n", "pwd:/bin/sh -c pwd sh", "printf:printf %b",
                                 "slow:sleep\nCommandTimeout=1", "missing:/no/such/qm -quiet"})
            text += "[" + QByteArray(host).replace(':', "]\nCommand=") +
                    "\nAccountsFolder=" + folder +
                    "\nAllowCommands=" + (host[3] == 'd' ? "yes" : "true") + "\n";
        return text.replace("[prod]\n",
                            "[prod]\nLabel=PROD, EU\nAccounts\\OTHER=" + folder +
                                "/elsewhere\nDefaultAccount=ACC\nMarks=utf8\nItemNames=qm\n");
    }
    static QString execute(const char* server, const QString& command) {
        return connection().HostFor(QString::fromLatin1(server), u"ACC"_s)->Execute(command);
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(tmp.isValid());
        accounts = tmp.path();
        QDir().mkpath(accounts + u"/ACC/BP"_s);
        QDir().mkpath(accounts + u"/elsewhere/BP"_s);
        FileTestSupport::WriteFile(accounts + u"/ACC/BP/MAIN"_s, "A\nB\xef\xa3\xbd"
                                                                 "C\n");
        FileTestSupport::WriteFile(accounts + u"/ACC/VOC"_s, "hashed");
    }
    void init() { FileTestSupport::UseProfiles(prodProfile()); }

    void pathsThereAndBack_data() {
        QTest::addColumn<QStringList>("parts");
        QTest::addColumn<QString>("path");
        QTest::newRow("folder only")
            << QStringList{"mvdb", "PROD", "SALES", "BP", ""} << u"mvdb://PROD/SALES/BP/"_s;
        QTest::newRow("escaped") << QStringList{"mvdb", "*", "A", "MY FILE",
                                                QString::fromUtf8("a/b%c*\xc3\xa9")}
                                 << u"mvdb://*/A/MY%20FILE/a%2Fb%25c*%C3%A9"_s;
        QTest::newRow("local file") << QStringList{"file", "", "", "/home/u/my docs", "a b.txt"}
                                    << u"file:///home/u/my%20docs/a%20b.txt"_s;
    }
    void pathsThereAndBack() {
        QFETCH(QStringList, parts);
        QFETCH(QString, path);
        QCOMPARE(connection().MakePath(parts[0], parts[1], parts[2], parts[3], parts[4]), path);
        QString provider, server, database, folder, item;
        connection().ParsePath(path, provider, server, database, folder, item);
        QCOMPARE((QStringList{provider, server, database, folder, item}), parts);
        QVERIFY(mvPath::Same(path, path.toUpper()));
    }

    void lenientParsing() {
        const mvPath bare = mvPath::Parse(u"mvdb://PROD"_s);
        QCOMPARE(bare.ServerName, u"PROD"_s);
        QVERIFY(bare.Database.isEmpty() && bare.ItemID.isEmpty());
        const mvPath local = mvPath::Parse(u"/tmp/a%20b"_s);
        QCOMPARE(local.Provider, u"file"_s);
        QCOMPARE(local.ItemID, u"a%20b"_s);
    }

    void profiles() {
        const ConnectionProfiles& p = connection().Profiles();
        QCOMPARE(p.Find(u"*"_s)->Name, u"prod"_s);
        QCOMPARE(p.Find(u"PROD"_s)->Label, u"PROD, EU"_s);
        QVERIFY(!p.Find(u"nope"_s) && p.Find(u"demo"_s));
        QCOMPARE(p.Find(u"prod"_s)->ItemNames, ItemIdCodec::Mode::Qm);
        QVERIFY(p.Warnings.isEmpty());

        FileTestSupport::UseProfiles({});
        QCOMPARE(connection().Profiles().DefaultName(), u"demo"_s);

        // A default that names no connection is told, with the one that stands in.
        QByteArray misnamed = prodProfile();
        misnamed.replace("Default=prod", "Default=prdo");
        FileTestSupport::UseProfiles(misnamed);
        const QString standIn = connection().Profiles().DefaultName();
        QVERIFY(connection().Profiles().Find(standIn));
        QCOMPARE(connection().Profiles().Warnings,
                 QStringList(QStringLiteral("Default names connection prdo, which is not in the "
                                            "file; %1 is the default instead.")
                                 .arg(standIn)));
    }

    void sshProfiles() {
        FileTestSupport::UseProfiles(
            "[remote]\nTransport=ssh\nHost=mv.example.com\nPort=2222\nUser=alice\n"
            "IdentityFile=~/.ssh/id_mv\nLocks=QM\n\n[nohost]\nTransport=ssh\n"
            "Port=99999\n\n[odd]\nTransport=telnet\nLocks=database\n");
        const ConnectionProfiles& p = connection().Profiles();
        const HostProfile& remote = *p.Find(u"remote"_s);
        QCOMPARE(remote.SshIdentityFile, QDir::homePath() + u"/.ssh/id_mv"_s);
        QVERIFY(remote.QmLocks && !p.Find(u"odd"_s)->QmLocks);
        // No host, a bad port, an unknown transport, unknown locks: one warning each, told once.
        QCOMPARE(p.Warnings.size(), 4);
        BoxAnswers boxes;
        connection().ShowWarnings();
        connection().ShowWarnings();
        QCOMPARE(boxes.Seen.size(), 1);
        for (const QString& warning : p.Warnings)
            QVERIFY2(boxes.Seen.front().Text.contains(warning), qPrintable(warning));
    }

    // A newcomer's first path: the demo account through the default connection; what the
    // user edits is a copy, and the shipped account stays as it is.
    void demoAccount() {
        FileTestSupport::UseProfiles({});
        auto hello = connection().GetResource(u"mvdb://*/DEMO/BP/HELLO"_s, true, false);
        QVERIFY(hello->ReadText().contains(u"Hello"_s));
        // brix-check stands in for the compiler; it runs nothing else.
        QVERIFY(hello->HostAllows(12));
        QCOMPARE(hello->Host()->Execute(u"BASIC BP HELLO "_s),
                 u"Checking BP HELLO\r\nNo structure errors.\r\n"_s);
        QVERIFY(hello->Host()->Execute(u"LIST"_s).contains(QLatin1String("only")));
        const QString copy = ConnectionProfiles::DemoAccountFolder() + u"/BP/HELLO"_s;
        const QString shipped = ConnectionProfiles::ShippedDemoFolder() + u"/BP/HELLO"_s;
        QCOMPARE(FileTestSupport::ReadFile(copy), FileTestSupport::ReadFile(shipped));
        FileTestSupport::WriteFile(copy, "changed");
        QVERIFY(FileTestSupport::ReadFile(shipped) != "changed");
    }

    void resourcesAsHandedOut() {
        auto missing = connection().GetResource(u"mvdb://*/ACC/BP/NEW"_s, false, true);
        QVERIFY(!missing->Exists() && missing->IsItem() && missing->Locked());

        for (const char* path :
             {"mvdb://*/ACC/VOC/", "mvdb://*/ACC/BP/", "mvdb://*/ACC//", "mvdb://prod///"}) {
            auto r = connection().GetResource(QString::fromLatin1(path), false, true);
            QVERIFY2(!r->IsItem(), path);
            QVERIFY(!r->Locked());
            r->Release();
        }
        // The recent list's form: the default connection's default account.
        auto recent = connection().GetResource(u"mvdb://*/*/BP/MAIN"_s, true, false);
        QVERIFY(recent->Exists());
        auto other = connection().GetResource(u"mvdb://*/other/BP/X"_s, true, false);
        QVERIFY(!other->Exists());
    }

    void readableFailures_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("words");
        QTest::newRow("unknown server")
            << u"mvdb://NOPE/A/B/C"_s << int(ConnectionErrors::UnknownServer) << u"NOPE"_s;
        QTest::newRow("account escape")
            << u"mvdb://*/..%2F..//"_s << int(ConnectionErrors::UnknownAccount) << u"../.."_s;
        QTest::newRow("item without file")
            << u"mvdb://*/ACC//C"_s << int(ConnectionErrors::BadPath) << u"no file"_s;
        QTest::newRow("other provider")
            << u"ftp://x/y"_s << int(ConnectionErrors::BadPath) << u"ftp"_s;
    }
    void readableFailures() {
        QFETCH(QString, path);
        QFETCH(int, number);
        QFETCH(QString, words);
        QString description;
        QCOMPARE(FileTestSupport::ErrorOf([&] { connection().GetResource(path, true, false); },
                                          &description),
                 number);
        QVERIFY2(description.contains(words), qPrintable(description));
    }

    // The command is one argument of the profile's program: quotes, ";" and "$()" reach
    // it as they are, and it runs in the account's folder.
    void executeWithoutShell() {
        auto r = connection().GetResource(u"mvdb://*/ACC/BP/MAIN"_s, true, false);
        QVERIFY(r->HostAllows(12));
        const QString command = u"BASIC BP 'MAIN'; rm -rf $(pwd) \"`id`\" > x"_s;
        QCOMPARE(r->Host()->Execute(command, {}, 0), command);
        QCOMPARE(r->Host()->Session().AccountName, u"ACC"_s);
        auto pwd = connection().GetResource(u"mvdb://pwd/ACC/BP/"_s, true, false);
        QCOMPARE(pwd->Host()->Execute(u"ignored"_s).trimmed(),
                 QDir(accounts + u"/ACC"_s).canonicalPath());
        QVERIFY(!QFile::exists(accounts + u"/ACC/x"_s));

        auto server = connection().GetResource(u"mvdb://prod///"_s, true, false);
        QCOMPARE(server->Host()->Session().AccountName, u"ACC"_s);
    }

    // What a host writes for a terminal does not reach the results; every line ends in
    // CR LF.
    void executeCleansTheOutput_data() {
        QTest::addColumn<QString>("written");
        QTest::addColumn<QString>("returned");
        QTest::newRow("screen control, title")
            << "\\033[H\\033[2Ja\\033]0;qm\\007\\033[24;1H\\033[Kb"
            << "ab";
        QTest::newRow("LF, CR LF, Latin-1") << "a\\nb\\r\\ncaf\\0351"
                                            << "a\r\nb\r\ncaf\u00e9";
    }
    void executeCleansTheOutput() {
        QFETCH(QString, written);
        QFETCH(QString, returned);
        QCOMPARE(execute("printf", written), returned);
    }

    // The Command value as written: a quoted program path with blanks stays one word.
    void commandAsWritten_data() {
        QTest::addColumn<QString>("written");
        QTest::addColumn<QStringList>("words");
        QTest::newRow("semicolon in quotes")
            << "\"/a;b/my qm\" -x ; note" << QStringList{"/a;b/my qm", "-x"};
        QTest::newRow("quoted whole") << "\"qm -quiet\"" << QStringList{"qm", "-quiet"};
    }
    void commandAsWritten() {
        QFETCH(QString, written);
        QFETCH(QStringList, words);
        const QString file = tmp.filePath(u"command.conf"_s);
        FileTestSupport::WriteFile(file, "[h]\nAccountsFolder=/tmp\nCommand=" + written.toUtf8() +
                                             "\nAllowCommands=true\n");
        ConnectionProfiles profiles;
        profiles.Load(file);
        QVERIFY(profiles.Find(u"h"_s));
        QCOMPARE(QProcess::splitCommand(profiles.Find(u"h"_s)->CommandLine), words);
    }

    void failedCommands() {
        QString description;
        QCOMPARE(FileTestSupport::ErrorOf([&] { execute("slow", u"30"_s); }, &description),
                 ConnectionErrors::CommandTimedOut);
        QVERIFY2(description.contains(u"\"30\" did not finish within 1 seconds"_s),
                 qPrintable(description));
        QCOMPARE(FileTestSupport::ErrorOf([&] { execute("missing", u"WHO"_s); }, &description),
                 ConnectionErrors::CommandFailed);
        QVERIFY2(description.contains(u"/no/such/qm"_s), qPrintable(description));
    }

    void localFiles() {
        const QString utf8 = accounts + u"/local/u.txt"_s;
        const QString latin = accounts + u"/local/l.txt"_s;
        FileTestSupport::WriteFile(utf8, "caf\xc3\xa9\r\nline\r\n");
        FileTestSupport::WriteFile(latin, "caf\xe9\nx\n");
        auto u = connection().GetResource(connection().MakeFilePath({}, {}, utf8), false, true);
        QCOMPARE(u->ReadText(), QString::fromUtf8("caf\xc3\xa9\r\nline\r\n"));
        // Not UTF-8: read byte for byte.
        auto l = connection().GetResource(connection().MakeFilePath({}, {}, latin), false, true);
        QCOMPARE(l->ReadText(), QString::fromLatin1("caf\xe9\r\nx\r\n"));

        QVERIFY(!connection()
                     .GetResource(u"file://"_s + accounts + u"/local"_s, false, true)
                     ->IsItem());
        auto missing = connection().GetResource(
            connection().MakeFilePath({}, {}, accounts + u"/local/none"_s), false, true);
        QVERIFY(missing->IsItem() && !missing->Exists() && !missing->HostAllows(12));
    }
};

BRIX_TEST_MAIN(tst_mvConnection)
#include "tst_mvConnection.moc"
