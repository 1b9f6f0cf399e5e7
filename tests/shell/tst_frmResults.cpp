#include "DocumentFrame.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"
#include "shell/frmResults.h"

#include <QClipboard>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>
#include <QTextEdit>

// The one results window of the process: where it first shows, what keeps its text, and
// its menu commands.
class tst_frmResults : public QObject {
    Q_OBJECT
    std::unique_ptr<DocumentFrame> frames;
    QTemporaryDir dir;

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

    // The first show is empty and in the frame's lower right corner, with the stored font;
    // later shows keep the place the user gave it, and an empty text keeps the last output.
    void firstShowAndLater() {
        frames->Frame()->ShowResults(QString());
        frmResults* results = window();
        QVERIFY(results && results->isVisible());
        QVERIFY(results->Results()->toPlainText().isEmpty());
        const QRect frame = frames->Frame()->frameGeometry();
        QCOMPARE(results->x() + results->frameGeometry().width(), frame.right() + 1 - 8);
        QCOMPARE(results->y() + results->frameGeometry().height(), frame.bottom() + 1 - 8);
        QCOMPARE(results->Results()->font().pointSize(), 13);

        results->move(10, 20);
        frames->Frame()->ShowResults(QStringLiteral("Compiling BP MAIN\r\n2: bad"));
        frames->Frame()->ShowResults(QString());
        QCOMPARE(results->pos(), QPoint(10, 20));
        QCOMPARE(results->Results()->toPlainText(), QStringLiteral("Compiling BP MAIN\n2: bad"));
    }

    // Enter in the text, the Close command and the close box all hide; the text stays.
    void hidingKeepsTheWindow_data() {
        QTest::addColumn<QString>("how");
        QTest::newRow("enter") << "enter";
        QTest::newRow("close command") << "command";
        QTest::newRow("close box") << "box";
    }
    void hidingKeepsTheWindow() {
        QFETCH(QString, how);
        frames->Frame()->ShowResults(QStringLiteral("kept"));
        frmResults* results = window();
        if (how == QLatin1String("enter"))
            QTest::keyClick(results->Results(), Qt::Key_Return);
        else if (how == QLatin1String("box"))
            results->close();
        else
            for (QAction* action : results->menuBar()->actions()[0]->menu()->actions())
                if (action->text() == QLatin1String("&Close"))
                    action->trigger();
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

    void printsToPdf() {
        frames->Frame()->ShowResults(QStringLiteral("Compiling BP MAIN\r\n2: bad"));
        QPrinter printer;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath(QStringLiteral("results.pdf")));
        window()->PrintTo(printer);
        QFile pdf(printer.outputFileName());
        QVERIFY(pdf.open(QIODevice::ReadOnly) && pdf.read(5) == "%PDF-");
    }
};

BRIX_TEST_MAIN(tst_frmResults)
#include "tst_frmResults.moc"
