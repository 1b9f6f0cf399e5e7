#include "EditHarness.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/clsDocView.h"
#include "documents/mvDocument.h"
#include "editing/OpFormat.h"
#include "language/LexClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceBuffer.h"
#include "language/SourceControl.h"
#include "settings/Moriox.h"

namespace {

QString lines(std::initializer_list<const char*> list) {
    QStringList out;
    for (const char* line : list)
        out << QString::fromUtf8(line);
    return out.join(QLatin1Char('\n'));
}

const EditHarness::Kind kKinds[] = {EditHarness::Editor, EditHarness::Memory};

} // namespace

class tst_OpFormat : public QObject {
    Q_OBJECT
    Moriox settings;

    std::unique_ptr<OpFormat> op(EditHarness& h) {
        auto format = std::make_unique<OpFormat>();
        format->Ctl = h.Control();
        format->Options = &settings;
        return format;
    }

private Q_SLOTS:
    void levelChange_data() {
        QTest::addColumn<int>("flags");
        QTest::addColumn<int>("before");
        QTest::addColumn<int>("after");
        QTest::newRow("FOR") << 1 << 0 << 1;
        QTest::newRow("FOR and NEXT") << (1 | 2) << 0 << 0;
        QTest::newRow("FOR WHILE") << (1 | 8) << 0 << 1;
        QTest::newRow("END ELSE") << (64 | 256) << 1 << 1;
        QTest::newRow("END CASE") << (32 | 64) << 2 << 0;
        QTest::newRow("BEGIN CASE") << (16 | 32) << 0 << 2;
        QTest::newRow("CASE") << 32 << 1 << 1;
        QTest::newRow("LOOP REPEAT") << (4 | 1024) << 0 << 0;
        QTest::newRow("UNTIL") << 8 << 1 << 1;
        QTest::newRow("END then user opener") << (64 | 2048) << 1 << 1;
        QTest::newRow("NEXT then user middle") << (2 | 8192) << 1 << 1;
        QTest::newRow("BEGIN alone") << 16 << 0 << 0;
        QTest::newRow("comment and label only") << 0x30000 << 0 << 0;
    }
    void levelChange() {
        QFETCH(int, flags);
        QFETCH(int, before);
        QFETCH(int, after);
        int32_t b = -1, a = -1;
        OpFormat::LevelChange(flags, b, a);
        QCOMPARE(b, before);
        QCOMPARE(a, after);
    }

