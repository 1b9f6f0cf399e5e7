#include "DocumentSession.h"
#include "FileTestSupport.h"
#include "SshServerFixture.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/HostResource.h"
#include "documents/frmBrowse.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "documents/mvPath.h"
#include "documents/mvResource.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"
#include "support/MsgBoxEx.h"

#include <QCloseEvent>
#include <QDateTime>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// The two versions the saving child writes in turn: large, and of different lengths.
QByteArray version(int which) {
    QByteArray text;
    const int lines = which == 0 ? 40000 : 30000;
    text.reserve(lines * 40);
    for (int i = 0; i < lines; ++i)
        text += (which == 0 ? "      CRT 'first version, line " : "   * second version ") +
                QByteArray::number(i) + "'\n";
    return text;
}

// The child that saves one item over and over until it is killed.
bool saveLoop(const QByteArray& mode, const QString& path) {
    if (mode != "saveloop")
        return false;
    Settings().RecordLocking = false;
    const QString versions[2] = {QString::fromLatin1(version(0)), QString::fromLatin1(version(1))};
    auto document = mvDocument::Create();
    if (!document->FileOpen(path, false))
        return true;
    std::fputs("ready\n", stdout);
    std::fflush(stdout);
    for (int n = 0;; ++n) {
        document->SetText(versions[n % 2]);
        if (!document->FileSave())
            return true;
        std::fputs("saved\n", stdout);
        std::fflush(stdout);
    }
}

} // namespace

// Saving and closing documents on a real account: each answer, locks, failed writes, the
// browser, the close questions, and saves killed half way.
class tst_modSave : public QObject {
    Q_OBJECT
    DocumentSession session;
    frmMain*& frame = session.Frame;
    std::unique_ptr<HostAccountFixture>& account = session.Account;
    std::unique_ptr<BoxAnswers>& answers = session.Answers;

    static ProcessState& state() { return ProcessState::Instance(); }
    static QString bp(const QString& item) { return HostAccountFixture::ItemPath("BP", item); }
    // A document open on a BP item with a change typed into it.
    std::shared_ptr<mvDocument> editedItem(const QString& item, const QString& typed) {
        auto d = mvDocument::Create();
        if (!d->FileOpen(bp(item), false))
            return nullptr;
        d->Editor()->SetCursor(0, 0);
        d->SetSelText(typed);
        return d;
    }
    std::shared_ptr<mvResource> resource(const QString& path) {
        return mvConnection::Instance().GetResource(path, false, false);
    }
    // The test account again, reached over ssh to this machine as connection "remote"; a
    // new server each time. Empty when no sshd can run.
    std::unique_ptr<SshServerFixture> sshd;
    QString overSsh(const QString& item) {
        sshd = std::make_unique<SshServerFixture>();
        if (!sshd->Started())
            return {};
        FileTestSupport::UseProfiles(FileTestSupport::ReadFile(account->ProfilesFile()) +
                                     "\n[remote]\n" + sshd->ProfileLines() + "AccountsFolder=" +
                                     account->Accounts().toUtf8() + "\nDefaultAccount=DEMO\n");
        return u"mvdb://remote/DEMO/BP/"_s + item;
    }

public:
    tst_modSave() { HostAccountFixture::RunChildIfAsked(saveLoop); }

private Q_SLOTS:
    void initTestCase() { session.StartCase(); }
    void cleanupTestCase() { session.EndCase(); }
    void init() { session.StartTest(); }
    void cleanup() { session.EndTest(false); }

