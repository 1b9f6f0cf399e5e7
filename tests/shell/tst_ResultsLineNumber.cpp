#include "TestEnv.h"

#include "shell/ResultsLineNumber.h"

// Which line a double-click on the compiler's output points at.
class tst_ResultsLineNumber : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void find_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("start");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<int>("line");
        const QString syntax = QStringLiteral("Line 12 syntax error");
        const auto row = [](const char* name, const QString& text, int start, const char* selected,
                            int line) { QTest::newRow(name) << text << start << selected << line; };
        row("last word: back to the left", syntax, int(syntax.indexOf(QLatin1String("error"))),
            "error", 12);
        row("first digits to the right", "[B100] 12", 0, "", 100);
        row("selection wins", "Line 12 near 7", 5, "12", 12);
        row("forward stops at the line end", "no number\n5: next line", 0, "no", 0);
        row("backward stops at the line end", "3: first\nsecond line", 9, "second", 0);
        row("nothing", "no errors", 3, "errors", 0);
        row("too large a number", "99999999999 x", 12, "x", 0);
    }
    void find() {
        QFETCH(QString, text);
        QFETCH(int, start);
        QFETCH(QString, selected);
        QFETCH(int, line);
        QCOMPARE(ResultsLineNumber::Find(text, start, selected), line);
    }
};

BRIX_TEST_MAIN(tst_ResultsLineNumber)
#include "tst_ResultsLineNumber.moc"
