#include "DocumentSession.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/clsDocView.h"
#include "documents/mvDocument.h"
#include "editing/frmFind.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "shell/frmMain.h"
#include "support/MsgBoxEx.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

// The find dialog driven through its own buttons on real documents, its questions answered
// through the message box.
class tst_frmFind : public QObject {
    Q_OBJECT
    DocumentSession session;

    static frmFind& dialog() { return frmFind::Instance(); }
    static std::shared_ptr<mvDocument> open(const QString& text) {
        auto document = mvDocument::Create();
        document->FileNew();
        document->Buffer()->SetAllText(text);
        return document;
    }
    // The selection as "start column,line>end column,line".
    static QString selection(const mvDocument& document) {
        int32_t sc = 0, sl = 0, ec = 0, el = 0;
        document.Editor()->GetSelection(sc, sl, ec, el);
        return QStringLiteral("%1,%2>%3,%4").arg(sc).arg(sl).arg(ec).arg(el);
    }
    // Flags: u(p), w(hole word), c(ase), s(election).
    static void set(const QString& find, const QString& flags) {
        dialog().txtFind->setText(find);
        dialog().optDirection[flags.contains(u'u') ? 0 : 1]->setChecked(true);
        dialog().chkWholeWord->setChecked(flags.contains(u'w'));
        dialog().chkMatchCase->setChecked(flags.contains(u'c'));
        dialog().chkSelection->setChecked(flags.contains(u's'));
    }

private Q_SLOTS:
    void initTestCase() { session.StartCase(); }
    void cleanupTestCase() {
        delete frmFind::Loaded();
        session.EndCase();
    }
    void init() { session.StartTest(); }
    void cleanup() { session.EndTest(true); }

