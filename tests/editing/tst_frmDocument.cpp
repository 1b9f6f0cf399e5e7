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

// The document window's language set-up: its line numbers and its highlight switch.
class tst_frmDocument : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        ProcessState::Instance().Documents = std::make_unique<DocumentCollection>();
    }

    // The document's switch reaches the lexer, and the text is coloured again.
    void numbersAndHighlightSwitch() {
        auto document = mvDocument::Create();
        QVERIFY(document->FileNew());
        auto* window = dynamic_cast<frmDocument*>(document->View());
        QVERIFY(window);
        SourceView& control = *window->txtText();
        QCOMPARE(control.Gutter().DrawHook(),
                 std::static_pointer_cast<ISourceDraw2>(window->Draw()));
        control.Buffer().SetAllText(QStringLiteral("10 * NOTE\nIF X THEN\n   GOSUB 10"));
        QVERIFY(QTest::qWaitForWindowExposed(window));
        const auto styleAt = [&control] {
            control.viewport()->repaint();
            QCoreApplication::processEvents();
            return static_cast<int>(control.SendScintilla(
                QsciScintillaBase::SCI_GETSTYLEAT,
                static_cast<unsigned long>(control.Buffer().PositionOf(0, 1))));
        };
        QCOMPARE(styleAt(), ScintillaBuffer::StyleOfKind(TokenKind::Reserved));
        document->SetHighlight(false);
        QCOMPARE(styleAt(), ScintillaBuffer::StyleOfKind(TokenKind::Plain));
        document->SetHighlight(true);
        QCOMPARE(styleAt(), ScintillaBuffer::StyleOfKind(TokenKind::Reserved));
        document->FileClose(false);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

BRIX_TEST_MAIN(tst_frmDocument)
#include "tst_frmDocument.moc"
