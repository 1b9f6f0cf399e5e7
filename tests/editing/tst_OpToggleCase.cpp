#include "EditHarness.h"
#include "TestEnv.h"

#include "editing/OpToggleCase.h"
#include "language/SourceBuffer.h"

class tst_OpToggleCase : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void converts_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& text, const QString& expected) {
            QTest::newRow(name) << text << expected;
        };
        row("upper goes to lower, strings stay", "PRINT 'Hello'", "print 'Hello'");
        row("mixed goes to upper", "Print 'Hello'", "PRINT 'Hello'");
        row("unterminated quote skips only itself", "X = 'a\r\nFOO \"Bar\" baz",
            "x = 'a\r\nfoo \"Bar\" baz");
        row("the nearer quote wins", "x = \"Don't\" : y", "X = \"Don't\" : Y");
        row("proper case by word", "cust.rec<2> = f.customers2x", "Cust.Rec<2> = F.Customers2x");
        row("non-ASCII letters", QString::fromUtf8("ÉTÉ ß"), QString::fromUtf8("été ß"));
    }
    void converts() {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        bool changed = true;
        QCOMPARE(OpToggleCase::Convert(text, changed), expected);
        QCOMPARE(changed, text != expected);
    }

    // The selection comes back in its direction; undo gives the old text and selection, and
    // a run that changes nothing leaves nothing to take back.
    void togglesSelection_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QList<int>>("selection");
        QTest::addColumn<QString>("expected");
        for (const auto kind : {EditHarness::Editor, EditHarness::Memory}) {
            const char* name = EditHarness::Name(kind);
            QTest::addRow("backward over lines, %s", name)
                << int(kind) << QList<int>{3, 2, 2, 0} << "PRint 'A'\ngoto 10\nend = 5|3,2>2,0";
            QTest::addRow("forward in a line, %s", name)
                << int(kind) << QList<int>{0, 1, 4, 1} << "PRINT 'A'\ngoto 10\nend = 5|0,1>4,1";
            QTest::addRow("no selection, %s", name)
                << int(kind) << QList<int>{2, 2, 2, 2} << "PRINT 'A'\nGOTO 10\nend = 5|2,2>2,2";
        }
    }
    void togglesSelection() {
        QFETCH(int, kind);
        QFETCH(QList<int>, selection);
        QFETCH(QString, expected);
        EditHarness h(static_cast<EditHarness::Kind>(kind));
        h.SetText(QStringLiteral("PRINT 'A'\nGOTO 10\nend = 5"));
        h.Select(selection[0], selection[1], selection[2], selection[3]);
        const QString before = h.State();
        const auto run = [&] {
            auto op = std::make_unique<OpToggleCase>();
            op->Ctl = h.Control();
            h.Run(std::move(op));
        };
        run();
        QCOMPARE(h.State(), expected);
        h.Undo();
        QCOMPARE(h.State(), before);
        h.Redo();
        QCOMPARE(h.State(), expected);
    }
};

BRIX_TEST_MAIN(tst_OpToggleCase)
#include "tst_OpToggleCase.moc"