    // FileSave and FileSaveAs on a document opened on an item (read only, or missing and
    // created with Yes) or made new: the messages, and where text, lock and context end up.
    void fileSave_data() {
        QTest::addColumn<QString>("start");  // an item of BP, "<item> ro", or empty for new
        QTest::addColumn<QString>("saveAs"); // empty: FileSave
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QString>("written"); // the BP item that gets the text; empty: none
        const QString noName = QStringLiteral("Cannot save document - file name and/or item ID "
                                              "missing!");
        QTest::newRow("item") << "HELLO" << QString() << QStringList() << "HELLO";
        QTest::newRow("never saved") << "" << QString() << QStringList{noName} << "";
        QTest::newRow("read only")
            << "HELLO ro" << QString()
            << QStringList{"Cannot save BP HELLO - document is read-only!"} << "";
        // Yes to "does not exist": written without an overwrite question, and no longer new.
        QTest::newRow("created item")
            << "FRESH" << QString() << QStringList{"Item FRESH does not exist. Create new item?"}
            << "FRESH";
        QTest::newRow("as an item of an unknown account")
            << ""
            << "mvdb://*/NOBODY/BP/X" << QStringList{"There is no account \"NOBODY\" on test."}
            << "";
    }
    void fileSave() {
        QFETCH(QString, start);
        QFETCH(QString, saveAs);
        QFETCH(QStringList, messages);
        QFETCH(QString, written);
        const QString item = start.section(' ', 0, 0);
        auto d = mvDocument::Create();
        if (start.isEmpty()) {
            QVERIFY(d->FileNew());
        } else {
            if (item == "FRESH")
                answers->Push(MsgBox::Yes);
            QVERIFY(d->FileOpen(bp(item), start.endsWith(" ro")));
        }
        d->Editor()->SetCursor(0, 0);
        d->SetSelText(u"* saved\n"_s);
        const QByteArray hello = account->ReadItem("BP", "HELLO");
        const QByteArray before =
            written == item && !d->NewItem() ? account->ReadItem("BP", written) : "";
        state().Host = HostContext();
        QCOMPARE(saveAs.isEmpty() ? d->FileSave() : d->FileSaveAs(saveAs), !written.isEmpty());
        QCOMPARE(answers->Texts(), messages);
        if (written.isEmpty()) {
            QVERIFY(d->IsDirty());
            QCOMPARE(account->ReadItem("BP", "HELLO"), hello);
            return;
        }
        QCOMPARE(account->ReadItem("BP", written), "* saved\n" + before);
        QVERIFY(!d->IsDirty() && !d->NewItem());
        QCOMPARE(state().Host.Folder, u"BP"_s);
        QCOMPARE(account->LockHolder("BP", written), qint64(::getpid()));
    }

    // A failed write keeps text, modified state and host item; past Save As's lock move, and
    // in the close's question, where it stops the close.
    void failedWriteKeepsEverything_data() {
        QTest::addColumn<QString>("how");
        QTest::newRow("save") << "save";
        QTest::newRow("save as") << "save as";
        QTest::newRow("close") << "close";
    }
    void failedWriteKeepsEverything() {
        QFETCH(QString, how);
        // The account stores Latin-1: a character outside it can't be written.
        auto d = editedItem("HELLO", QString::fromUtf8("CRT '\xe2\x82\xac'\n"));
        QVERIFY(d);
        const QString text = d->Text();
        const QByteArray hello = account->ReadItem("BP", "HELLO");
        const QByteArray other = account->ReadItem("LIB", "OTHER");
        if (how == "save as") {
            answers->Push(MsgBox::Yes);
            QVERIFY(!d->FileSaveAs(HostAccountFixture::ItemPath("LIB", "OTHER")));
            QCOMPARE(d->ItemID(), u"OTHER"_s);
            QCOMPARE(account->LockHolder("BP", "HELLO"), qint64(0));
            QCOMPARE(account->LockHolder("LIB", "OTHER"), qint64(::getpid()));
        } else if (how == "close") {
            answers->Push(MsgBox::Yes);
            QCOMPARE(frame->CloseDocument(d), int16_t(frmMain::Cancelled));
            QVERIFY(state().Documents->Contains(QString::number(d->DocumentNumber())));
        } else {
            QVERIFY(!d->FileSave());
        }
        QVERIFY2(answers->Seen.last().Text.contains(u"Nothing was written"_s),
                 qPrintable(answers->Seen.last().Text));
        QVERIFY(d->IsDirty() && d->Text() == text);
        QCOMPARE(account->ReadItem("BP", "HELLO") + account->ReadItem("LIB", "OTHER"),
                 hello + other);
    }

