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
        QCOMPARE(control().Buffer().Lex(), std::static_pointer_cast<ISourceLex4>(window()->Lex()));
        QCOMPARE(control().Gutter().DrawHook(),
                 std::static_pointer_cast<ISourceDraw2>(window()->Draw()));
        QCOMPARE(foreOf(TokenKind::Comment), 0x123456L);
        QVERIFY(control().SendScintilla(QsciScintillaBase::SCI_STYLEGETITALIC,
                                        ScintillaBuffer::StyleOfKind(TokenKind::Comment)) != 0);
        QCOMPARE(styleAt(3, 0), ScintillaBuffer::StyleOfKind(TokenKind::Comment));
        QCOMPARE(styleAt(0, 1), ScintillaBuffer::StyleOfKind(TokenKind::Reserved));
    }

    // The document's switch reaches the lexer, and the text is coloured again.
    void highlightSwitch() {
        QCOMPARE(styleAt(0, 1), ScintillaBuffer::StyleOfKind(TokenKind::Reserved));
        document->SetHighlight(false);
        QCOMPARE(styleAt(0, 1), ScintillaBuffer::StyleOfKind(TokenKind::Plain));
        document->SetHighlight(true);
        QCOMPARE(styleAt(0, 1), ScintillaBuffer::StyleOfKind(TokenKind::Reserved));
    }
};

BRIX_TEST_MAIN(tst_frmDocument)
#include "tst_frmDocument.moc"
