#include "EditHarness.h"
#include "TestEnv.h"

#include "editing/OpIndentBlock.h"

namespace {

const QString kText = QStringLiteral("aaa\n   bbb\n  ccc\nddd\neee");

} // namespace

class tst_OpIndentBlock : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Each case: the selection (or caret) before, the direction, and the state after as
    // "text|anchor>caret". Undo gives back the text and the selection in its direction.
    void shifts_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("indent");
        QTest::addColumn<QList<int>>("selection");
        QTest::addColumn<QString>("after");
        const auto add = [](const char* name, bool indent, const QList<int>& selection,
                            const char* after) {
            for (const auto kind : {EditHarness::Editor, EditHarness::Memory})
                QTest::addRow("%s, %s", name, EditHarness::Name(kind))
                    << int(kind) << indent << selection << QString::fromLatin1(after);
        };
        add("ending at column 0 leaves that line out", true, {0, 1, 0, 4},
            "aaa\n      bbb\n     ccc\n   ddd\neee|0,1>0,4");
        add("columns move on the first and last line", true, {1, 0, 2, 2},
            "   aaa\n      bbb\n     ccc\nddd\neee|4,0>5,2");
        add("one-line selection moves its start only", true, {1, 3, 3, 3},
            "aaa\n   bbb\n  ccc\n   ddd\neee|4,3>3,3");
        add("left takes spaces only, at most a step", false, {0, 0, 2, 4},
            "aaa\nbbb\nccc\nddd\neee|0,0>2,4");
        add("left backward selection, columns not below 0", false, {1, 2, 5, 1},
            "aaa\nbbb\nccc\nddd\neee|0,2>2,1");
    }
    void shifts() {
        QFETCH(int, kind);
        QFETCH(bool, indent);
        QFETCH(QList<int>, selection);
        QFETCH(QString, after);
        EditHarness h(static_cast<EditHarness::Kind>(kind));
        h.SetText(kText);
        h.Select(selection[0], selection[1], selection[2], selection[3]);
        const QString before = h.State();
        auto op = std::make_unique<OpIndentBlock>();
        op->Indent = indent;
        op->Ctl = h.Control();
        h.Run(std::move(op));
        QCOMPARE(h.State(), after);
        h.CheckUndoRedo(before, after);
    }

    // A partial left shift is undone by what it took, not by a whole step, also after the
    // step has changed and with typing in between.
    void partialShiftsUndoWithTyping() {
        for (const auto kind : {EditHarness::Editor, EditHarness::Memory}) {
            EditHarness h(kind);
            h.SetText(QStringLiteral("  a\n b\nc\n     d"));
            QStringList states{h.Text()};
            const auto shift = [&](bool indent) {
                auto op = std::make_unique<OpIndentBlock>();
                op->Indent = indent;
                op->Ctl = h.Control();
                h.Run(std::move(op));
                states << h.Text();
            };
            h.Select(0, 0, 1, 3);
            shift(false);
            QCOMPARE(states.last(), QStringLiteral("a\nb\nc\n  d"));
            h.PlaceCaret(1, 2);
            h.Type(QStringLiteral("x"));
            states << h.Text();
            h.SetTabSize(2);
            h.Select(0, 0, 1, 3);
            shift(true);
            QCOMPARE(states.last(), QStringLiteral("  a\n  b\n  cx\n    d"));
            h.SetTabSize(5);
            for (qsizetype i = states.size() - 2; i >= 0; --i) {
                h.Undo();
                QCOMPARE(h.Text(), states[i]);
            }
            // A redo repeats the first run: its range and step, not the caret's or the step now.
            for (qsizetype i = 1; i < states.size(); ++i) {
                h.Redo();
                QCOMPARE(h.Text(), states[i]);
            }
        }
    }
};

BRIX_TEST_MAIN(tst_OpIndentBlock)
#include "tst_OpIndentBlock.moc"