    // SaveToResource's decision tree from BP HELLO: where text, lock and context end up.
    void saveToResource_data() {
        QTest::addColumn<bool>("openReadOnly");
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("locking");
        QTest::addColumn<bool>("targetLockedByOther");
        QTest::addColumn<QList<int32_t>>("replies");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<bool>("saved");

        const auto row = [](const char* tag, bool readOnly, const QString& target, bool locking,
                            bool lockedByOther, const QList<int32_t>& replies,
                            const QStringList& messages, bool saved) {
            QTest::newRow(tag) << readOnly << target << locking << lockedByOther << replies
                               << messages << saved;
        };
        const QString lib = HostAccountFixture::ItemPath("LIB", "OTHER");
        const QString overwrite = u"Item 'OTHER' exists. Overwrite?"_s;
        const QList<int32_t> none, yes{MsgBox::Yes};
        row("same item read only", true, bp("HELLO"), true, false, none,
            {"Item 'HELLO' is open in read-only mode. Please save using a different name."}, false);
        row("read-only document to a new item", true, bp("NEWONE"), true, false, none, {}, true);
        row("existing, Yes", false, lib, true, false, yes, {overwrite}, true);
        row("existing, No", false, lib, true, false, {MsgBox::No}, {overwrite}, false);
        row("existing, protected", false, bp("PROT"), true, false, none,
            {"Item 'PROT' exists and cannot be overwritten. Please save using a different name."},
            false);
        row("hashed file", false, HostAccountFixture::ItemPath("CUSTOMERS", "X"), true, false, none,
            {"'X' appears to be a file or folder and cannot be overwritten!"}, false);
        row("locked by other", false, lib, true, true, yes,
            {overwrite, "Item 'OTHER' is currently locked and cannot be updated!"}, false);
        row("locked by other, no locking", false, lib, false, true, yes, {overwrite}, true);
    }
    void saveToResource() {
        QFETCH(bool, openReadOnly);
        QFETCH(QString, target);
        QFETCH(bool, locking);
        QFETCH(bool, targetLockedByOther);
        QFETCH(QList<int32_t>, replies);
        QFETCH(QStringList, messages);
        QFETCH(bool, saved);

        std::unique_ptr<HostAccountFixture::LockHolderProcess> holder;
        if (targetLockedByOther) {
            holder = std::make_unique<HostAccountFixture::LockHolderProcess>(*account, target);
            QVERIFY(holder->Holding());
        }
        Settings().RecordLocking = locking;
        auto d = mvDocument::Create();
        QVERIFY(d->FileOpen(bp("HELLO"), openReadOnly));
        d->SetSelText(u"* new text\n"_s);
        const QString text = d->Text();
        const bool heldHello = locking && !openReadOnly;

        const auto targetResource = resource(target);
        const mvPath parts = mvPath::Parse(target);
        const QByteArray before = account->ReadItem(parts.Folder, parts.ItemID);
        state().Host = HostContext();
        answers->Push(replies);
        QCOMPARE(d->SaveToResource(targetResource), saved);
        QCOMPARE(answers->Texts(), messages);
        // The context has moved to the target whether or not it was written.
        QCOMPARE(state().Host.Folder, parts.Folder);
        if (saved) {
            QVERIFY(mvPath::Same(d->Path(), target));
            QCOMPARE(account->ReadItem(parts.Folder, parts.ItemID),
                     text.toLatin1().replace("\r", ""));
            QVERIFY(!d->IsDirty());
            const qint64 expectedHolder =
                targetLockedByOther ? holder->Pid() : (locking ? ::getpid() : 0);
            QCOMPARE(account->LockHolder(parts.Folder, parts.ItemID), expectedHolder);
            if (!mvPath::Same(target, bp("HELLO")))
                QCOMPARE(account->LockHolder("BP", "HELLO"), qint64(0));
        } else {
            QCOMPARE(d->ItemID(), u"HELLO"_s);
            QVERIFY(d->IsDirty() && d->Text() == text);
            QCOMPARE(account->ReadItem(parts.Folder, parts.ItemID), before);
            QCOMPARE(account->LockHolder("BP", "HELLO"), heldHello ? qint64(::getpid()) : 0);
        }
    }

