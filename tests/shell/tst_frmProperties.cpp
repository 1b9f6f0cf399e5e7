#include "DocumentFrame.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/mvDocument.h"
#include "language/SourceView.h"
#include "shell/DocumentFacts.h"
#include "shell/frmMain.h"
#include "shell/frmProperties.h"

// The facts the properties dialog lists for a document, by where it lives.
class tst_frmProperties : public QObject {
    Q_OBJECT
    std::unique_ptr<DocumentFrame> frames;

    static QStringList rowsOf(mvDocument& document) {
        frmProperties dialog(nullptr);
        dialog.Fill(document);
        QStringList rows;
        for (int i = 0; i < dialog.RowCount(); ++i)
            rows << dialog.Label(i) + QLatin1Char('=') + dialog.Value(i);
        return rows;
    }

private Q_SLOTS:
    void initTestCase() { frames = std::make_unique<DocumentFrame>(); }
    void cleanupTestCase() { frames.reset(); }
    void cleanup() { DocumentFrame::CloseAll(); }

    // A new document takes its place from the last one used; the selection rows come
    // only with a selection.
    void newDocumentRows_data() {
        QTest::addColumn<QString>("provider");
        QTest::addColumn<bool>("select");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("host") << "mvdb" << false
                              << QStringList{"Host=qm",          "Account=DEMO", "File name=BP",
                                             "Item ID=NewItem1", "Modified=yes", "Read only=no",
                                             "Size=10",          "Lines=2"};
        QTest::newRow("local, selection")
            << "file" << true << QStringList{"Location=",        "File name=NewItem1",
                                             "Modified=yes",     "Read only=no",
                                             "Size=12",          "Lines=2",
                                             "Selection size=7", "Selected lines=2"};
    }
    void newDocumentRows() {
        QFETCH(QString, provider);
        QFETCH(bool, select);
        QFETCH(QStringList, rows);
        HostContext& context = ProcessState::Instance().Host;
        context = HostContext{provider, QStringLiteral("qm"), QStringLiteral("DEMO"),
                              QStringLiteral("BP")};
        ProcessState::Instance().NextNewNumber = 0;
        auto document = mvDocument::Create();
        QVERIFY(document->FileNew());
        document->SetText(QStringLiteral("CRT 1\r\nEND\r\n"));
        if (select)
            document->Editor()->SetSelection(2, 0, 2, 1);
        QStringList shown = rowsOf(*document);
        if (provider == QLatin1String("file"))
            shown[0] = shown[0].section(QLatin1Char('='), 0, 0) + QLatin1Char('=');
        QCOMPARE(shown, rows);
        context = HostContext{};
    }
};

BRIX_TEST_MAIN(tst_frmProperties)
#include "tst_frmProperties.moc"
