#include "FileTestSupport.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/clsDocView.h"
#include "documents/mvDocument.h"
#include "language/LexClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"

using namespace Qt::StringLiterals;

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
        doc->SetText(lines.join(u"\r\n"_s));
        buffer().SetLex(nullptr);
        for (int line = 0; line < lines.size(); ++line)
            buffer().SetLineData(line, 1, flagged.contains(line) ? LexClass::FlagLabel | 0x1 : 0x1);
    }

private Q_SLOTS:
    void init() {
        Settings().TabSize = 3;
        doc = mvDocument::Create();
        QVERIFY(doc->FileNew());
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
        QTest::newRow("tab is a fixed run") << 3 << u"a\tb\t"_s << u"a   b   "_s;
        QTest::newRow("tab size 0 gives one blank") << 0 << u"\tx"_s << u" x"_s;
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
            << u"a\r\nb\rc\nd\n"_s << u"a\r\nb\r\nc\r\nd\r\n"_s;
        QTest::newRow("equal counts are left") << u"a\rb\nc"_s << u"a\rb\nc"_s;
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
        doc->SetText(u"A\tB"_s + vmHost() + u"C\ntwo"_s);
        QCOMPARE(buffer().GetLine(0), QStringLiteral("A   B\x1d"
                                                     "C"));
        QCOMPARE(doc->Text(), u"A   B"_s + vmHost() + u"C\r\ntwo"_s);
        doc->SetDirty(false);
        editor().SetCursor(3, 1);
        doc->SetSelText(u"!"_s);
        editor().ToggleBookmark(0);
        doc->SetDirty(false);
        doc->SetText(doc->Text());
        QVERIFY(buffer().CanUndo() && editor().HasBookmark(0) && !doc->IsDirty());
        doc->SetText(u"other"_s);
        QVERIFY(!buffer().CanUndo() && !editor().HasBookmark(0) && doc->IsDirty());
    }

    void selTextRead_data() {
        QTest::addColumn<QList<int>>("selection");
        QTest::addColumn<QString>("expected");
        QTest::newRow("none") << QList<int>{1, 0, 1, 0} << QString();
        QTest::newRow("two lines") << QList<int>{1, 0, 2, 1} << u"bc\r\nde"_s;
        QTest::newRow("marks out") << QList<int>{0, 2, 3, 2} << u"g"_s + vmHost() + u"i"_s;
    }
    void selTextRead() {
        QFETCH(QList<int>, selection);
        QFETCH(QString, expected);
        doc->SetText(u"abc\r\ndef\r\ng"_s + vmHost() + u"i"_s);
        editor().SetSelection(selection[0], selection[1], selection[2], selection[3]);
        QCOMPARE(doc->SelText(), expected);
    }

    // The replacement is one undo step that puts the text and the selection back.
    void selTextWriteUndoRedo() {
        doc->SetText(u"abc\r\ndef"_s);
        editor().SetSelection(2, 1, 1, 0);
        doc->SetSelText(u"X"_s + vmHost() + u"\r\nY\tZ"_s);
        QCOMPARE(buffer().AllText(), u"aX\x1d\nY   Zf"_s);
        QCOMPARE(editor().CursorCol(), 5);
        buffer().Undo();
        QCOMPARE(buffer().AllText(), u"abc\ndef"_s);
        int32_t sc, sl, ec, el;
        editor().GetSelection(sc, sl, ec, el);
        QCOMPARE((QList<int>{sc, sl, ec, el}), (QList<int>{2, 1, 1, 0}));
    }

    void marksReplaceSelectionOrGoInAtCaret() {
        doc->SetText(u"abcd"_s);
        editor().SetSelection(1, 0, 3, 0);
        doc->InsValue();
        QCOMPARE(buffer().AllText(), QStringLiteral("a\x1d"
                                                    "d"));
        editor().SetCursor(0, 0);
        doc->InsSubValue();
        QCOMPARE(editor().CursorCol(), 1);
        QCOMPARE(doc->Text(), smHost() + u"a"_s + vmHost() + u"d"_s);
    }

    void buildLabels() {
        setFlaggedText({u"100 X = 1"_s, u"   START: CRT 1"_s, u"A.B$C_D9 rest"_s, u"* comment"_s,
                        u"0100 Y = 2"_s, u"NOFLAG:"_s, u"   "_s, QString::fromUtf8("\xc3\x89lan:"),
                        u"7X"_s},
                       {0, 1, 2, 3, 4, 6, 7, 8});
        const LabelList& labels = doc->Labels();
        QCOMPARE(labels.Names,
                 (QStringList{u"100"_s, u"START"_s, u"A.B$C_D9"_s, u"0100"_s, u"7"_s}));
        QCOMPARE(labels.Lines, (std::vector<int32_t>{0, 1, 2, 4, 8}));
        QCOMPARE(labels.Columns, (std::vector<int32_t>{0, 3, 0, 0, 0}));
    }

    void gotoLabel() {
        setFlaggedText({u"0100 A"_s, u"x"_s, u"  100 B"_s}, {0, 2});
        doc->GotoLabel(u"100"_s);
        QCOMPARE(editor().CursorLine(), 2);
        QCOMPARE(editor().CursorCol(), 2);
        doc->GotoLabel(u"0100"_s);
        QCOMPARE(editor().CursorLine(), 0);
        QCOMPARE(FileTestSupport::ErrorOf([&] { doc->GotoLabel(u"10"_s); }), 32767);
    }
};

BRIX_TEST_MAIN(tst_DocumentText)
#include "tst_DocumentText.moc"
