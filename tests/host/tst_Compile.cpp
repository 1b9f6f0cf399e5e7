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
#include <QMessageBox>
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
    // A double-click on the first line of the output that holds `marker`, as a person makes
    // it at the line's start: the word there selected; the jump to the line follows later.
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

    // From the menu: no question for a clean document, the compiler's lines without its
    // blank lines, the status line empty again.
    void cleanProgramShowsTheCompilerLines() {
        BoxAnswers answers;
        auto document = open(QStringLiteral("CLEAN"), "CRT 'Hello'\nEND\n");
        QVERIFY(document);
        frames->Frame()->Dispatcher().Dispatch(QStringLiteral("Compile"), false);
        QVERIFY(results());
        const QString text = results()->toPlainText();
        QVERIFY2(text.contains(QStringLiteral("Compiling BP CLEAN\n0 error(s)\nCompiled 1 "
                                              "program(s) with no errors")),
                 qPrintable(text));
        QVERIFY(answers.Seen.isEmpty());
    }

    // Both errors in the output; a double-click on each puts the caret on the line QM named.
    void doubleClickGoesToEachError() {
        BoxAnswers answers;
        auto document = open(QStringLiteral("BROKEN"), "CRT 'one'\nX = = 1\nCRT 'three'\n"
                                                       "CRT 'four'\nIF THEN\nEND\n");
        QVERIFY(document);
        document->Compile();
        QVERIFY(results());
        const QString text = results()->toPlainText();
        QVERIFY2(text.contains(QStringLiteral("2 error(s)")), qPrintable(text));
        QVERIFY(doubleClickLineWith(QStringLiteral("2: ")));
        QTRY_COMPARE(caretLine(*document), 2);
        QVERIFY(doubleClickLineWith(QStringLiteral("6: ")));
        QTRY_COMPARE(caretLine(*document), 6);
    }

    // The host's copy is compiled only when it is the editor's: a modified document is
    // saved first, or nothing runs.
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

    // Refusals before anything runs, each with its own words and icon.
    void refusals_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("icon");
        QTest::newRow("new") << "new"
                             << "Unable to compile un-saved document! Use Save-As from the File "
                                "menu to save the document, then compile it."
                             << int(QMessageBox::Warning);
        QTest::newRow("local file")
            << "file"
            << "Unable to compile document saved as a local file!" << int(QMessageBox::Warning);
        QTest::newRow("no commands") << "host"
                                     << "Host does not allow Brix to EXECUTE any utilities. "
                                        "Please enable this feature!"
                                     << int(QMessageBox::NoIcon);
    }
    void refusals() {
        QFETCH(QString, kind);
        QFETCH(QString, message);
        QFETCH(int, icon);
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
        QCOMPARE(answers.Seen[0].Icon, icon);
        QVERIFY(!results() || results()->toPlainText().isEmpty());
    }
};

BRIX_TEST_MAIN(tst_Compile)
#include "tst_Compile.moc"