    void formats_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QList<int>>("options"); // tab size, margin, star, bang
        QTest::addColumn<QString>("userWords");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("expected");
        const QList<int> plain{3, 0, 1, 0};
        const auto add = [](const char* name, const QList<int>& options, const char* userWords,
                            const QString& input, const QString& expected) {
            for (const auto kind : kKinds)
                QTest::addRow("%s, %s", name, EditHarness::Name(kind))
                    << int(kind) << options << QString::fromUtf8(userWords) << input << expected;
        };
        add("blocks", plain, "",
            lines({"FOR I = 1 TO 10", "IF A THEN", "X = 1", "END ELSE", "X = 2", "END", "LOOP",
                   "READNEXT ID ELSE EXIT", "WHILE ID # ''", "PRINT ID", "REPEAT", "BEGIN CASE",
                   "CASE X = 1", "Y = 1", "CASE 1", "Y = 2", "END CASE", "NEXT I"}),
            lines({"FOR I = 1 TO 10", "   IF A THEN", "      X = 1", "   END ELSE", "      X = 2",
                   "   END", "   LOOP", "      READNEXT ID ELSE EXIT", "   WHILE ID # ''",
                   "      PRINT ID", "   REPEAT", "   BEGIN CASE", "      CASE X = 1",
                   "         Y = 1", "      CASE 1", "         Y = 2", "   END CASE", "NEXT I"}));
        add("unbalanced closers stay at level 0", plain, "",
            lines({"   NEXT I", "  END", " X = 1"}), lines({"NEXT I", "END", "X = 1"}));
        add("blank lines and trailing spaces", plain, "",
            lines({"FOR I=1 TO 2", "", "     ", "X=1  ", "NEXT I   "}),
            lines({"FOR I=1 TO 2", "", "", "   X=1", "NEXT I"}));
        add("labels against the margin", {3, 6, 1, 0}, "",
            lines({"FOR I = 1 TO 2", "FOR J = 1 TO 2", "X = 1", "  100: X = 2",
                   "LABEL.WITH.20.CHARS: X = 3", "  100:   ", "10 Y = 1", "NEXT J", "NEXT I"}),
            lines({"      FOR I = 1 TO 2", "         FOR J = 1 TO 2", "            X = 1",
                   "100:        X = 2", "LABEL.WITH.20.CHARS: X = 3", "100:", "10          Y = 1",
                   "         NEXT J", "      NEXT I"}));
        add("star indented, bang at the margin", {3, 6, 1, 0}, "",
            lines({"FOR I = 1 TO 2", "* star", "   ! bang", "10 * labelled", "NEXT I"}),
            lines({"      FOR I = 1 TO 2", "         * star", "      ! bang", "10       * labelled",
                   "      NEXT I"}));
        add("star at the margin, bang in column 1", {3, 6, 0, 2}, "",
            lines({"FOR I = 1 TO 2", "* star", "   ! bang", "10 * labelled", "NEXT I"}),
            lines({"      FOR I = 1 TO 2", "      * star", "! bang", "10    * labelled",
                   "      NEXT I"}));
        add("star in column 1, bang indented", {3, 6, 2, 1}, "",
            lines({"FOR I = 1 TO 2", "   * star", "! bang", "10 * labelled", "NEXT I"}),
            lines({"      FOR I = 1 TO 2", "* star", "         ! bang", "10 * labelled",
                   "      NEXT I"}));
        add("THEN opens only as the last word", plain, "",
            lines({"IF X THEN Y = 1", "IF X THEN", "Y = 1", "END", "IF X THEN ;* note", "Y = 2",
                   "END", "READU R FROM F, K LOCKED", "Z = 1", "END"}),
            lines({"IF X THEN Y = 1", "IF X THEN", "   Y = 1", "END", "IF X THEN ;* note",
                   "   Y = 2", "END", "READU R FROM F, K LOCKED", "   Z = 1", "END"}));
        add("FOR with its tail or its NEXT on one line", plain, "",
            lines({"FOR I = 1 TO 9 WHILE X", "Y = 1", "NEXT I", "FOR I = 1 TO 3 ; X = I ; NEXT I",
                   "Y = 2"}),
            lines({"FOR I = 1 TO 9 WHILE X", "   Y = 1", "NEXT I",
                   "FOR I = 1 TO 3 ; X = I ; NEXT I", "Y = 2"}));
        add("a tab is text", plain, "",
            lines({"FOR I = 1 TO 2", "\tX = 1", "  \t Y = 2", "NEXT I"}),
            lines({"FOR I = 1 TO 2", "   \tX = 1", "   \t Y = 2", "NEXT I"}));
        add("marks stay in strings and comments", plain, "",
            lines({"LOOP",
                   "X = \"A\x1d"
                   "B\x1c"
                   "C\"   ",
                   "  * note \x1d here", "REPEAT"}),
            lines({"LOOP",
                   "   X = \"A\x1d"
                   "B\x1c"
                   "C\"",
                   "   * note \x1d here", "REPEAT"}));
        add("user block words", plain, "OPEN.BLOCK+ CLOSE.BLOCK- MIDDLE= STARTS[ ENDS]",
            lines({"OPEN.BLOCK", "X = 1", "MIDDLE", "X = 2", "CLOSE.BLOCK", "STARTS X", "Y = 1",
                   "CLOSE.BLOCK", "X = STARTS", "Z = 1", "A ENDS", "B = 1", "CLOSE.BLOCK",
                   "A ENDS B", "C = 1"}),
            lines({"OPEN.BLOCK", "   X = 1", "MIDDLE", "   X = 2", "CLOSE.BLOCK", "STARTS X",
                   "   Y = 1", "CLOSE.BLOCK", "X = STARTS", "Z = 1", "A ENDS", "   B = 1",
                   "CLOSE.BLOCK", "A ENDS B", "C = 1"}));
        add("a zero step keeps every line at the margin", {0, 2, 1, 1}, "",
            lines({"FOR I = 1 TO 2", "X = 1", "NEXT I"}),
            lines({"  FOR I = 1 TO 2", "  X = 1", "  NEXT I"}));
    }
    void formats() {
        QFETCH(int, kind);
        QFETCH(QList<int>, options);
        QFETCH(QString, userWords);
        QFETCH(QString, input);
        QFETCH(QString, expected);
        EditHarness h(static_cast<EditHarness::Kind>(kind));
        h.Lex()->Keywords->SetKeywordList(4, QStringLiteral(" "), userWords);
        settings.TabSize = static_cast<int16_t>(options[0]);
        settings.Margin = static_cast<int16_t>(options[1]);
        settings.IndentStar = static_cast<int16_t>(options[2]);
        settings.IndentBang = static_cast<int16_t>(options[3]);
        h.SetText(input);
        h.Format(op(h));
        QCOMPARE(h.Text(), expected);
        // A second run finds nothing to do.
        h.Format(op(h));
        QCOMPARE(h.Text(), expected);
        h.Undo();
        h.Undo();
        QCOMPARE(h.Text(), input);
    }

    // Undo gives back the text, the caret and the selection in its direction, also where
    // the run had to pull the caret back to a shorter line; redo gives the same result.
    void undoRedoGiveBackEverything_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QList<int>>("selection");
        for (const auto kind : kKinds) {
            const char* name = EditHarness::Name(kind);
            QTest::addRow("caret past the new line end, %s", name)
                << int(kind) << QList<int>{14, 1, 14, 1};
            QTest::addRow("caret in the indentation, %s", name)
                << int(kind) << QList<int>{2, 3, 2, 3};
            QTest::addRow("backward selection, %s", name) << int(kind) << QList<int>{5, 3, 1, 0};
            QTest::addRow("forward selection, %s", name) << int(kind) << QList<int>{0, 1, 4, 2};
        }
    }
    void undoRedoGiveBackEverything() {
        QFETCH(int, kind);
        QFETCH(QList<int>, selection);
        EditHarness h(static_cast<EditHarness::Kind>(kind));
        settings.TabSize = 3;
        settings.Margin = 0;
        h.SetText(lines({"IF X THEN", "Y = 1         ", "  END   ", "      Z = 2"}));
        h.Select(selection[0], selection[1], selection[2], selection[3]);
        const QString before = h.State();
        h.Format(op(h));
        const QString after = h.State();
        QVERIFY(after.startsWith(lines({"IF X THEN", "   Y = 1", "END", "Z = 2|"})));
        int32_t column = h.Control()->CursorCol();
        QVERIFY(column <= h.Buffer().GetLineLength(h.Control()->CursorLine()));
        h.CheckUndoRedo(before, after);
    }

    // The document's Format scans every line first: lines far below the window were never
    // coloured, so they had no flags yet.
    void documentFormatSeesUnscannedLines() {
        Settings().TabSize = 2;
        Settings().Margin = 0;
        auto doc = mvDocument::Create();
        QVERIFY(doc->FileNew());
        QWidget* window = doc->View()->Widget();
        window->resize(640, 400);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QStringList program;
        for (int i = 0; i < 3000; ++i)
            program << QStringLiteral("LOOP") << QStringLiteral("X = %1").arg(i)
                    << QStringLiteral("REPEAT");
        doc->SetText(program.join(QStringLiteral("\r\n")));
        QCoreApplication::processEvents();
        ScintillaBuffer& buffer = *doc->Buffer();
        QCOMPARE(buffer.GetLineData(8999, 1), 0);
        doc->Format();
        QCOMPARE(buffer.GetLine(8998), QStringLiteral("  X = 2999"));
        buffer.Undo();
        QCOMPARE(buffer.GetLine(8998), QStringLiteral("X = 2999"));
        doc->FileClose(false);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

BRIX_TEST_MAIN(tst_OpFormat)
#include "tst_OpFormat.moc"