    // Save As through the browser: the recent list follows the name.
    void saveAsCommand() {
        auto d = editedItem("HELLO", "* copy\n");
        QVERIFY(d);
        Settings().RecentList->AddItem(u"mvdb://*/*/BP/HELLO"_s);
        Settings().RecentList->AddItem(u"mvdb://*/*/BP/ELSE"_s);
        DocumentFrame::WhenBrowserShows([&](frmBrowse& browser) {
            browser.findChild<QLineEdit*>(u"txtName"_s)->setText("HELLO.COPY");
            browser.accept();
        });
        frame->SaveDocumentAs(d);
        QVERIFY(account->ReadItem("BP", "HELLO.COPY").startsWith("* copy\n"));
        QCOMPARE(DocumentFrame::RecentItems(),
                 (QStringList{"mvdb://*/*/BP/HELLO.COPY", "mvdb://*/*/BP/ELSE"}));
    }

    // FileClose with and without its question, and each answer.
    void fileClose_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("prompt");
        QTest::addColumn<int32_t>("reply");
        QTest::addColumn<bool>("closed");
        QTest::addColumn<QByteArray>("onDisk");
        QTest::newRow("Yes saves") << "item" << true << MsgBox::Yes << true << QByteArray("* x\n");
        QTest::newRow("No discards") << "item" << true << MsgBox::No << true << QByteArray();
        QTest::newRow("Yes, never saved") << "new" << true << MsgBox::Yes << false << QByteArray();
        QTest::newRow("clean") << "clean" << true << 0 << true << QByteArray();
        QTest::newRow("no prompt") << "item" << false << 0 << true << QByteArray();
        QTest::newRow("Yes, read only")
            << "readonly" << true << MsgBox::Yes << false << QByteArray();
    }
    void fileClose() {
        QFETCH(QString, kind);
        QFETCH(bool, prompt);
        QFETCH(int32_t, reply);
        QFETCH(bool, closed);
        QFETCH(QByteArray, onDisk);
        const QByteArray before = account->ReadItem("BP", "HELLO");
        auto d = mvDocument::Create();
        if (kind == "new")
            QVERIFY(d->FileNew());
        else
            QVERIFY(d->FileOpen(bp("HELLO"), kind == "readonly"));
        if (kind != "clean") {
            d->Editor()->SetCursor(0, 0);
            d->SetSelText(u"* x\n"_s);
        }
        const QString name = d->DisplayName();
        const QString key = QString::number(d->DocumentNumber());
        if (reply)
            answers->Push(reply);
        QCOMPARE(d->FileClose(prompt), closed);
        QStringList asked;
        if (reply)
            asked << u"Save changes to "_s + name + u" ?"_s;
        QCOMPARE(answers->Texts().mid(0, 1), asked);
        QCOMPARE(answers->Seen.size(), asked.size() + (kind == "readonly"));
        QCOMPARE(state().Documents->Contains(key), !closed);
        QCOMPARE(d->IsDirty(), !closed);
        QCOMPARE(account->ReadItem("BP", "HELLO"), onDisk + before);
        if (kind != "new")
            QCOMPARE(account->LockHolder("BP", "HELLO"),
                     closed || kind == "readonly" ? 0 : qint64(::getpid()));
    }

    // Closing the frame asks per document; Cancel on the second keeps the program up.
    void closingTheFrameAsksPerDocument() {
        std::vector<std::shared_ptr<mvDocument>> documents;
        for (const char* item : {"HELLO", "FORMAT.AMOUNT", "INVOICE.TOTALS"})
            documents.push_back(editedItem(item, "* edited\n"));
        answers->Push({MsgBox::Yes, MsgBox::Cancel});
        QCloseEvent event;
        QCoreApplication::sendEvent(frame, &event);
        QVERIFY(!event.isAccepted());
        QVERIFY(account->ReadItem("BP", "HELLO").startsWith("* edited\n"));
        QCOMPARE(state().Documents->Count(), 2);
        QCOMPARE(frame->DocumentCount, int16_t(2));
    }

    // Someone else's editor or program changed the item after it was opened here: the save
    // asks before it replaces their text, and only then.
    void changedOnTheHostAsks_data() {
        QTest::addColumn<QString>("transport");
        QTest::newRow("local file") << "file";
        QTest::newRow("host on this machine") << "local";
        QTest::newRow("host over ssh") << "ssh";
    }
    void changedOnTheHostAsks() {
        QFETCH(QString, transport);
        QString path = bp("HELLO");
        QString disk = account->ItemFile("BP", "HELLO");
        if (transport == "file") {
            disk = account->LocalFolder() + u"/hello.bas"_s;
            FileTestSupport::WriteFile(disk, "END\n");
            path = mvConnection::Instance().MakePath("file", {}, {}, account->LocalFolder(),
                                                     u"hello.bas"_s);
        } else if (transport == "ssh" && (path = overSsh(u"HELLO"_s)).isEmpty()) {
            QSKIP(qPrintable(sshd->Error()));
        }
        auto d = mvDocument::Create();
        QVERIFY2(d->FileOpen(path, false), qPrintable(answers->Texts().join('\n')));
        const auto type = [&](const char* text) {
            d->Editor()->SetCursor(0, 0);
            d->SetSelText(QString::fromLatin1(text));
        };
        // Twice in a row, then after a touch that changed no byte: nothing to ask.
        for (const char* text : {"* one\n", "* two\n", "* three\n"}) {
            if (text[2] == 't' && text[3] == 'h') {
                QFile touched(disk);
                QVERIFY(touched.open(QIODevice::ReadWrite));
                QVERIFY(touched.setFileTime(QDateTime::currentDateTime().addSecs(3600),
                                            QFileDevice::FileModificationTime));
            }
            type(text);
            QVERIFY(d->FileSave());
        }
        FileTestSupport::WriteFile(disk, "* theirs\n");
        type("* mine\n");
        answers->Push({MsgBox::No, MsgBox::Yes});
        QVERIFY(!d->FileSave());
        QCOMPARE(answers->Seen.size(), 1);
        QVERIFY2(answers->Seen[0].Text.contains("changed on the host since you opened it"),
                 qPrintable(answers->Seen[0].Text));
        QVERIFY(d->IsDirty());
        QCOMPARE(FileTestSupport::ReadFile(disk), QByteArray("* theirs\n"));
        QVERIFY(d->FileSave());
        QVERIFY(FileTestSupport::ReadFile(disk).startsWith("* mine\n* three\n* two\n"));
    }

    // The ssh connection dies at some moment of the save of a large item: the host keeps the
    // old text or has all of the new, and a failed save leaves the document open, modified.
    void connectionKilledDuringASave() {
        const QByteArray versions[2] = {version(0), version(1)};
        Settings().RecordLocking = false;
        const int rounds = 6;
        qint64 perSave = 0;
        int failed = 0;
        for (int round = -1; round < rounds; ++round) {
            account->WriteItem("BP", "BIG", versions[0]);
            const QString path = overSsh("BIG");
            if (path.isEmpty())
                QSKIP(qPrintable(sshd->Error()));
            auto d = mvDocument::Create();
            QVERIFY2(d->FileOpen(path, false), qPrintable(answers->Texts().join('\n')));
            d->SetText(QString::fromLatin1(versions[1]));
            const QString mine = d->Text();
            // The first round measures a save; the others kill the server across its first half,
            // where the text goes over.
            QTimer killer;
            killer.setSingleShot(true);
            connect(&killer, &QTimer::timeout, this, [this] { sshd->Kill(); });
            if (round >= 0)
                killer.start(static_cast<int>(perSave * round / (2 * rounds)));
            QElapsedTimer clock;
            clock.start();
            const int shown = answers->Seen.size();
            const bool saved = d->FileSave();
            perSave = round < 0 ? clock.elapsed() : perSave;
            const QByteArray onHost = account->ReadItem("BP", "BIG");
            QVERIFY2(onHost == versions[0] || onHost == versions[1],
                     qPrintable(u"round %1: %2 bytes"_s.arg(round).arg(onHost.size())));
            if (!saved) {
                ++failed;
                QVERIFY(d->IsDirty());
                QCOMPARE(d->Text(), mine);
                QCOMPARE(answers->Seen.size(), shown + 1);
                QVERIFY2(answers->Seen.last().Text.contains("ssh"),
                         qPrintable(answers->Seen.last().Text));
            }
            QVERIFY(d->FileClose(false));
        }
        Settings().RecordLocking = true;
        qInfo("server killed in %d saves (%lld ms each): %d failed", rounds, perSave, failed);
        QVERIFY(failed > 0);
    }

    // Killing the process at any moment of a save leaves the old text or the new one, and
    // the item stays readable and writable.
    void killedSavesLeaveOneWholeVersion() {
        const QByteArray original = account->ReadItem("BP", "HELLO");
        const QByteArray versions[2] = {version(0), version(1)};
        const auto startSaver = [&](QProcess& saver) {
            HostAccountFixture::StartChild(saver, "saveloop", account->ProfilesFile(), bp("HELLO"));
            return saver.waitForReadyRead(60000);
        };
        QElapsedTimer clock;
        QProcess child;
        QVERIFY(startSaver(child));
        clock.start();
        int saves = 0;
        while (saves < 4 && child.waitForReadyRead(60000))
            saves += child.readAll().count("saved");
        const qint64 perSave = std::max<qint64>(1, clock.elapsed() / std::max(saves, 1));
        child.kill();
        child.waitForFinished();
        int whole = 0;
        for (int round = 0; round < 12; ++round) {
            account->WriteItem("BP", "HELLO", original);
            QProcess saver;
            QVERIFY(startSaver(saver));
            QTest::qSleep(static_cast<int>(perSave * round / 4)); // into the third save
            ::kill(static_cast<pid_t>(saver.processId()), SIGKILL);
            QVERIFY(saver.waitForFinished(30000));
            const QByteArray onDisk = account->ReadItem("BP", "HELLO");
            QVERIFY2(onDisk == versions[0] || onDisk == versions[1] || onDisk == original,
                     qPrintable(QString::number(round)));
            whole += onDisk != original;
        }
        QVERIFY(whole > 0);
        // Left-over temporary files neither show as items nor stop a read or a save; those
        // of saves killed long ago go with the next save in the folder.
        const QString folder = account->Accounts() + u"/DEMO/BP"_s;
        const auto temporaries = [&] {
            return QDir(folder).entryList({u".brix-save-*"_s}, QDir::Files | QDir::Hidden);
        };
        for (const auto& child :
             std::static_pointer_cast<HostResource>(resource(bp("")))->Children())
            QVERIFY2(!child.Name.startsWith('.'), qPrintable(child.Name));
        const QStringList aged = temporaries() << u".brix-save-old"_s;
        for (const QString& name : aged) {
            QFile stray(folder + u'/' + name);
            QVERIFY(stray.open(QIODevice::ReadWrite) &&
                    stray.setFileTime(QDateTime::currentDateTime().addSecs(-2 * 3600),
                                      QFileDevice::FileModificationTime));
        }
        FileTestSupport::WriteFile(folder + u"/.brix-save-fresh"_s, {});
        auto d = mvDocument::Create();
        QVERIFY(d->FileOpen(bp("HELLO"), false));
        d->SetText(u"END\n"_s);
        QVERIFY(d->FileSave());
        QCOMPARE(account->ReadItem("BP", "HELLO"), QByteArray("END\n"));
        QCOMPARE(temporaries(), QStringList{u".brix-save-fresh"_s});
    }
};

BRIX_TEST_MAIN(tst_modSave)
#include "tst_modSave.moc"
