#include "DocumentSession.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/frmBrowse.h"
#include "documents/modOpen.h"
#include "documents/mvDocument.h"
#include "editing/frmGoto.h"
#include "language/LexClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "shell/CursorCommands.h"
#include "shell/frmMain.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

// Goto and open at the cursor on real documents of a demo account.
class tst_CursorCommands : public QObject {
    Q_OBJECT
    DocumentSession session;

    static frmGoto& dialog() { return frmGoto::Instance(); }
    static std::shared_ptr<mvDocument> open(const QString& text) {
        return DocumentSession::LabelledDocument(text);
    }

private Q_SLOTS:
    void initTestCase() { session.StartCase(); }
    void cleanupTestCase() {
        delete &dialog();
        session.EndCase();
    }
    void init() {
        session.StartTest();
        Settings().NoGotoDialog = false;
        ProcessState::Instance().ContextWord.clear();
    }
    void cleanup() { session.EndTest(true); }

    // Goto at the cursor: straight to the label only with the setting on, a word and no
    // forced dialog; an unknown label then ends quietly.
    void handleGoto_data() {
        QTest::addColumn<bool>("noDialog");
        QTest::addColumn<QString>("word");
        QTest::addColumn<bool>("force");
        QTest::addColumn<bool>("dialogShown");
        QTest::addColumn<int>("line");
        QTest::newRow("setting off") << false << "20" << false << true << 0;
        QTest::newRow("straight") << true << "20" << false << false << 1;
        QTest::newRow("forced") << true << "20" << true << true << 0;
        QTest::newRow("empty word") << true << "" << false << true << 0;
        QTest::newRow("unknown quietly") << true << "30" << false << false << 0;
    }
    void handleGoto() {
        QFETCH(bool, noDialog);
        QFETCH(QString, word);
        QFETCH(bool, force);
        QFETCH(bool, dialogShown);
        QFETCH(int, line);
        auto document = open(QStringLiteral("10 X = 1\n20 Y = 2"));
        document->Editor()->SetCursor(0, 0);
        Settings().NoGotoDialog = noDialog;
        dialog().chkNoGoDlg->setChecked(noDialog);
        ProcessState::Instance().ContextWord = word;
        bool shown = false;
        QTimer::singleShot(0, this, [&shown] {
            shown = dialog().isVisible();
            if (shown)
                QTest::mouseClick(dialog().cmdCancel, Qt::LeftButton);
        });
        CursorCommands::HandleGoto(document, force, session.Frame);
        QCoreApplication::processEvents();
        QCOMPARE(shown, dialogShown);
        QCOMPARE(document->Editor()->CursorLine(), line);
        QVERIFY(session.Answers->Seen.isEmpty());
        dialog().chkNoGoDlg->setChecked(false);
    }

    // A document of that file and item already open is activated, whatever the case.
    void openActivatesOpenDocument() {
        auto hello = modOpen::OpenPath(HostAccountFixture::ItemPath("BP", "HELLO"));
        auto other = open(QStringLiteral("X = 1"));
        ProcessState::Instance().ContextWord = QStringLiteral("  bp hello  ");
        CursorCommands::HandleOpen(other, session.Frame);
        QCOMPARE(session.Frame->ActiveDocument(), hello);
        QCOMPARE(ProcessState::Instance().Documents->Count(), 2);
    }

    // One field from a host document: its file; the browser comes up filled in, and what
    // it gives is opened and goes on the recent list.
    void openThroughBrowser() {
        auto hello = modOpen::OpenPath(HostAccountFixture::ItemPath("BP", "HELLO"));
        QVERIFY(hello);
        Settings().RecentList->Clear();
        ProcessState::Instance().ContextWord = QStringLiteral("FORMAT.AMOUNT");
        QString file, name;
        DocumentFrame::WhenBrowserShows([&](frmBrowse& browser) {
            file = browser.Model().File();
            name = browser.findChild<QLineEdit*>(QStringLiteral("txtName"))->text();
            if (name.isEmpty())
                browser.reject();
            else
                browser.accept();
        });
        CursorCommands::HandleOpen(hello, session.Frame);
        QCOMPARE(file + QLatin1Char(' ') + name, QStringLiteral("BP FORMAT.AMOUNT"));
        QCOMPARE(session.Frame->ActiveDocument()->ItemID(), QStringLiteral("FORMAT.AMOUNT"));
        QCOMPARE(DocumentFrame::RecentItems().size(), 1);
    }
};

BRIX_TEST_MAIN(tst_CursorCommands)
#include "tst_CursorCommands.moc"
