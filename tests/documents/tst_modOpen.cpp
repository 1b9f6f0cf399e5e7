#include "DocumentSession.h"
#include "FileTestSupport.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/frmBrowse.h"
#include "documents/modOpen.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "editing/frmDocument.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "recovery/modAutoRecover.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"
#include "support/MsgBoxEx.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QMimeData>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

// Opening documents on a real account and on local files: the open decision tree with each
// answer, locks held by a second process, the browser, the recent list and dropped files.
class tst_modOpen : public QObject {
    Q_OBJECT
    DocumentSession session;
    frmMain*& frame = session.Frame;
    std::unique_ptr<HostAccountFixture>& account = session.Account;
    std::unique_ptr<BoxAnswers>& answers = session.Answers;

    static ProcessState& state() { return ProcessState::Instance(); }
    static QString bp(const QString& item) { return HostAccountFixture::ItemPath("BP", item); }

public:
    tst_modOpen() { HostAccountFixture::RunChildIfAsked(); }

private Q_SLOTS:
    void initTestCase() { session.StartCase(); }
    void cleanupTestCase() { session.EndCase(); }
    void init() { session.StartTest(); }
    void cleanup() { session.EndTest(true); }

    // FileOpen on one path: the questions, each answer, the document and its lock after.
    void fileOpen_data() {
        QTest::addColumn<QString>("item");
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<bool>("locking");
        QTest::addColumn<bool>("lockedByOther");
        QTest::addColumn<QList<int32_t>>("replies");
        QTest::addColumn<QStringList>("questions");
        // "open", "open read only", "new", "left" (no resource), "closed" (out of Documents)
        QTest::addColumn<QString>("outcome");
        QTest::addColumn<bool>("lockHeld");
        const auto row = [](const char* tag, const char* item, bool readOnly, bool locking,
                            bool other, const QList<int32_t>& replies, const QStringList& questions,
                            const char* outcome, bool lockHeld) {
            QTest::newRow(tag) << QString(item) << readOnly << locking << other << replies
                               << questions << QString(outcome) << lockHeld;
        };
        const QList<int32_t> none, yes{MsgBox::Yes}, no{MsgBox::No};
        const QString lockQuestion =
            QStringLiteral("HELLO is locked by another user or process. Open in \"read only\" "
                           "mode instead?");
        const QString prot = u"Item PROT is \"read only\". Open in read-only mode?"_s;
        const QString missing = u"Item NEWONE does not exist. Create new item?"_s;
        const QString folder = QStringLiteral(
            "Unable to open item %1 because it appears to be a folder or file definition.");

        row("item, locked", "HELLO", false, true, false, none, {}, "open", true);
        row("item, asked read only", "HELLO", true, true, false, none, {}, "open read only", false);
        row("protected, locking: silent read only", "PROT", false, true, false, none, {},
            "open read only", false);
        row("protected, no locking, Yes", "PROT", false, false, false, yes, {prot},
            "open read only", false);
        row("protected, no locking, No", "PROT", false, false, false, no, {prot}, "left", false);
        row("missing, Yes", "NEWONE", false, true, false, yes, {missing}, "new", true);
        row("missing, No", "NEWONE", false, true, false, no, {missing}, "closed", false);
        row("missing read only, Yes", "NEWONE", true, true, false, yes, {missing}, "new", false);
        row("file definition", "CUSTOMERS/X", false, true, false, none, {folder.arg("X")}, "left",
            false);
        row("locked by other, Yes", "HELLO", false, true, true, yes, {lockQuestion},
            "open read only", false);
        // The second text is the start of the connection layer's description.
        row("locked by other, No", "HELLO", false, true, true, {MsgBox::No, MsgBox::OK},
            {lockQuestion, "Item HELLO in BP is locked by "}, "left", false);
        row("locked by other, no locking", "HELLO", false, false, true, none, {}, "open", false);
    }
    void fileOpen() {
        QFETCH(QString, item);
        QFETCH(bool, readOnly);
        QFETCH(bool, locking);
        QFETCH(bool, lockedByOther);
        QFETCH(QList<int32_t>, replies);
        QFETCH(QStringList, questions);
        QFETCH(QString, outcome);
        const bool opened = outcome != "left" && outcome != "closed";
        QFETCH(bool, lockHeld);

        const QString file = item.contains('/') ? item.section('/', 0, 0) : u"BP"_s;
        const QString id = item.contains('/') ? item.section('/', 1) : item;
        const QString path = HostAccountFixture::ItemPath(file, id);
        std::unique_ptr<HostAccountFixture::LockHolderProcess> holder;
        if (lockedByOther) {
            holder = std::make_unique<HostAccountFixture::LockHolderProcess>(*account, path);
            QVERIFY(holder->Holding());
        }
        Settings().RecordLocking = locking;
        BoxAnswers& boxes = *answers;
        boxes.Push(replies);

        auto d = mvDocument::Create();
        QCOMPARE(d->FileOpen(path, readOnly), opened);

        QCOMPARE(boxes.Seen.size(), questions.size());
        for (int i = 0; i < questions.size(); ++i)
            QVERIFY2(boxes.Seen[i].Text.startsWith(questions[i]), qPrintable(boxes.Seen[i].Text));

        QCOMPARE(state().Documents->Contains(QString::number(d->DocumentNumber())),
                 outcome != "closed");
        if (outcome == "open" || outcome == "open read only") {
            QVERIFY(d->DocumentResource());
            QCOMPARE(d->ReadOnly(), outcome == "open read only");
            QVERIFY(!d->NewItem());
        } else if (outcome == "new") {
            QVERIFY(d->NewItem());
            QCOMPARE(d->View()->Title(), u"BP NEWONE on TEST (New)"_s);
        } else {
            QVERIFY(!d->DocumentResource());
        }
        QCOMPARE(state().Host.Folder, opened ? u"BP"_s : QString());
        QCOMPARE(account->LockHolder(file, id), holder     ? holder->Pid()
                                                : lockHeld ? qint64(::getpid())
                                                           : 0);
    }

