#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "editing/WordKind.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"

// The word under a point, judged on the tokens the real lexer gives for a line.
class tst_WordKind : public QObject {
    Q_OBJECT
    std::shared_ptr<mvDocument> document;

private Q_SLOTS:
    void initTestCase() {
        ProcessState::Instance().Documents = std::make_unique<DocumentCollection>();
        document = mvDocument::Create();
        QVERIFY(document->FileNew());
    }
    void cleanupTestCase() {
        document->FileClose(false);
        document.reset();
    }

    void classify_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("pointAt"); // the column is that of this text's first match
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("word");

        const auto row = [](const char* name, const char* line, const char* pointAt, int kind,
                            const char* word) {
            QTest::newRow(name) << line << pointAt << kind << word;
        };
        row("gosub target", "  GOSUB 100", "100", 1, "100");
        row("label's own line", "100 CRT X", "100", 0, "");
        row("call", "  CALL SUBNAME(A,B)", "SUBNAME", 2, "SUBNAME");
        row("call argument", "  CALL SUBNAME(A,B)", "A,", 0, "");
        row("call word in comment", "  X = 1 ;* CALL ME", "ME", 0, "");
        row("insert file and item", "$INSERT BP ITEM", "ITEM", 3, "BP ITEM");
        row("past line end", "  CALL X", "", 0, "");
    }
    void classify() {
        QFETCH(QString, line);
        QFETCH(QString, pointAt);
        QFETCH(int, kind);
        QFETCH(QString, word);

        SourceView& editor = *document->Editor();
        editor.Buffer().SetAllText(line);
        const std::vector<SourceToken> tokens = editor.Buffer().ScanLine(0);
        const int32_t column = pointAt.isEmpty() ? 40 : static_cast<int32_t>(line.indexOf(pointAt));
        QString found = QStringLiteral("untouched");
        QCOMPARE(int(WordKind::Classify(editor.Buffer().GetLine(0), tokens, column, found)), kind);
        QCOMPARE(found, kind == 0 ? QStringLiteral("untouched") : word);
    }
};

BRIX_TEST_MAIN(tst_WordKind)
#include "tst_WordKind.moc"