    // One press of Find Next from the start of a line: what it selects, with the matching
    // rules; at an end the user is asked, and Yes goes on from the far end.
    void findNext_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("find");
        QTest::addColumn<QString>("flags");
        QTest::addColumn<int>("caretLine");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QString>("selected");
        const QString program = QStringLiteral("X = 1\nCALL SUB.X\nPRINT x_y, x\nEND");
        const QString end = QStringLiteral("Search has reached the end of the document. Do you "
                                           "want to continue searching at the beginning?");
        const auto row = [](const char* name, const QString& text, const char* find,
                            const char* flags, int caretLine, int answer, const QStringList& texts,
                            const char* selected) {
            QTest::newRow(name) << text << find << flags << caretLine << answer << texts
                                << selected;
        };
        row("case ignored", program, "x", "", 1, 0, {}, "9,1>10,1");
        row("match case", program, "x", "c", 1, 0, {}, "6,2>7,2");
        row("whole word skips x_y", program, "x", "wc", 1, 0, {}, "11,2>12,2");
        row("up from the caret", program, "call", "u", 3, 0, {}, "0,1>4,1");
        row("other letters folded", "A\nSTRASSE ÄRGER", "ärger", "", 0, 0, {}, "8,1>13,1");
        row("word next to a letter", "A\nÉX X", "X", "w", 0, 0, {}, "3,1>4,1");
        row("end, yes", "ONE\nTWO", "ONE", "", 1, MsgBox::Yes, {end}, "0,0>3,0");
        row("beginning, yes", "ONE\nTWO", "TWO", "u", 0, MsgBox::Yes,
            {"Search has reached the beginning of the document. Do you want to continue "
             "searching at the end?"},
            "0,1>3,1");
        row("nowhere", "ONE\nTWO", "NONE", "", 1, MsgBox::Yes,
            {end, "Search text not found in document."}, "0,1>0,1");
    }
    void findNext() {
        QFETCH(QString, text);
        QFETCH(QString, find);
        QFETCH(QString, flags);
        QFETCH(int, caretLine);
        QFETCH(int, answer);
        QFETCH(QStringList, texts);
        QFETCH(QString, selected);
        auto document = open(text);
        document->Editor()->SetCursor(0, caretLine);
        dialog().Find();
        set(find, flags);
        if (answer)
            session.Answers->Push(answer);
        QTest::mouseClick(dialog().cmdFind, Qt::LeftButton);
        QCOMPARE(session.Answers->Texts(), texts);
        QCOMPARE(selection(*document), selected);
    }

    // A selection scope holds for repeated searches in its window and is read anew in
    // another; Replace first finds, then replaces, and the scope keeps its end.
    void selectionScope() {
        auto first = open(QStringLiteral("A A\nA A A\nA"));
        first->Editor()->SetSelection(2, 0, 3, 1);
        dialog().Replace();
        set(QStringLiteral("a"), QStringLiteral("s"));
        dialog().txtRepl->setText(QStringLiteral("BBB"));
        QTest::mouseClick(dialog().cmdRepl, Qt::LeftButton);
        QCOMPARE(selection(*first), QStringLiteral("2,0>3,0"));
        QTest::mouseClick(dialog().cmdRepl, Qt::LeftButton);
        QCOMPARE(first->Buffer()->GetLine(0), QStringLiteral("A BBB"));
        QCOMPARE(selection(*first), QStringLiteral("0,1>1,1"));
        QTest::mouseClick(dialog().cmdRepl, Qt::LeftButton);
        QCOMPARE(selection(*first), QStringLiteral("4,1>5,1"));
        // The last A of line 1 lies outside the scope: the end is reached.
        session.Answers->Push(MsgBox::No);
        QTest::mouseClick(dialog().cmdRepl, Qt::LeftButton);
        QCOMPARE(first->Buffer()->GetLine(1), QStringLiteral("BBB BBB A"));
        QCOMPARE(session.Answers->Texts(),
                 QStringList{"Search has reached the end of the selection. Do you want to "
                             "continue searching at the beginning?"});

        auto second = open(QStringLiteral("A A"));
        second->Editor()->SetCursor(0, 0);
        QTest::mouseClick(dialog().cmdFind, Qt::LeftButton);
        QVERIFY(dialog().Scope().Whole());
        QCOMPARE(selection(*second), QStringLiteral("0,0>1,0"));
    }

    // Replace All: one step that undo takes back whole, caret and selection included.
    void replaceAll_data() {
        QTest::addColumn<QString>("before");
        QTest::addColumn<bool>("inSelection");
        QTest::addColumn<QString>("find");
        QTest::addColumn<QString>("after");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("selectedAfter");
        const QString plain = QStringLiteral("ab abab\nCabD ab");
        const auto row = [](const char* name, const QString& before, bool inSelection,
                            const char* find, const QString& after, const char* message,
                            const char* selectedAfter) {
            QTest::newRow(name) << before << inSelection << find << after << message
                                << selectedAfter;
        };
        row("document", plain, false, "ab", "x xx\nCxD x", "5 occurrences replaced.", "2,0>1,1");
        row("selection", plain, true, "ab", "ab xx\nCabD ab", "2 occurrences replaced.", "3,0>2,1");
        row("none in selection", plain, true, "zz", "ab abab\nCabD ab",
            "Search text not found in selection.", "3,0>2,1");
        // Columns count UTF-16 units: the astral character is two.
        row("wide characters", QStringLiteral("ab \u00e9\U0001D11Eab ab\nCab\u00e9 ab"), false,
            "ab", QStringLiteral("x \u00e9\U0001D11Ex x\nCx\u00e9 x"), "5 occurrences replaced.",
            "2,0>1,1");
    }
    void replaceAll() {
        QFETCH(QString, before);
        QFETCH(bool, inSelection);
        QFETCH(QString, find);
        QFETCH(QString, after);
        QFETCH(QString, message);
        QFETCH(QString, selectedAfter);
        auto document = open(before);
        document->Editor()->SetSelection(3, 0, 2, 1);
        dialog().Replace();
        set(find, inSelection ? QStringLiteral("s") : QString());
        dialog().txtRepl->setText(QStringLiteral("x"));
        QTest::mouseClick(dialog().cmdAll, Qt::LeftButton);
        QCOMPARE(session.Answers->Texts(), QStringList{message});
        QCOMPARE(document->Buffer()->AllText(), after);
        QCOMPARE(selection(*document), selectedAfter);
        document->Buffer()->Undo();
        QCOMPARE(document->Buffer()->AllText(), before);
        QCOMPARE(selection(*document), QStringLiteral("3,0>2,1"));
    }
};

BRIX_TEST_MAIN(tst_frmFind)
#include "tst_frmFind.moc"