    // A local file never takes a lock; a protected one opens read only.
    void localFiles() {
        const QString fileName = account->LocalFolder() + u"/a.txt"_s;
        FileTestSupport::WriteFile(fileName, "line 1\r\nline\t2\r\n");
        QVERIFY(::chmod(QFile::encodeName(fileName).constData(), 0444) == 0);
        auto d = mvDocument::Create();
        QVERIFY(d->FileOpen(mvConnection::Instance().MakeFilePath({}, {}, fileName), false));
        QCOMPARE(answers->Texts(), QStringList());
        QCOMPARE(d->View()->Title(), u"a.txt (Read only)"_s);
        QCOMPARE(d->Text(), u"line 1\r\nline"_s + QString(Settings().TabSize, ' ') + u"2\r\n"_s);
        QCOMPARE(state().Host.Folder, account->LocalFolder());
    }

    // Opening again into an open document replaces its text and lock, and keeps the count.
    void reopeningReplacesResourceAndCountsOnce() {
        auto d = mvDocument::Create();
        QVERIFY(d->FileOpen(bp("HELLO"), false));
        QTest::keyClicks(d->Editor(), u"xyz"_s);
        QVERIFY(d->FileOpen(bp("FORMAT.AMOUNT"), false));
        QVERIFY(!d->IsDirty() && !d->Buffer()->CanUndo());
        QCOMPARE(frame->DocumentCount, int16_t(1));
        QCOMPARE(account->LockHolder("BP", "HELLO"), qint64(0));
        QCOMPARE(account->LockHolder("BP", "FORMAT.AMOUNT"), qint64(::getpid()));
    }

    // A recent host entry opens on the account in use, or the connection's own account.
    void recentEntriesOpenOnTheCurrentAccount() {
        QDir().mkpath(account->Accounts() + u"/OTHER/BP"_s);
        QFile::copy(account->ItemFile("BP", "HELLO"), account->Accounts() + u"/OTHER/BP/HELLO"_s);
        Settings().RecentList->AddItem(u"mvdb://*/*/BP/HELLO"_s);

        QCOMPARE(modOpen::OpenRecent(1)->Path(), bp("HELLO"));
        DocumentFrame::CloseAll();
        state().Host = {u"mvdb"_s, u"test"_s, u"OTHER"_s, u"BP"_s};
        frame->OpenRecent(1);
        QCOMPARE(state().Documents->Count(), 1);
        QCOMPARE(state().Documents->At(0)->Path(), u"mvdb://test/OTHER/BP/HELLO"_s);
        QCOMPARE(DocumentFrame::RecentItems(), QStringList{"mvdb://*/*/BP/HELLO"});
        QVERIFY(!modOpen::OpenRecent(2));
    }

