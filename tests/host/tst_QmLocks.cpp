#include "BoxAnswers.h"
#include "FileTestSupport.h"
#include "QmHostFixture.h"
#include "SshServerFixture.h"
#include "TestEnv.h"

#include "documents/ConnectionErrors.h"
#include "documents/ConnectionProfiles.h"
#include "documents/QmLockKeeper.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "documents/mvHost.h"
#include "documents/mvResource.h"
#include "support/MsgBoxEx.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <csignal>

// Real QM record locks (Locks=qm), locally and over ssh: each side refuses the other's, and
// the lock goes with Save As, Release and a killed Brix.
class tst_QmLocks : public QObject {
    Q_OBJECT
    QmHostFixture host;
    std::unique_ptr<SshServerFixture> server;
    int items = 0;

    QString path(const QString& server, const QString& item) const {
        return mvConnection::Instance().MakePath(QStringLiteral("mvdb"), server, host.Account(),
                                                 QStringLiteral("BP"), item);
    }
    // A new item for each test row, so that no lock of an earlier row is in the way.
    QString newItem() {
        const QString id = QStringLiteral("L%1").arg(++items);
        host.WriteItem(QStringLiteral("BP"), id, "CRT 1\nEND\n");
        return id;
    }
    // What a QM program sees of the item's lock, without taking it (that could refuse Brix).
    QByteArray tryLock(const QString& id) const {
        return host.Run(QStringLiteral("RUN BP PEEK ") + id).trimmed();
    }
    // Polls until `want` is what a QM program sees; false after a minute.
    bool waitFor(const QString& id, const QByteArray& want) const {
        QElapsedTimer waited;
        waited.start();
        while (!tryLock(id).startsWith(want)) {
            if (waited.elapsed() > 60000)
                return false;
            QTest::qWait(50);
        }
        return true;
    }
    int brixUser(const QString& server) const {
        auto qm = mvConnection::Instance().HostFor(server, host.Account());
        return qm->LockKeeper()->UserNumber(qm->AccountFolder(host.Account()));
    }
    static QByteArray lockedBy(int user) { return "LOCKED BY USER " + QByteArray::number(user); }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(host.Ready(), qPrintable(host.Error()));
        QByteArray profiles =
            "[General]\nDefault=qm\n\n" + host.Profile(QStringLiteral("qm")) + "Locks=qm\n";
        server = std::make_unique<SshServerFixture>();
        QVERIFY2(server->Started(), qPrintable(server->Error()));
        QByteArray ssh = host.Profile(QStringLiteral("qmssh")) + "Locks=qm\n";
        ssh.replace("Transport=local\n", server->ProfileLines());
        FileTestSupport::UseProfiles(profiles + '\n' + ssh);
        QVERIFY(mvConnection::Instance().Profiles().Warnings.isEmpty());
        // HOLD holds the item's lock until a line arrives on its input.
        const QByteArray open = "OPEN 'BP' TO F ELSE STOP\nK = FIELD(@SENTENCE, ' ', 4)\n";
        host.WriteItem(QStringLiteral("BP"), QStringLiteral("HOLD"),
                       open +
                           "READU R FROM F, K ELSE NULL\nCRT 'HELD BY ':@USERNO\nINPUT X\nEND\n");
        host.WriteItem(QStringLiteral("BP"), QStringLiteral("PEEK"),
                       open + "IF RECORDLOCKED(F, K) = -2 THEN CRT 'LOCKED BY USER ':STATUS() "
                              "ELSE CRT 'FREE'\nEND\n");
        // TRYLOCK asks for the lock as a program would, without waiting.
        host.WriteItem(QStringLiteral("BP"), QStringLiteral("TRYLOCK"),
                       open + "READU R FROM F, K LOCKED\nCRT 'LOCKED BY USER ':STATUS()\nSTOP\n"
                              "END ELSE NULL\nCRT 'FREE'\nEND\n");
        for (const char* program : {"HOLD", "PEEK", "TRYLOCK"})
            QVERIFY(host.Run(QStringLiteral("BASIC BP ") + QLatin1String(program))
                        .contains("with no errors"));
    }
    void cleanupTestCase() {
        mvConnection::Instance().LoadProfiles(ConnectionProfiles::DefaultFile());
        server.reset();
    }

    void init() {
        QFETCH_GLOBAL(QString, server);
        Q_UNUSED(server);
    }
    static void initTestCase_data() {
        QTest::addColumn<QString>("server");
        QTest::newRow("local") << QStringLiteral("qm");
        QTest::newRow("ssh") << QStringLiteral("qmssh");
    }

    // Brix holds: QM sees who holds it; a save keeps the lock; Release frees it.
    void brixHoldsQmIsRefused() {
        QFETCH_GLOBAL(QString, server);
        const QString id = newItem();
        auto item = mvConnection::Instance().GetResource(path(server, id), false, true);
        QCOMPARE(host.Run(QStringLiteral("RUN BP TRYLOCK ") + id).trimmed(),
                 lockedBy(brixUser(server)));
        QVERIFY(host.Run(QStringLiteral("LIST.READU")).contains(id.toLatin1()));
        item->WriteText(QStringLiteral("CRT 2\r\nEND\r\n"));
        QCOMPARE(host.ReadItem(QStringLiteral("BP"), id), QByteArray("CRT 2\nEND\n"));
        QCOMPARE(tryLock(id), lockedBy(brixUser(server)));
        item->Release();
        QCOMPARE(tryLock(id), QByteArray("FREE"));
    }

    // A save through QM still refuses to write over a change to the OS file until told to;
    // an item deleted meanwhile counts as changed.
    void saveThroughQmSeesTheFileChanged() {
        QFETCH_GLOBAL(QString, server);
        const QString id = newItem();
        auto item = mvConnection::Instance().GetResource(path(server, id), false, true);
        QCOMPARE(item->ReadText(), QStringLiteral("CRT 1\r\nEND\r\n"));
        host.WriteItem(QStringLiteral("BP"), id, "CRT 'theirs'\nEND\n");
        auto refusedWith = [&] {
            return FileTestSupport::ErrorOf(
                [&] { item->WriteText(QStringLiteral("CRT 'mine'\r\nEND\r\n")); });
        };
        QCOMPARE(refusedWith(), ConnectionErrors::ChangedOnHost);
        item->AllowOverwrite();
        QCOMPARE(refusedWith(), 0);
        QCOMPARE(host.ReadItem(QStringLiteral("BP"), id), QByteArray("CRT 'mine'\nEND\n"));
        // Our own save is no change by someone else.
        QCOMPARE(refusedWith(), 0);
        QVERIFY(QFile::remove(host.ItemFile(QStringLiteral("BP"), id)));
        QCOMPARE(refusedWith(), ConnectionErrors::ChangedOnHost);
    }

    // A QM program holds: Brix asks whether to open read only and, told No, names the holder;
    // once the program lets go, the lock is Brix's.
    void qmHoldsBrixIsRefused() {
        QFETCH_GLOBAL(QString, server);
        const QString id = newItem();
        QProcess holder;
        holder.setWorkingDirectory(host.AccountFolder());
        holder.start(host.QmProgram(),
                     {QStringLiteral("-quiet"), QStringLiteral("RUN BP HOLD ") + id});
        QVERIFY(holder.waitForReadyRead(60000));
        const QByteArray held = holder.readAll().trimmed();
        QVERIFY2(held.startsWith("HELD BY "), held.constData());
        const QString user = QString::fromLatin1(held.mid(8));

        BoxAnswers boxes;
        boxes.Push(MsgBox::No);
        auto refused = mvDocument::Create();
        QVERIFY(!refused->FileOpen(path(server, id), false));
        refused->FileClose(false);
        QCOMPARE(boxes.Seen.size(), 2);
        QVERIFY2(boxes.Seen.at(1).Text.contains(QStringLiteral("is locked by QM user ") + user),
                 qPrintable(boxes.Seen.at(1).Text));
        // Once the program has let go, opening again gets the lock.
        holder.write("go\n");
        QVERIFY(holder.waitForFinished(60000));
        QVERIFY(refused->FileOpen(path(server, id), false));
        QCOMPARE(tryLock(id), lockedBy(brixUser(server)));
        refused->FileClose(false);
    }

    // Save As takes the target's lock and lets go of the old item's.
    void saveAsMovesTheLock() {
        QFETCH_GLOBAL(QString, server);
        const QString from = newItem();
        const QString to = QStringLiteral("L%1").arg(++items);
        auto doc = mvDocument::Create();
        QVERIFY(doc->FileOpen(path(server, from), false));
        QVERIFY(doc->FileSaveAs(path(server, to)));
        QCOMPARE(tryLock(from), QByteArray("FREE"));
        QCOMPARE(tryLock(to), lockedBy(brixUser(server)));
        doc->FileClose(false);
        QCOMPARE(tryLock(to), QByteArray("FREE"));
    }

    // An account whose LOGIN paragraph asks for input: the session answers nothing and works.
    void accountThatAsksAtLogin() {
        QFETCH_GLOBAL(QString, server);
        const QString account = QStringLiteral("ASKS");
        if (!QFileInfo::exists(host.AccountsFolder() + QLatin1Char('/') + account)) {
            QVERIFY(host.CreateAccount(account));
            QCOMPARE(host.RunProgram(QStringLiteral("ASKING"),
                                     "OPENPATH '" + host.AccountsFolder().toUtf8() +
                                         "/ASKS/VOC' TO V ELSE STOP 'NO VOC'\n"
                                         "WRITE 'PA':@FM:'DISPLAY <<Name?>>' TO V, 'LOGIN'\n"
                                         "CRT 'DONE'\nEND\n"),
                     QByteArray("DONE\r\n"));
        }
        auto item = mvConnection::Instance().GetResource(
            mvConnection::Instance().MakePath(QStringLiteral("mvdb"), server, account,
                                              QStringLiteral("BP"), QStringLiteral("NEW")),
            false, true);
        QVERIFY(item->Locked());
        item->WriteText(QStringLiteral("END"));
        item->Release();
        QCOMPARE(FileTestSupport::ReadFile(host.AccountsFolder() + QStringLiteral("/ASKS/BP/NEW")),
                 QByteArray("END"));
    }

    // The QM process ends with its channel: a Brix killed outright leaves no lock behind.
    void killedBrixFreesTheLock() {
        QFETCH_GLOBAL(QString, server);
        const QString id = newItem();
        QTemporaryDir config; // the same connections, where the program looks for them

        QVERIFY(QDir().mkpath(config.filePath(QStringLiteral("Tolvek/Brix"))));
        QVERIFY(QFile::copy(ConnectionProfiles::DefaultFile(),
                            config.filePath(QStringLiteral("Tolvek/Brix/connections.conf"))));
        QProcess brix;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
        brix.setProcessEnvironment(environment);
        brix.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        brix.start(qEnvironmentVariable("BRIX_BUILD_DIR") + QStringLiteral("/brix"),
                   {QStringLiteral("/H=") + server, QStringLiteral("/A=") + host.Account(),
                    QStringLiteral("/F=BP"), QStringLiteral("/I=") + id});
        QVERIFY(brix.waitForStarted(30000));
        QVERIFY2(waitFor(id, "LOCKED BY USER"), "Brix did not take the lock");
        ::kill(static_cast<pid_t>(brix.processId()), SIGKILL);
        QVERIFY(brix.waitForFinished(30000));
        QVERIFY2(waitFor(id, "FREE"), "the lock stayed after Brix was killed");
    }
};

BRIX_TEST_MAIN(tst_QmLocks)
#include "tst_QmLocks.moc"
