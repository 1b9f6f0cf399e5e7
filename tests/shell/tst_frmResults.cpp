#include "DocumentFrame.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"
#include "shell/frmResults.h"

#include <QClipboard>
#include <QTextEdit>

// The one results window of the process: what keeps its text, and copying it.
class tst_frmResults : public QObject {
    Q_OBJECT
    std::unique_ptr<DocumentFrame> frames;

    frmResults* window() const {
        return qobject_cast<frmResults*>(ProcessState::Instance().ResultsWindow.data());
    }

private Q_SLOTS:
    void initTestCase() {
        Settings().ResultsFontName = QStringLiteral("DejaVu Sans Mono");
        Settings().ResultsFontSize = QStringLiteral("13");
        frames = std::make_unique<DocumentFrame>();
        frames->Frame()->setGeometry(40, 40, 900, 600);
    }
    void cleanupTestCase() { frames.reset(); }

    // The first show is empty, with the stored font; an empty text keeps the last output.
    void firstShowAndLater() {
        frames->Frame()->ShowResults(QString());
        frmResults* results = window();
        QVERIFY(results && results->isVisible());
        QVERIFY(results->Results()->toPlainText().isEmpty());
        QCOMPARE(results->Results()->font().pointSize(), 13);

        frames->Frame()->ShowResults(QStringLiteral("Compiling BP MAIN\r\n2: bad"));
        frames->Frame()->ShowResults(QString());
        QCOMPARE(results->Results()->toPlainText(), QStringLiteral("Compiling BP MAIN\n2: bad"));
    }

    // Enter in the text and the close box hide; the text stays.
    void hidingKeepsTheWindow_data() {
        QTest::addColumn<QString>("how");
        QTest::newRow("enter") << "enter";
        QTest::newRow("close box") << "box";
    }
    void hidingKeepsTheWindow() {
        QFETCH(QString, how);
        frames->Frame()->ShowResults(QStringLiteral("kept"));
        frmResults* results = window();
        if (how == QLatin1String("enter"))
            QTest::keyClick(results->Results(), Qt::Key_Return);
        else
            results->close();
        QVERIFY(!results->isVisible());
        frames->Frame()->ShowResults(QString());
        QCOMPARE(window(), results);
        QCOMPARE(results->Results()->toPlainText(), QStringLiteral("kept"));
    }

    void copyAndSelection() {
        frames->Frame()->ShowResults(QStringLiteral("12: first\r\n13: second"));
        frmResults* results = window();
        results->SelectAll();
        results->CopyResults();
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("12: first\r\n13: second"));
    }
};

BRIX_TEST_MAIN(tst_frmResults)
#include "tst_frmResults.moc"