    // File Open: the browser starts at the host context; each chosen item opens with the lock
    // or read-only state the browser took, asking about one locked by someone else.
    void openCommand_data() {
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<bool>("lockedByOther");
        QTest::newRow("read only") << true << false;
        QTest::newRow("locked by other, Yes") << false << true;
    }
    void openCommand() {
        QFETCH(bool, readOnly);
        QFETCH(bool, lockedByOther);
        std::unique_ptr<HostAccountFixture::LockHolderProcess> holder;
        if (lockedByOther) {
            holder = std::make_unique<HostAccountFixture::LockHolderProcess>(*account, bp("HELLO"));
            QVERIFY(holder->Holding());
            answers->Push(MsgBox::Yes);
        }
        state().Host = {u"mvdb"_s, u"*"_s, u"DEMO"_s, u"BP"_s};
        QString startFile;
        int suspendedWhileUp = -1;
        DocumentFrame::WhenBrowserShows([&](frmBrowse& browser) {
            startFile = browser.Model().File();
            suspendedWhileUp = modAutoRecover::Suspensions();
            browser.findChild<QCheckBox*>(u"chkReadOnly"_s)->setChecked(readOnly);
            browser.findChild<QLineEdit*>(u"txtName"_s)->setText(u"\"HELLO\" \"FORMAT.AMOUNT\""_s);
            browser.accept();
        });
        frame->OpenDocument();
        QCOMPARE(startFile, u"BP"_s);
        QCOMPARE(suspendedWhileUp, 1);
        QCOMPARE(answers->Seen.size(), lockedByOther ? 1 : 0);
        QCOMPARE(state().Documents->Count(), 2);
        for (const auto& d : state().Documents->Snapshot()) {
            const bool other = lockedByOther && d->ItemID() == "HELLO";
            QCOMPARE(d->ReadOnly(), readOnly || other);
            QCOMPARE(account->LockHolder("BP", d->ItemID()), other      ? holder->Pid()
                                                             : readOnly ? 0
                                                                        : qint64(::getpid()));
        }
        QCOMPARE(DocumentFrame::RecentItems(),
                 (QStringList{"mvdb://*/*/BP/FORMAT.AMOUNT", "mvdb://*/*/BP/HELLO"}));
    }

    // Files dropped on the frame: each opens, a missing one asks, a folder is refused.
    void droppedFiles() {
        const QString a = account->LocalFolder() + u"/drop a.txt"_s;
        FileTestSupport::WriteFile(a, "dropped\n");
        const QString missing = account->LocalFolder() + u"/gone.txt"_s;

        QMimeData files;
        files.setUrls({QUrl::fromLocalFile(a), QUrl::fromLocalFile(missing),
                       QUrl::fromLocalFile(account->LocalFolder())});
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction | Qt::MoveAction, &files,
                              Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(frame, &enter);
        QVERIFY(enter.isAccepted());

        BoxAnswers& boxes = *answers;
        boxes.Push(MsgBox::No);
        QDropEvent drop(QPointF(10, 10), Qt::CopyAction | Qt::MoveAction, &files, Qt::LeftButton,
                        Qt::NoModifier);
        QCoreApplication::sendEvent(frame, &drop);
        QVERIFY(drop.isAccepted());
        QTRY_COMPARE(boxes.Seen.size(), 2);
        QCOMPARE(state().Documents->Count(), 1);
        QCOMPARE(state().Documents->At(0)->DisplayName(), u"drop a.txt"_s);
        QCOMPARE(DocumentFrame::RecentItems(),
                 QStringList{mvConnection::Instance().MakeFilePath({}, {}, a)});
    }
};

BRIX_TEST_MAIN(tst_modOpen)
#include "tst_modOpen.moc"
