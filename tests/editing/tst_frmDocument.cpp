#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "editing/frmDocument.h"
#include "language/DrawClass.h"
#include "language/LexClass.h"
#include "language/LineNumberGutter.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "settings/modColors.h"

// The document window's language set-up: its lexer, colours and line numbers.
class tst_frmDocument : public QObject {
    Q_OBJECT
    std::shared_ptr<mvDocument> document;

    frmDocument* window() const { return dynamic_cast<frmDocument*>(document->View()); }
    SourceView& control() const { return *document->View()->txtText(); }
    int styleAt(int column, int line) {
        control().viewport()->repaint();
        QCoreApplication::processEvents();
        const long at = control().Buffer().PositionOf(column, line);
        return static_cast<int>(control().SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT,
                                                        static_cast<unsigned long>(at)));
    }
    long foreOf(int32_t kind) {
        return control().SendScintilla(QsciScintillaBase::SCI_STYLEGETFORE,
                                       ScintillaBuffer::StyleOfKind(kind));
    }

private Q_SLOTS:
    void initTestCase() {
        ProcessState::Instance().Documents = std::make_unique<DocumentCollection>();
    }

    void init() {
        Settings().CommentColor = 0x00123456;
        Settings().CommentStyle = 2;
        Settings().BackColor = 0x00F0E0D0;
        document = mvDocument::Create();
        QVERIFY(document->FileNew());
        QVERIFY(window());
        control().Buffer().SetAllText(QStringLiteral("10 * NOTE\nIF X THEN\n   GOSUB 10"));
        QVERIFY(QTest::qWaitForWindowExposed(window()));
    }
    void cleanup() {
        document->FileClose(false);
        document.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        ProcessState::Instance().Settings = std::make_unique<Moriox>();
    }

    void loadSetsUpLexerColoursAndNumbers() {
        frmDocument* w = window();
        QVERIFY(w->Lex());
        QCOMPARE(control().Buffer().Lex(), std::static_pointer_cast<ISourceLex4>(w->Lex()));
        QVERIFY(w->Lex()->Highlight);
        QCOMPARE(control().Gutter().DrawHook(), std::static_pointer_cast<ISourceDraw2>(w->Draw()));
        QCOMPARE(foreOf(TokenKind::Comment), 0x123456L);
        QVERIFY(control().SendScintilla(QsciScintillaBase::SCI_STYLEGETITALIC,
                                        ScintillaBuffer::StyleOfKind(TokenKind::Comment)) != 0);
        QCOMPARE(foreOf(TokenKind::ValueMark), long(0x969696));
        QCOMPARE(control().SendScintilla(QsciScintillaBase::SCI_STYLEGETBACK,
                                         QsciScintillaBase::STYLE_DEFAULT),
                 0xF0E0D0L);
        QCOMPARE(styleAt(3, 0), ScintillaBuffer::StyleOfKind(TokenKind::Comment));
        QCOMPARE(styleAt(0, 1), ScintillaBuffer::StyleOfKind(TokenKind::Reserved));
        QCOMPARE(control().Buffer().GetLineData(0, 1), 0x30000);
        QCOMPARE(control().Buffer().GetLineData(1, 1), 0x80);
        // The printer's table waits for colour printing.
        QCOMPARE(w->PrintStyles().Get(TokenKind::Comment).Color, 0);
        QCOMPARE(w->PrintStyles().Get(TokenKind::Comment).Style, int16_t(2));
    }

    // The document's switch reaches the lexer, and the text is coloured again.
    void highlightSwitch() {
        QCOMPARE(styleAt(0, 1), ScintillaBuffer::StyleOfKind(TokenKind::Reserved));
        document->SetHighlight(false);
        QVERIFY(!window()->Lex()->Highlight);
        QCOMPARE(styleAt(0, 1), ScintillaBuffer::StyleOfKind(TokenKind::Plain));
        QCOMPARE(control().Buffer().GetLineData(1, 1), 0);
        document->SetHighlight(true);
        QCOMPARE(styleAt(0, 1), ScintillaBuffer::StyleOfKind(TokenKind::Reserved));
    }

    // The document starts from the setting; a new view follows it.
    void highlightFromTheSetting() {
        Settings().Highlight = false;
        auto other = mvDocument::Create();
        QVERIFY(other->FileNew());
        auto* w = dynamic_cast<frmDocument*>(other->View());
        QVERIFY(w && !w->Lex()->Highlight);
        other->FileClose(false);
    }

    void applySettingsAgain() {
        Settings().ReservedColor = 0x000000FF;
        Settings().ColorPrinting = true;
        window()->ApplySettings();
        QCOMPARE(foreOf(TokenKind::Reserved), 0x0000FFL);
        QCOMPARE(window()->PrintStyles().Get(TokenKind::Reserved).Color, 0x0000FF);
        QCOMPARE(foreOf(TokenKind::Plain), long(modColors::ResolveColor(Settings().NormalColor)));
    }
};

BRIX_TEST_MAIN(tst_frmDocument)
#include "tst_frmDocument.moc"
