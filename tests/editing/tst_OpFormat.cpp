#include "EditHarness.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/clsDocView.h"
#include "documents/mvDocument.h"
#include "editing/OpFormat.h"
#include "language/ScintillaBuffer.h"
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
    void formats_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QList<int>>("options"); // tab size, margin, star, bang
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("expected");
        const QList<int> plain{3, 0, 1, 0};
        const auto add = [](const char* name, const QList<int>& options, const QString& input,
                            const QString& expected) {
            for (const auto kind : kKinds)
                QTest::addRow("%s, %s", name, EditHarness::Name(kind))
                    << int(kind) << options << input << expected;
        };
        add("blocks", plain,
            lines({"FOR I = 1 TO 10", "IF A THEN", "X = 1", "END ELSE", "X = 2", "END", "LOOP",
                   "READNEXT ID ELSE EXIT", "WHILE ID # ''", "PRINT ID", "REPEAT", "BEGIN CASE",
                   "CASE X = 1", "Y = 1", "CASE 1", "Y = 2", "END CASE", "NEXT I"}),
            lines({"FOR I = 1 TO 10", "   IF A THEN", "      X = 1", "   END ELSE", "      X = 2",
                   "   END", "   LOOP", "      READNEXT ID ELSE EXIT", "   WHILE ID # ''",
                   "      PRINT ID", "   REPEAT", "   BEGIN CASE", "      CASE X = 1",
                   "         Y = 1", "      CASE 1", "         Y = 2", "   END CASE", "NEXT I"}));
        add("labels against the margin", {3, 6, 1, 0},
            lines({"FOR I = 1 TO 2", "FOR J = 1 TO 2", "X = 1", "  100: X = 2",
                   "LABEL.WITH.20.CHARS: X = 3", "  100:   ", "10 Y = 1", "NEXT J", "NEXT I"}),
            lines({"      FOR I = 1 TO 2", "         FOR J = 1 TO 2", "            X = 1",
                   "100:        X = 2", "LABEL.WITH.20.CHARS: X = 3", "100:", "10          Y = 1",
                   "         NEXT J", "      NEXT I"}));
        add("star indented, bang at the margin", {3, 6, 1, 0},
            lines({"FOR I = 1 TO 2", "* star", "   ! bang", "10 * labelled", "NEXT I"}),
            lines({"      FOR I = 1 TO 2", "         * star", "      ! bang", "10       * labelled",
                   "      NEXT I"}));
        add("star at the margin, bang in column 1", {3, 6, 0, 2},
            lines({"FOR I = 1 TO 2", "* star", "   ! bang", "10 * labelled", "NEXT I"}),
            lines({"      FOR I = 1 TO 2", "      * star", "! bang", "10    * labelled",
                   "      NEXT I"}));
        add("star in column 1, bang indented", {3, 6, 2, 1},
            lines({"FOR I = 1 TO 2", "   * star", "! bang", "10 * labelled", "NEXT I"}),
            lines({"      FOR I = 1 TO 2", "* star", "         ! bang", "10 * labelled",
                   "      NEXT I"}));
        add("a zero step keeps every line at the margin", {0, 2, 1, 1},
            lines({"FOR I = 1 TO 2", "X = 1", "NEXT I"}),
            lines({"  FOR I = 1 TO 2", "  X = 1", "  NEXT I"}));
    }
    void formats() {
        QFETCH(int, kind);
        QFETCH(QList<int>, options);
        QFETCH(QString, input);
        QFETCH(QString, expected);
        EditHarness h(static_cast<EditHarness::Kind>(kind));
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
            QTest::addRow("backward selection, %s", name) << int(kind) << QList<int>{5, 3, 1, 0};
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
        h.CheckUndoRedo(before, after);
    }

    // The document's Format scans first the lines far below the window, never coloured.
    void documentFormatSeesUnscannedLines() {
        Settings().TabSize = 2;
        Settings().Margin = 0;
        auto doc = mvDocument::Create();
        QVERIFY(doc->FileNew());
        QVERIFY(QTest::qWaitForWindowExposed(doc->View()->Widget()));
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
        doc->FileClose(false);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

BRIX_TEST_MAIN(tst_OpFormat)
#include "tst_OpFormat.moc"
