#include "DocumentFrame.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "editing/frmDocument.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"

using namespace Qt::StringLiterals;

// Documents in a real frame: numbering, naming, views and closing.
class tst_mvDocument : public QObject {
    Q_OBJECT
    std::unique_ptr<DocumentFrame> shown;
    QPointer<frmMain> frame;

    static ProcessState& state() { return ProcessState::Instance(); }

private Q_SLOTS:
    void initTestCase() {
        shown = std::make_unique<DocumentFrame>();
        frame = shown->Frame();
    }
    void cleanupTestCase() { shown.reset(); }

    void cleanup() {
        DocumentFrame::CloseAll();
        Settings().MinMaxClose = false;
    }

    // Numbers are never reused; only documents made new count for NewItem names. The
    // counters are process-wide, so this runs first and reads them from a fresh start.
    void numbersAndNames() {
        QCOMPARE(state().NextDocumentNumber, 0);
        auto a = mvDocument::Create();
        auto b = mvDocument::Create();
        QCOMPARE(a->DocumentNumber(), 1);
        QCOMPARE(b->DocumentNumber(), 2);
        QCOMPARE(state().Documents->At(0), a);
        QCOMPARE(a->DisplayName(), u"NewItem0"_s);

        QVERIFY(b->FileNew());
        QCOMPARE(b->View()->Title(), u"NewItem1 (New)"_s);

        QVERIFY(b->FileClose(false));
        auto c = mvDocument::Create();
        QCOMPARE(c->DocumentNumber(), 3);
        QVERIFY(c->FileNew());
        QCOMPARE(c->DisplayName(), u"NewItem2"_s);
        QCOMPARE(state().Documents->Count(), 2);
    }

    void makeNewStartsClean() {
        auto d = mvDocument::Create();
        QVERIFY(d->FileNew());
        SourceView* editor = d->Editor();
        QTest::keyClicks(editor, u"abc"_s);
        editor->ToggleBookmark(0);
        const int count = frame->DocumentCount;
        QVERIFY(d->MakeNew(nullptr));
        QVERIFY(editor->Buffer().AllText().isEmpty() && !editor->Buffer().CanUndo());
        QVERIFY(!editor->HasBookmark(0));
        // The count holds each open document once, however often it is made new.
        QCOMPARE(frame->DocumentCount, count);
    }

    void closeLeavesTheCollectionBeforeTheEvent() {
        auto d = mvDocument::Create();
        d->FileNew();
        auto* view = d->View();
        const QString key = QString::number(d->DocumentNumber());
        bool wasInCollection = true;
        int raised = 0;
        connect(d.get(), &mvDocument::DocumentClose, this, [&] {
            wasInCollection = state().Documents->Contains(key);
            ++raised;
        });
        QVERIFY(d->FileClose(false));
        QCOMPARE(raised, 1);
        QVERIFY(!wasInCollection);
        QVERIFY(!view->ViewObject()); // a late event of the window finds no document
        QVERIFY(d->FileClose(false)); // a second close does nothing more
        QCOMPARE(raised, 1);
    }
};

BRIX_TEST_MAIN(tst_mvDocument)
#include "tst_mvDocument.moc"
