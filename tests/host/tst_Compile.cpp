#include "BoxAnswers.h"
#include "DocumentFrame.h"
#include "FileTestSupport.h"
#include "QmHostFixture.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "shell/CommandDispatcher.h"
#include "shell/frmMain.h"
#include "shell/frmResults.h"
#include "support/MsgBoxEx.h"

#include <QFile>
#include <QScopeGuard>
#include <QTextBlock>
#include <QTextEdit>

// Compiling from the editor on a real QM host: the results window, jumps to error lines,
// and the refusals before anything runs.
class tst_Compile : public QObject {
    Q_OBJECT
    QmHostFixture host;
    std::unique_ptr<DocumentFrame> frames;
    QTemporaryDir dir;

    std::shared_ptr<mvDocument> open(const QString& id, const QByteArray& source) {
        host.WriteItem(QStringLiteral("BP"), id, source);
        auto document = mvDocument::Create();
        if (!document->FileOpen(host.ItemPath(QStringLiteral("BP"), id), false))
            return nullptr;
        document->Activate();
        return document;
    }
    static QTextEdit* results() {
        auto* window = qobject_cast<frmResults*>(ProcessState::Instance().ResultsWindow.data());
        return window && window->isVisible() ? window->Results() : nullptr;
    }
    static void setResultsText(const QString& text) {
        if (auto* window = qobject_cast<frmResults*>(ProcessState::Instance().ResultsWindow.data()))
            window->Results()->setPlainText(text);
    }
    // A double-click at the start of the first output line that holds `marker`.
    static bool doubleClickLineWith(const QString& marker) {
        QTextEdit* view = results();
        if (!view)
            return false;
        for (QTextBlock block = view->document()->begin(); block.isValid(); block = block.next())
            if (block.text().contains(marker)) {
                QTextCursor cursor(block);
                const QPoint at = view->cursorRect(cursor).center() + QPoint(2, 0);
                QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
                return true;
            }
        return false;
    }
    static int caretLine(mvDocument& document) {
        int32_t startColumn = 0, startLine = 0, endColumn = 0, endLine = 0;
        document.Editor()->GetSelection(startColumn, startLine, endColumn, endLine);
        return endLine + 1;
    }
private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(host.Ready(), qPrintable(host.Error()));
        host.UseProfile();
        frames = std::make_unique<DocumentFrame>();
    }
    void cleanupTestCase() { frames.reset(); }
    void init() {
        DocumentFrame::Reset();
        Settings().CompileCommand = QStringLiteral("BASIC");
        Settings().CompileOptions.clear();
        setResultsText(QString());
    }
    void cleanup() { DocumentFrame::CloseAll(); }

    // From the menu, with no question: the compiler's lines without its blank lines, and a
    // double-click on each error puts the caret on the line QM named.
    void doubleClickGoesToEachError() {
        BoxAnswers answers;
        auto document = open(QStringLiteral("BROKEN"), "CRT 'one'\nX = = 1\nCRT 'three'\n"
                                                       "CRT 'four'\nIF THEN\nEND\n");
        QVERIFY(document);
        frames->Frame()->Dispatcher().Dispatch(QStringLiteral("Compile"), false);
        QVERIFY(results());
        const QString text = results()->toPlainText();
        QVERIFY2(text.contains(QStringLiteral("Compiling BP BROKEN\n")) && !text.contains("\n\n") &&
                     text.contains(QStringLiteral("2 error(s)")),
                 qPrintable(text));
        QVERIFY(answers.Seen.isEmpty());
        QVERIFY(doubleClickLineWith(QStringLiteral("2: ")));
        QTRY_COMPARE(caretLine(*document), 2);
        QVERIFY(doubleClickLineWith(QStringLiteral("6: ")));
        QTRY_COMPARE(caretLine(*document), 6);
    }

    // A modified document is saved first, or nothing runs.
    void modifiedDocumentIsSavedFirst_data() {
        QTest::addColumn<int>("answer");
        QTest::newRow("yes") << MsgBox::Yes;
        QTest::newRow("no") << MsgBox::No;
    }
    void modifiedDocumentIsSavedFirst() {
        QFETCH(int, answer);
        auto document = open(QStringLiteral("EDITED"), "CRT 1\n");
        QVERIFY(document);
        document->SetText(QStringLiteral("CRT 2\r\nEND\r\n"));
        BoxAnswers answers;
        answers.Push(answer);
        document->Compile();
        QCOMPARE(answers.Texts(),
                 QStringList{QStringLiteral("Unable to compile un-saved document! Do you want to "
                                            "save the document, then compile it?")});
        const bool saved = answer == MsgBox::Yes;
        QCOMPARE(host.ReadItem(QStringLiteral("BP"), QStringLiteral("EDITED")),
                 saved ? QByteArray("CRT 2\nEND\n") : QByteArray("CRT 1\n"));
        QCOMPARE(results() != nullptr && !results()->toPlainText().isEmpty(), saved);
    }

    // Refusals before anything runs, each with its own words.
    void refusals_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("message");
        QTest::newRow("new") << "new"
                             << "Unable to compile un-saved document! Use Save-As from the File "
                                "menu to save the document, then compile it.";
        QTest::newRow("local file") << "file"
                                    << "Unable to compile document saved as a local file!";
        QTest::newRow("no commands") << "host"
                                     << "Host does not allow Brix to EXECUTE any utilities. "
                                        "Please enable this feature!";
    }
    void refusals() {
        QFETCH(QString, kind);
        QFETCH(QString, message);
        auto restore = qScopeGuard([this] { host.UseProfile(); });
        std::shared_ptr<mvDocument> document;
        if (kind == QLatin1String("new")) {
            document = mvDocument::Create();
            QVERIFY(document->FileNew());
        } else if (kind == QLatin1String("file")) {
            const QString path = dir.filePath(QStringLiteral("local.bas"));
            FileTestSupport::WriteFile(path, "CRT 1\n");
            document = mvDocument::Create();
            QVERIFY(document->FileOpen(path, false));
        } else {
            QByteArray profile = host.Profile();
            profile.replace("AllowCommands=true", "AllowCommands=false");
            FileTestSupport::UseProfiles("[General]\nDefault=qm\n\n" + profile);
            document = open(QStringLiteral("NOCMD"), "CRT 1\nEND\n");
            QVERIFY(document);
        }
        BoxAnswers answers;
        document->Compile();
        QCOMPARE(answers.Texts(), QStringList{message});
        QVERIFY(!results() || results()->toPlainText().isEmpty());
    }
};

BRIX_TEST_MAIN(tst_Compile)
#include "tst_Compile.moc"
