#include "BoxAnswers.h"
#include "HostAccountFixture.h"
#include "TestEnv.h"

#include "documents/ConnectionProfiles.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "language/LineMessageMarks.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"

#include <QFile>
#include <QHelpEvent>
#include <QToolTip>

// The compiler's errors marked in the editor's margin: on the demo account, with the
// structure checker standing in for the compiler, UNFINISHED gets its two planted errors.
class tst_LineMessageMarks : public QObject {
    Q_OBJECT
    std::unique_ptr<HostAccountFixture> account;
    std::shared_ptr<mvDocument> document;

    LineMessageMarks& marks() const { return document->Editor()->MessageMarks(); }
    QList<int> markedLines() const {
        const std::vector<int32_t> lines = marks().Lines();
        return QList<int>(lines.begin(), lines.end());
    }

private Q_SLOTS:
    void init() {
        account = std::make_unique<HostAccountFixture>();
        const QString checker = ConnectionProfiles::StructureChecker();
        QVERIFY2(!checker.isEmpty(), "brix-check is not built");
        QFile profiles(account->ProfilesFile());
        QVERIFY(profiles.open(QIODevice::Append));
        profiles.write("Command=" + checker.toUtf8() + " --tcl\nAllowCommands=yes\n");
        profiles.close();
        mvConnection::Instance().LoadProfiles(account->ProfilesFile());
        document = mvDocument::Create();
        QVERIFY(document->FileOpen(
            HostAccountFixture::ItemPath(QStringLiteral("BP"), QStringLiteral("UNFINISHED")),
            false));
        document->Compile();
        QCOMPARE(markedLines(), (QList<int>{6, 8}));
    }
    void cleanup() {
        if (document)
            document->FileClose(false);
        document.reset();
        account.reset();
    }

    // The message shows where the pointer rests on the mark.
    void messageAsToolTip() {
        SourceView* view = document->Editor();
        view->resize(600, 400);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view));
        const int height = static_cast<int>(view->SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT));
        const int x = view->marginWidth(LineMessageMarks::MarginIndex) / 2;
        const QPoint at(x, 6 * height + height / 2);
        QHelpEvent help(QEvent::ToolTip, at, view->viewport()->mapToGlobal(at));
        QCoreApplication::sendEvent(view->viewport(), &help);
        QCOMPARE(QToolTip::text(), QStringLiteral("LOOP is never closed by REPEAT"));
        QToolTip::hideText();
    }

    // Typing on a marked line, or an operation on it, takes its mark; marks move with the
    // lines pushed down.
    void editsMoveOrDropMarks_data() {
        QTest::addColumn<int>("line");
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("selectToLine");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QList<int>>("marked");
        QTest::newRow("typing on a marked line") << 6 << 3 << -1 << "x" << QList<int>{8};
        QTest::newRow("new line at a marked line's start") << 6 << 0 << -1 << "\n"
                                                           << QList<int>{7, 9};
        QTest::newRow("new line at a marked line's end") << 6 << 99 << -1 << "\n"
                                                         << QList<int>{6, 9};
        QTest::newRow("a marked line deleted whole") << 6 << 0 << 7 << "\x7f" << QList<int>{7};
        QTest::newRow("an operation rewrites a marked line")
            << 8 << 0 << -1 << "\t" << QList<int>{6};
    }
    void editsMoveOrDropMarks() {
        QFETCH(int, line);
        QFETCH(int, column);
        QFETCH(int, selectToLine);
        QFETCH(QString, keys);
        QFETCH(QList<int>, marked);
        SourceView* view = document->Editor();
        column = std::min(column, view->Buffer().GetLineLength(line));
        if (selectToLine >= 0)
            view->SetSelection(column, line, 0, selectToLine);
        else
            view->SetCursor(column, line);
        if (keys == QLatin1String("\t"))
            document->IndentBlock(true);
        else
            QTest::keyClick(view, keys == QLatin1String("\n")     ? Qt::Key_Return
                                  : keys == QLatin1String("\x7f") ? Qt::Key_Delete
                                                                  : Qt::Key_X);
        QCOMPARE(markedLines(), marked);
    }

    // The next compile's output alone counts: a clean program leaves no mark and no margin.
    void nextCompileReplacesMarks() {
        BoxAnswers answers;
        account->WriteItem(QStringLiteral("BP"), QStringLiteral("UNFINISHED"), "CRT 1\nEND\n");
        document->Compile();
        QVERIFY(markedLines().isEmpty());
        QCOMPARE(document->Editor()->marginWidth(LineMessageMarks::MarginIndex), 0);
    }
};

BRIX_TEST_MAIN(tst_LineMessageMarks)
#include "tst_LineMessageMarks.moc"
