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
        return connection()
            .HostFor(QString::fromLatin1(server), QStringLiteral("ACC"))
            ->Execute(command);
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(tmp.isValid());
        accounts = tmp.path();
        QDir().mkpath(accounts + QStringLiteral("/ACC/BP"));
        QDir().mkpath(accounts + QStringLiteral("/elsewhere/BP"));
        FileTestSupport::WriteFile(accounts + QStringLiteral("/ACC/BP/MAIN"), "A\nB\xef\xa3\xbd"
                                                                              "C\n");
        FileTestSupport::WriteFile(accounts + QStringLiteral("/ACC/VOC"), "hashed");
    }
    void init() { FileTestSupport::UseProfiles(prodProfile()); }

    void pathsThereAndBack_data() {
        QTest::addColumn<QStringList>("parts");
        QTest::addColumn<QString>("path");
        QTest::newRow("folder only") << QStringList{"mvdb", "PROD", "SALES", "BP", ""}
                                     << QStringLiteral("mvdb://PROD/SALES/BP/");
        QTest::newRow("escaped") << QStringList{"mvdb", "*", "A", "MY FILE",
                                                QString::fromUtf8("a/b%c*\xc3\xa9")}
                                 << QStringLiteral("mvdb://*/A/MY%20FILE/a%2Fb%25c*%C3%A9");
        QTest::newRow("local file") << QStringList{"file", "", "", "/home/u/my docs", "a b.txt"}
                                    << QStringLiteral("file:///home/u/my%20docs/a%20b.txt");
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
        const mvPath bare = mvPath::Parse(QStringLiteral("mvdb://PROD"));
        QCOMPARE(bare.ServerName, QStringLiteral("PROD"));
        QVERIFY(bare.Database.isEmpty() && bare.ItemID.isEmpty());
        const mvPath local = mvPath::Parse(QStringLiteral("/tmp/a%20b"));
        QCOMPARE(local.Provider, QStringLiteral("file"));
        QCOMPARE(local.ItemID, QStringLiteral("a%20b"));
        QDir::setCurrent(accounts);
        const mvPath made =
            mvPath::Parse(connection().MakeFilePath({}, {}, QStringLiteral("sub/../x.txt")));
        QCOMPARE(made.Folder, accounts);
        QCOMPARE(made.ItemID, QStringLiteral("x.txt"));
    }

    void profiles() {
        const ConnectionProfiles& p = connection().Profiles();
        QCOMPARE(p.Find(QStringLiteral("*"))->Name, QStringLiteral("prod"));
        QCOMPARE(p.Find(QStringLiteral("PROD"))->Label, QStringLiteral("PROD, EU"));
        QVERIFY(!p.Find(QStringLiteral("nope")) && p.Find(QStringLiteral("demo")));
        QCOMPARE(p.Find(QStringLiteral("prod"))->ItemNames, ItemIdCodec::Mode::Qm);
        QVERIFY(p.Warnings.isEmpty());

        FileTestSupport::UseProfiles({});
        QCOMPARE(connection().Profiles().DefaultName(), QStringLiteral("demo"));

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
        const HostProfile& remote = *p.Find(QStringLiteral("remote"));
        QCOMPARE(remote.SshIdentityFile, QDir::homePath() + QStringLiteral("/.ssh/id_mv"));
        QVERIFY(remote.QmLocks);
        QCOMPARE(p.Find(QStringLiteral("nohost"))->SshPort, 0);
        QVERIFY(!p.Find(QStringLiteral("odd"))->QmLocks);
        // No host, a bad port, an unknown transport, unknown locks: one warning each, told once.
        QCOMPARE(p.Warnings.size(), 4);
        BoxAnswers boxes;
        connection().ShowWarnings();
        connection().ShowWarnings();
        QCOMPARE(boxes.Seen.size(), 1);
        for (const QString& warning : p.Warnings)
            QVERIFY2(boxes.Seen.front().Text.contains(warning), qPrintable(warning));
    }

    // A newcomer's first path: the demo account through the default connection.
    void demoAccount() {
        FileTestSupport::UseProfiles({});
        auto hello =
            connection().GetResource(QStringLiteral("mvdb://*/DEMO/BP/HELLO"), true, false);
        QVERIFY(hello->ReadText().contains(QStringLiteral("Hello")));
        // brix-check stands in for the compiler; it runs nothing else.
        QVERIFY(hello->HostAllows(12));
        QCOMPARE(hello->Host()->Execute(QStringLiteral("BASIC BP HELLO ")),
                 QStringLiteral("Checking BP HELLO\r\nNo structure errors.\r\n"));
        QVERIFY(hello->Host()->Execute(QStringLiteral("LIST")).contains(QLatin1String("only")));
    }

    void resourcesAsHandedOut() {
        auto main = connection().GetResource(QStringLiteral("mvdb://*/acc/BP/MAIN"), false, true);
        QVERIFY(main->Locked());
        QCOMPARE(main->ReadText(),
                 QStringLiteral("A\r\nB") + QChar(0xF8FD) + QStringLiteral("C\r\n"));
        main->Release();
        QVERIFY(!main->Locked());

        auto missing = connection().GetResource(QStringLiteral("mvdb://*/ACC/BP/NEW"), false, true);
        QVERIFY(!missing->Exists() && missing->IsItem() && missing->Locked());

        for (const char* path :
             {"mvdb://*/ACC/VOC/", "mvdb://*/ACC/BP/", "mvdb://*/ACC//", "mvdb://prod///"}) {
            auto r = connection().GetResource(QString::fromLatin1(path), false, true);
            QVERIFY2(!r->IsItem(), path);
            QVERIFY(!r->Locked());
            r->Release();
        }
        // The recent list's form: the default connection's default account.
        auto recent = connection().GetResource(QStringLiteral("mvdb://*/*/BP/MAIN"), true, false);
        QVERIFY(recent->Exists());
        auto other = connection().GetResource(QStringLiteral("mvdb://*/other/BP/X"), true, false);
        QVERIFY(!other->Exists());
    }

    void readableFailures_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("words");
        QTest::newRow("unknown server")
            << QStringLiteral("mvdb://NOPE/A/B/C") << int(ConnectionErrors::UnknownServer)
            << QStringLiteral("NOPE");
        QTest::newRow("unknown account")
            << QStringLiteral("mvdb://*/NOPE/B/C") << int(ConnectionErrors::UnknownAccount)
            << QStringLiteral("NOPE");
        QTest::newRow("account escape")
            << QStringLiteral("mvdb://*/..%2F..//") << int(ConnectionErrors::UnknownAccount)
            << QStringLiteral("../..");
        QTest::newRow("item without file")
            << QStringLiteral("mvdb://*/ACC//C") << int(ConnectionErrors::BadPath)
            << QStringLiteral("no file");
        QTest::newRow("other provider") << QStringLiteral("ftp://x/y")
                                        << int(ConnectionErrors::BadPath) << QStringLiteral("ftp");
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
        auto r = connection().GetResource(QStringLiteral("mvdb://*/ACC/BP/MAIN"), true, false);
        QVERIFY(r->HostAllows(12));
        QVERIFY(!r->HostAllows(11));
        const QString command = QStringLiteral("BASIC BP 'MAIN'; rm -rf $(pwd) \"`id`\" > x");
        QCOMPARE(r->Host()->Execute(command, {}, 0), command);
        QCOMPARE(r->Host()->Session().AccountName, QStringLiteral("ACC"));
        auto pwd = connection().GetResource(QStringLiteral("mvdb://pwd/ACC/BP/"), true, false);
        QCOMPARE(pwd->Host()->Execute(QStringLiteral("ignored")).trimmed(),
                 QDir(accounts + QStringLiteral("/ACC")).canonicalPath());
        QVERIFY(!QFile::exists(accounts + QStringLiteral("/ACC/x")));

        auto server = connection().GetResource(QStringLiteral("mvdb://prod///"), true, false);
        QCOMPARE(server->Host()->Session().AccountName, QStringLiteral("ACC"));
    }

    // What a host writes for a terminal does not reach the results; every line ends in
    // CR LF.
    void executeCleansTheOutput_data() {
        QTest::addColumn<QString>("written");
        QTest::addColumn<QString>("returned");
        QTest::newRow("screen control") << "\\033[H\\033[2Ja\\033[24;1H\\033[Kb"
                                        << "ab";
        QTest::newRow("title") << "\\033]0;qm\\007x"
                               << "x";
        QTest::newRow("LF, CR LF") << "a\\nb\\r\\n"
                                   << "a\r\nb\r\n";
        QTest::newRow("Latin-1") << "caf\\0351"
                                 << "caf\u00e9";
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
        const QString file = tmp.filePath(QStringLiteral("command.conf"));
        FileTestSupport::WriteFile(file, "[h]\nAccountsFolder=/tmp\nCommand=" + written.toUtf8() +
                                             "\nAllowCommands=true\n");
        ConnectionProfiles profiles;
        profiles.Load(file);
        QVERIFY(profiles.Find(QStringLiteral("h")));
        QCOMPARE(QProcess::splitCommand(profiles.Find(QStringLiteral("h"))->CommandLine), words);
    }

    void failedCommands() {
        QString description;
        QCOMPARE(
            FileTestSupport::ErrorOf([&] { execute("slow", QStringLiteral("30")); }, &description),
            ConnectionErrors::CommandTimedOut);
        QVERIFY2(description.contains(QStringLiteral("\"30\" did not finish within 1 seconds")),
                 qPrintable(description));
        QCOMPARE(FileTestSupport::ErrorOf([&] { execute("missing", QStringLiteral("WHO")); },
                                          &description),
                 ConnectionErrors::CommandFailed);
        QVERIFY2(description.contains(QStringLiteral("/no/such/qm")), qPrintable(description));
    }

    void localFiles() {
        const QString utf8 = accounts + QStringLiteral("/local/u.txt");
        const QString latin = accounts + QStringLiteral("/local/l.txt");
        FileTestSupport::WriteFile(utf8, "caf\xc3\xa9\r\nline\r\n");
        FileTestSupport::WriteFile(latin, "caf\xe9\nx\n");
        auto u = connection().GetResource(connection().MakeFilePath({}, {}, utf8), false, true);
        QCOMPARE(u->ReadText(), QString::fromUtf8("caf\xc3\xa9\r\nline\r\n"));
        // Not UTF-8: read byte for byte.
        auto l = connection().GetResource(connection().MakeFilePath({}, {}, latin), false, true);
        QCOMPARE(l->ReadText(), QString::fromLatin1("caf\xe9\r\nx\r\n"));

        QVERIFY(!connection()
                     .GetResource(QStringLiteral("file://") + accounts + QStringLiteral("/local"),
                                  false, true)
                     ->IsItem());
        auto missing = connection().GetResource(
            connection().MakeFilePath({}, {}, accounts + QStringLiteral("/local/none")), false,
            true);
        QVERIFY(missing->IsItem() && !missing->Exists() && !missing->HostAllows(12));
    }
};

BRIX_TEST_MAIN(tst_mvConnection)
#include "tst_mvConnection.moc"
