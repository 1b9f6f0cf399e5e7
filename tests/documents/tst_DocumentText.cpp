#include "FileTestSupport.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/clsDocView.h"
#include "documents/mvDocument.h"
#include "language/LexClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "support/BrixError.h"

// Host text against editor text, and the document's text members used from outside.
class tst_DocumentText : public QObject {
    Q_OBJECT
    std::shared_ptr<mvDocument> doc;

    SourceView& editor() { return *doc->Editor(); }
    ScintillaBuffer& buffer() { return *doc->Buffer(); }
    static QString vmHost() { return QString(QChar(0xF8FD)); }
    static QString smHost() { return QString(QChar(0xF8FC)); }

    // Lines flagged as holding a label; the document's own scanner is switched off so
    // that the flags stay as set here.
    void setFlaggedText(const QStringList& lines, const QList<int>& flagged) {
        doc->SetText(lines.join(QStringLiteral("\r\n")));
        buffer().SetLex(nullptr);
        for (int line = 0; line < lines.size(); ++line)
            buffer().SetLineData(line, 1, flagged.contains(line) ? LexClass::FlagLabel | 0x1 : 0x1);
    }

private Q_SLOTS:
    void init() {
        Settings().TabSize = 3;
        doc = mvDocument::Create();
        QVERIFY(doc->FileNew());
        QWidget* window = doc->View()->Widget();
        window->resize(640, 400);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
    }
    void cleanup() {
        doc->FileClose(false);
        doc.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void hostToEditor_data() {
        QTest::addColumn<int>("tabSize");
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("editor");
        QTest::newRow("marks, line ends untouched")
            << 3
            << QStringLiteral("A") + vmHost() + QStringLiteral("B\r\n") + smHost() + "C\n" +
                   QChar(0xF8FE)
            << QStringLiteral("A\x1d"
                              "B\r\n\x1c"
                              "C\n") +
                   QChar(0xF8FE);
        QTest::newRow("tab is a fixed run")
            << 3 << QStringLiteral("a\tb\t") << QStringLiteral("a   b   ");
        QTest::newRow("tab size 0 gives one blank")
            << 0 << QStringLiteral("\tx") << QStringLiteral(" x");
    }
    void hostToEditor() {
        QFETCH(int, tabSize);
        QFETCH(QString, host);
        QFETCH(QString, editor);
        Settings().TabSize = static_cast<int16_t>(tabSize);
        QCOMPARE(mvDocument::HostToEditorText(host), editor);
    }

    void editorToHost_data() {
        QTest::addColumn<QString>("editor");
        QTest::addColumn<QString>("host");
        QTest::newRow("mixed ends become CR LF")
            << QStringLiteral("a\r\nb\rc\nd\n") << QStringLiteral("a\r\nb\r\nc\r\nd\r\n");
        QTest::newRow("equal counts are left")
            << QStringLiteral("a\rb\nc") << QStringLiteral("a\rb\nc");
        QTest::newRow("marks") << QStringLiteral("\x1d\x1c\x1e")
                               << vmHost() + smHost() + QStringLiteral("\x1e");
    }
    void editorToHost() {
        QFETCH(QString, editor);
        QFETCH(QString, host);
        QCOMPARE(mvDocument::EditorToHostText(editor), host);
    }

    // SetText converts as HostToEditorText does and Text back. Writing the text it already
    // has keeps undo, bookmarks and the dirty state, so a client can't reset them that way;
    // other text resets them.
    void setText() {
        doc->SetText(QStringLiteral("A\tB") + vmHost() + QStringLiteral("C\ntwo"));
        QCOMPARE(buffer().GetLine(0), QStringLiteral("A   B\x1d"
                                                     "C"));
        QCOMPARE(doc->Text(), QStringLiteral("A   B") + vmHost() + QStringLiteral("C\r\ntwo"));
        doc->SetDirty(false);
        editor().SetCursor(3, 1);
        doc->SetSelText(QStringLiteral("!"));
        editor().ToggleBookmark(0);
        doc->SetDirty(false);
        doc->SetText(doc->Text());
        QVERIFY(buffer().CanUndo());
        QVERIFY(editor().HasBookmark(0));
        QVERIFY(!doc->IsDirty());
        doc->SetText(QStringLiteral("other"));
        QVERIFY(!buffer().CanUndo());
        QVERIFY(!editor().HasBookmark(0));
        QVERIFY(doc->IsDirty());
    }

    void selTextRead_data() {
        QTest::addColumn<QList<int>>("selection");
        QTest::addColumn<QString>("expected");
        QTest::newRow("none") << QList<int>{1, 0, 1, 0} << QString();
        QTest::newRow("two lines") << QList<int>{1, 0, 2, 1} << QStringLiteral("bc\r\nde");
        QTest::newRow("backwards") << QList<int>{2, 1, 1, 0} << QStringLiteral("bc\r\nde");
        QTest::newRow("marks out")
            << QList<int>{0, 2, 3, 2} << QStringLiteral("g") + vmHost() + QStringLiteral("i");
    }
    void selTextRead() {
        QFETCH(QList<int>, selection);
        QFETCH(QString, expected);
        doc->SetText(QStringLiteral("abc\r\ndef\r\ng") + vmHost() + QStringLiteral("i"));
        editor().SetSelection(selection[0], selection[1], selection[2], selection[3]);
        QCOMPARE(doc->SelText(), expected);
    }

    // The replacement is one undo step that puts the text and the selection back.
    void selTextWriteUndoRedo() {
        doc->SetText(QStringLiteral("abc\r\ndef"));
        editor().SetSelection(2, 1, 1, 0);
        doc->SetSelText(QStringLiteral("X") + vmHost() + QStringLiteral("\r\nY\tZ"));
        QCOMPARE(buffer().AllText(), QStringLiteral("aX\x1d\nY   Zf"));
        QCOMPARE(editor().CursorCol(), 5);
        buffer().Undo();
        QCOMPARE(buffer().AllText(), QStringLiteral("abc\ndef"));
        int32_t sc, sl, ec, el;
        editor().GetSelection(sc, sl, ec, el);
        QCOMPARE((QList<int>{sc, sl, ec, el}), (QList<int>{2, 1, 1, 0}));
    }

    void marksReplaceSelectionOrGoInAtCaret() {
        doc->SetText(QStringLiteral("abcd"));
        editor().SetSelection(1, 0, 3, 0);
        doc->InsValue();
        QCOMPARE(buffer().AllText(), QStringLiteral("a\x1d"
                                                    "d"));
        editor().SetCursor(0, 0);
        doc->InsSubValue();
        QCOMPARE(editor().CursorCol(), 1);
        QCOMPARE(doc->Text(), smHost() + QStringLiteral("a") + vmHost() + QStringLiteral("d"));
    }

    // Out of view: the line comes into the upper part of the window; in view: no jump.
    void gotoLine() {
        QStringList lines;
        for (int i = 0; i < 1000; ++i)
            lines << QStringLiteral("line %1").arg(i + 1);
        doc->SetText(lines.join(QStringLiteral("\r\n")));
        doc->GotoLine(500);
        QCOMPARE(editor().CursorLine(), 499);
        const int32_t top = editor().FirstVisibleLine();
        QVERIFY2(499 - top < editor().VisibleRows() / 2, qPrintable(QString::number(top)));
        doc->GotoLine(502);
        QCOMPARE(editor().FirstVisibleLine(), top);
    }

    void buildLabels() {
        setFlaggedText({QStringLiteral("100 X = 1"), QStringLiteral("   START: CRT 1"),
                        QStringLiteral("A.B$C_D9 rest"), QStringLiteral("* comment"),
                        QStringLiteral("0100 Y = 2"), QStringLiteral("NOFLAG:"),
                        QStringLiteral("   "), QString::fromUtf8("\xc3\x89lan:"),
                        QStringLiteral("7X")},
                       {0, 1, 2, 3, 4, 6, 7, 8});
        const LabelList& labels = doc->Labels();
        QCOMPARE(labels.Names, (QStringList{QStringLiteral("100"), QStringLiteral("START"),
                                            QStringLiteral("A.B$C_D9"), QStringLiteral("0100"),
                                            QStringLiteral("7")}));
        QCOMPARE(labels.Lines, (std::vector<int32_t>{0, 1, 2, 4, 8}));
        QCOMPARE(labels.Columns, (std::vector<int32_t>{0, 3, 0, 0, 0}));
    }

    void gotoLabel() {
        setFlaggedText({QStringLiteral("0100 A"), QStringLiteral("x"), QStringLiteral("  100 B")},
                       {0, 2});
        doc->GotoLabel(QStringLiteral("100"));
        QCOMPARE(editor().CursorLine(), 2);
        QCOMPARE(editor().CursorCol(), 2);
        doc->GotoLabel(QStringLiteral("0100"));
        QCOMPARE(editor().CursorLine(), 0);
        QString description;
        QCOMPARE(
            FileTestSupport::ErrorOf([&] { doc->GotoLabel(QStringLiteral("10")); }, &description),
            32767);
        QCOMPARE(description, QStringLiteral("Target label not found!"));
    }

    // Edits don't refresh a list already built; a new text (or a save, or a load) does.
    void labelCache() {
        setFlaggedText({QStringLiteral("ONE: X")}, {0});
        QCOMPARE(doc->Labels().Count(), 1);
        editor().SetCursor(0, 0);
        doc->SetSelText(QStringLiteral("TWO: Y\r\n"));
        buffer().SetLineData(0, 1, LexClass::FlagLabel);
        QCOMPARE(FileTestSupport::ErrorOf([&] { doc->GotoLabel(QStringLiteral("TWO")); }), 32767);
        doc->DropLabels();
        doc->GotoLabel(QStringLiteral("TWO"));
        QCOMPARE(editor().CursorLine(), 0);
        setFlaggedText({QStringLiteral("x"), QStringLiteral("THREE")}, {1});
        doc->GotoLabel(QStringLiteral("THREE"));
        QCOMPARE(editor().CursorLine(), 1);
    }
};

BRIX_TEST_MAIN(tst_DocumentText)
#include "tst_DocumentText.moc"
