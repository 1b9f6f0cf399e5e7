#include "TestEnv.h"

#include "language/ISourceOp.h"
#include "language/LexClass.h"
#include "language/LineBuffer.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceControl.h"
#include "language/SourceView.h"

#include <QRandomGenerator>

namespace {

// An edit that can be applied to any buffer.
struct Edit {
    bool Insert;
    int StartColumn, StartLine, EndColumn, EndLine;
    QString Text;
    void ApplyTo(SourceBuffer& b) const {
        int endColumn = 0, endLine = 0;
        if (Insert)
            b.InsertText(StartColumn, StartLine, Text, 0, endColumn, endLine);
        else
            b.DeleteText(StartColumn, StartLine, EndColumn, EndLine);
    }
};

QString lines(const SourceBuffer& b) {
    QStringList out;
    for (int i = 0; i < b.NumLines(); ++i)
        out << b.GetLine(i);
    return out.join(QLatin1Char('\n'));
}

// Appends "!" to one line inside an operation, and takes it away again.
class OpMark final : public ISourceOp {
public:
    explicit OpMark(int line) : line_(line) {}
    void ISourceOp_DoOp(SourceBuffer& b) override {
        int c = 0, l = 0;
        b.InsertText(b.GetLineLength(line_), line_, QStringLiteral("!"), 0, c, l);
    }
    void ISourceOp_UndoOp(SourceBuffer& b) override {
        const int end = b.GetLineLength(line_);
        b.DeleteText(end - 1, line_, end, line_);
    }

private:
    int line_;
};

} // namespace

class tst_LineBuffer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The same random edits, with every kind of line end and positions past the ends, give
    // the same lines in memory as in the editor; undo walks both back to the start.
    void editsMatchTheEditor_data() {
        QTest::addColumn<quint32>("run");
        for (quint32 run : {1u, 7u, 42u, 1234u})
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
        QCOMPARE(lines(memory), lines(editor));
        const QStringList pieces{QStringLiteral("x"),        QStringLiteral("\r\n"),
                                 QStringLiteral("\n"),       QStringLiteral("\r"),
                                 QStringLiteral("ab\r\ncd"), QStringLiteral("\xe9t\xe9"),
                                 QStringLiteral("  ")};
        std::vector<QString> history{lines(memory)};
        for (int step = 0; step < 150; ++step) {
            const int count = memory.NumLines();
            Edit edit{};
            edit.Insert = random.bounded(2) == 0;
            edit.StartLine = static_cast<int>(random.bounded(count + 1));
            edit.StartColumn = static_cast<int>(random.bounded(14));
            edit.EndLine = static_cast<int>(random.bounded(count + 1));
            edit.EndColumn = static_cast<int>(random.bounded(14));
            edit.Text = pieces[random.bounded(pieces.size())];
            if (!edit.Insert && random.bounded(2) == 0)
                edit.EndLine = edit.StartLine; // mostly short deletes within a line
            const QString was = lines(memory);
            edit.ApplyTo(editor);
            edit.ApplyTo(memory);
            QVERIFY2(
                lines(memory) == lines(editor),
                qPrintable(QStringLiteral("%1 %2,%3 %4,%5 [%6] on [%7]: [%8] vs [%9]")
                               .arg(edit.Insert ? "insert" : "delete")
                               .arg(edit.StartColumn)
                               .arg(edit.StartLine)
                               .arg(edit.EndColumn)
                               .arg(edit.EndLine)
                               .arg(edit.Text.toHtmlEscaped(), was, lines(memory), lines(editor))));
            if (lines(memory) != history.back())
                history.push_back(lines(memory));
            for (int line = 0; line < memory.NumLines(); ++line)
                QCOMPARE(memory.GetLineLength(line), editor.GetLineLength(line));
        }
        while (memory.CanUndo())
            memory.Undo();
        QCOMPARE(lines(memory), history.front());
        for (size_t i = 1; i < history.size(); ++i)
            memory.Redo();
        QCOMPARE(lines(memory), history.back());
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
        QCOMPARE(b.GetLineData(2, 1), 1);
        int c = 0, l = 0;
        b.InsertText(5, 0, QStringLiteral("\nY = 2\r\nZ = 3"), 0, c, l);
        QCOMPARE(QList<int>({c, l}), QList<int>({5, 2}));
        QCOMPARE(b.GetLineData(3, 1), LexClass::FlagComment | LexClass::FlagLabel);
        QCOMPARE(b.GetLineData(4, 1), 1);
        // Joining lines keeps the first line's word, as the editor does.
        b.DeleteText(0, 1, 0, 3);
        QCOMPARE(b.GetLine(1), QStringLiteral("10 * NOTE"));
        QCOMPARE(b.GetLineData(1, 1), 0);
        QCOMPARE(b.GetLineData(2, 1), 1);
    }

    // Operations and plain edits share one history; the saved state is found again.
    void modifiedFollowsTheSavePoint() {
        LineBuffer b;
        b.SetAllText(QStringLiteral("a\nb"));
        QVERIFY(!b.Modified());
        b.ExecuteOp(std::make_unique<OpMark>(0));
        int c = 0, l = 0;
        b.InsertText(0, 1, QStringLiteral(">"), 0, c, l);
        QCOMPARE(b.AllText(), QStringLiteral("a!\n>b"));
        QVERIFY(b.Modified());
        b.SetModified(false);
        b.Undo();
        QVERIFY(b.Modified());
        QCOMPARE(b.AllText(), QStringLiteral("a!\nb"));
        b.Redo();
        QVERIFY(!b.Modified());
        b.Undo();
        b.Undo();
        QCOMPARE(b.AllText(), QStringLiteral("a\nb"));
        // A new edit cuts off the saved state: it can't be reached again.
        b.ExecuteOp(std::make_unique<OpMark>(1));
        QVERIFY(!b.CanRedo());
        QVERIFY(b.Modified());
        b.ClearUndoStack();
        QVERIFY(b.Modified());
        QVERIFY(!b.CanUndo());
    }

    // The caret of the memory buffer stays inside the text, as an editor's does.
    void controlClampsToTheText() {
        LineBuffer b;
        b.SetAllText(QStringLiteral("abc\nde"));
        auto ctl = b.Control();
        ctl->SetSelection(10, 0, 1, 9);
        int a = 0, bl = 0, e = 0, el = 0;
        ctl->GetSelection(a, bl, e, el);
        QCOMPARE(QList<int>({a, bl, e, el}), QList<int>({3, 0, 2, 1}));
        QVERIFY(ctl->HasSelection());
        b.RefreshLines(70, 0, 1, 1, 1);
        QVERIFY(!ctl->HasSelection());
        QCOMPARE(ctl->CursorCol(), 1);
    }
};

BRIX_TEST_MAIN(tst_LineBuffer)
#include "tst_LineBuffer.moc"
