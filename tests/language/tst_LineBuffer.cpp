#include "TestEnv.h"

#include "language/LexClass.h"
#include "language/LineBuffer.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"

#include <QRandomGenerator>

namespace {

QString lines(const SourceBuffer& b) {
    QStringList out;
    for (int i = 0; i < b.NumLines(); ++i)
        out << b.GetLine(i);
    return out.join(QLatin1Char('\n'));
}

} // namespace

class tst_LineBuffer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The same random edits, with every kind of line end and positions past the ends, give
    // the same lines in memory as in the editor.
    void editsMatchTheEditor_data() {
        QTest::addColumn<quint32>("run");
        for (quint32 run : {1u, 42u})
            QTest::addRow("run %u", run) << run;
    }
    void editsMatchTheEditor() {
        QFETCH(quint32, run);
        QRandomGenerator random(run);
        SourceView view;
        ScintillaBuffer& editor = view.Buffer();
        LineBuffer memory;
        const QString start = QStringLiteral("first line\r\nsecond\n\nfourth \x1d mark\rlast");
        editor.SetAllText(start);
        memory.SetAllText(start);
        const QStringList pieces{QStringLiteral("x"),        QStringLiteral("\r\n"),
                                 QStringLiteral("\n"),       QStringLiteral("\r"),
                                 QStringLiteral("ab\r\ncd"), QStringLiteral("\xe9t\xe9"),
                                 QStringLiteral("  ")};
        for (int step = 0; step < 150; ++step) {
            const int count = memory.NumLines();
            const bool insert = random.bounded(2) == 0;
            const int startLine = static_cast<int>(random.bounded(count + 1));
            const int startColumn = static_cast<int>(random.bounded(14));
            // Deletes mostly within a line.
            const int endLine = !insert && random.bounded(2) == 0
                                    ? startLine
                                    : static_cast<int>(random.bounded(count + 1));
            const int endColumn = static_cast<int>(random.bounded(14));
            const QString text = pieces[random.bounded(pieces.size())];
            for (SourceBuffer* b : std::initializer_list<SourceBuffer*>{&editor, &memory}) {
                int c = 0, l = 0;
                if (insert)
                    b->InsertText(startColumn, startLine, text, 0, c, l);
                else
                    b->DeleteText(startColumn, startLine, endColumn, endLine);
            }
            QCOMPARE(lines(memory), lines(editor));
        }
    }

    // Flags come from the lexer and move with their line when lines are made above it.
    void lineDataMovesWithItsLine() {
        LineBuffer b;
        auto lex = std::make_shared<LexClass>();
        b.SetLex(lex);
        b.SetAllText(QStringLiteral("X = 1\n10 * NOTE\nFOR I = 1 TO 2"));
        int last = 2;
        b.UpdateLines(0, last, last);
        QCOMPARE(b.GetLineData(1, 1), LexClass::FlagComment | LexClass::FlagLabel);
        int c = 0, l = 0;
        b.InsertText(5, 0, QStringLiteral("\nY = 2\r\nZ = 3"), 0, c, l);
        QCOMPARE(QList<int>({c, l}), QList<int>({5, 2}));
        QCOMPARE(b.GetLineData(3, 1), LexClass::FlagComment | LexClass::FlagLabel);
        QCOMPARE(b.GetLineData(4, 1), 1);
        // Joining lines keeps the first line's word, as the editor does.
        b.DeleteText(0, 1, 0, 3);
        QCOMPARE(b.GetLineData(1, 1), 0);
        QCOMPARE(b.GetLineData(2, 1), 1);
    }
};

BRIX_TEST_MAIN(tst_LineBuffer)
#include "tst_LineBuffer.moc"
