#include "BoxAnswers.h"
#include "FileTestSupport.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/clsDocView.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "editing/frmDocument.h"
#include "language/LineNumberGutter.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "settings/clsRecentList.h"
#include "shell/CommandBar.h"
#include "shell/CommandDispatcher.h"
#include "shell/DocumentTabs.h"
#include "shell/frmMain.h"
#include "support/MsgBoxEx.h"
#include "support/UnicodeClipboard.h"

#include <QClipboard>
#include <QDialog>
#include <QImage>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QScopeGuard>
#include <QTabBar>
#include <QTimer>

// The frame driven as a user would: bars' state, closing, keys, menus, double-clicks.
class tst_frmMain : public QObject {
    Q_OBJECT
    QPointer<frmMain> frame;
    QTemporaryDir dir;

    static ProcessState& state() { return ProcessState::Instance(); }
    CommandTool* tool(const char* band, const char* key) const {
        return frame->Bar().Tool(QLatin1String(band), QLatin1String(key));
    }
    std::shared_ptr<mvDocument> localFile(const QString& name, bool readOnly) {
        const QString file = dir.filePath(name);
        FileTestSupport::WriteFile(file, "CRT 'HELLO'\nEND\n");
        auto document = mvDocument::Create();
        if (!document->FileOpen(mvConnection::Instance().MakeFilePath({}, {}, file), readOnly))
            return nullptr;
        return document;
    }
    std::shared_ptr<mvDocument> dirtyNew() {
        auto document = mvDocument::Create();
        document->FileNew();
        document->Editor()->SetCursor(0, 0);
        document->SetSelText(QStringLiteral("X = 1"));
        return document;
    }
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

private Q_SLOTS:
    void initTestCase() {
        state().Documents = std::make_unique<DocumentCollection>();
        frame = new frmMain;
        frame->setAttribute(Qt::WA_DeleteOnClose, false);
        state().MainWindow = frame;
        frame->Load();
        frame->show();
        QVERIFY(QTest::qWaitForWindowExposed(frame));
        frame->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(frame));
    }
    void cleanupTestCase() { delete frame; }

    void cleanup() {
        BoxAnswers quiet;
        for (const auto& d : state().Documents->Snapshot()) {
            d->SetDirty(false);
            d->FileClose(false);
        }
        settle();
        QCOMPARE(frame->DocumentCount, int16_t(0));
    }

    // With a selection the clipboard holds text too: Cut and the bar's Paste follow both.
    void documentState_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("select");
        QTest::addColumn<bool>("save");
        QTest::addColumn<bool>("saveAll");
        QTest::newRow("clean") << "clean" << false << false << true;
        QTest::newRow("dirty") << "dirty" << true << true << true;
        QTest::newRow("readonly") << "readonly" << true << false << false;
        QTest::newRow("new") << "new" << false << true << true;
    }
    void documentState() {
        QFETCH(QString, kind);
        QFETCH(bool, select);
        QFETCH(bool, save);
        QFETCH(bool, saveAll);
        BoxAnswers answers;
        std::shared_ptr<mvDocument> document =
            kind == QLatin1String("new")
                ? dirtyNew()
                : localFile(kind + QStringLiteral(".bas"), kind == QLatin1String("readonly"));
        QVERIFY(document);
        if (kind == QLatin1String("dirty")) {
            document->Editor()->SetCursor(0, 1);
            document->SetSelText(QStringLiteral("* "));
        }
        if (select) {
            document->Editor()->SetSelection(0, 0, 3, 0);
            UnicodeClipboard::SetText(QStringLiteral("PRINT \u00e9\u4e2d"));
        } else {
            document->Editor()->SetCursor(0, 0);
            QGuiApplication::clipboard()->clear();
        }
        settle();
        frame->UpdateToolBar();
        QCOMPARE(tool("toolbar", "Save")->Enabled(), save);
        QCOMPARE(tool("File", "SaveAll")->Enabled(), saveAll);
        QCOMPARE(tool("toolbar", "Clear")->Enabled(), select);
        QCOMPARE(tool("toolbar", "Paste")->Enabled(), select);
    }

    // Tab and Shift+Tab move the lines' indent; within a line Shift+Tab takes the selection.
    void tabOnSelections_data() {
        QTest::addColumn<bool>("multiLine");
        QTest::addColumn<bool>("shift");
        QTest::addColumn<int>("shiftOfLines"); // sign of the change of the lines' indent
        QTest::newRow("tab on two lines") << true << false << 1;
        QTest::newRow("shift+tab on one line") << false << true << 0;
    }
    void tabOnSelections() {
        QFETCH(bool, multiLine);
        QFETCH(bool, shift);
        QFETCH(int, shiftOfLines);
        auto document = mvDocument::Create();
        document->FileNew();
        SourceView* editor = document->Editor();
        editor->Buffer().SetAllText(QStringLiteral("      X = 1\n      Y = 2"));
        settle();
        editor->setFocus();
        QTRY_VERIFY(editor->hasFocus());
        multiLine ? editor->SetSelection(0, 0, 2, 1) : editor->SetSelection(10, 0, 11, 0);
        QTest::keyClick(editor, shift ? Qt::Key_Backtab : Qt::Key_Tab,
                        shift ? Qt::ShiftModifier : Qt::NoModifier);
        settle();
        for (int line = 0; multiLine && line < 2; ++line) {
            const QString text = editor->Buffer().GetLine(line);
            const int indent = static_cast<int>(text.size() - text.trimmed().size());
            QCOMPARE((indent > 6) - (indent < 6), shiftOfLines);
        }
        if (!multiLine) // Backspace takes the selected character only.
            QCOMPARE(editor->Buffer().GetLine(0), QStringLiteral("      X = "));
    }

    void fileMenuListsRecentFiles() {
        clsRecentList& recent = *Settings().RecentList;
        recent.Clear();
        for (const char* name : {"a.bas", "b.bas"})
            recent.AddItem(mvConnection::Instance().MakeFilePath({}, {}, dir.filePath(name)));
        frame->RebuildFileMenu();
        frame->RebuildFileMenu();
        const CommandBand& menu = *frame->Bar().Band(QStringLiteral("file"));
        QVERIFY(menu.Tool(QStringLiteral("file_2")) && !menu.Tool(QStringLiteral("file_3")));
        recent.Clear();
        frame->RebuildFileMenu();
        QVERIFY(!menu.Tool(QStringLiteral("file_1")));
    }

    void marginSelectsWholeLines() {
        auto document = dirtyNew();
        SourceView* editor = document->Editor();
        editor->Buffer().SetAllText(QStringLiteral("A\nBB\nCCC\nDDDD\nEEEEE"));
        Q_EMIT editor->Gutter().LinePressed(3, Qt::NoModifier);
        int32_t sc = 0, sl = 0, ec = 0, el = 0;
        editor->GetSelection(sc, sl, ec, el);
        QCOMPARE(QList<int>({sc, sl, ec, el}), QList<int>({0, 3, 4, 3}));
        // Shift extends from the anchor, upwards too.
        Q_EMIT editor->Gutter().LinePressed(1, Qt::ShiftModifier);
        editor->GetSelection(sc, sl, ec, el);
        QCOMPARE(QList<int>({sc, sl, el}), QList<int>({0, 1, 3}));
    }

    void editorKeys() {
        auto document = dirtyNew();
        SourceView* editor = document->Editor();
        editor->Buffer().SetAllText(QStringLiteral("AB"));
        editor->setFocus();
        QTRY_VERIFY(editor->hasFocus());
        editor->SetCursor(1, 0);
        QTest::keyClick(editor, Qt::Key_BracketRight, Qt::ControlModifier);
        QTest::keyClick(editor, Qt::Key_Backslash, Qt::ControlModifier);
        // One undo step per mark, as the Insert menu gives.
        editor->Buffer().Undo();
        QCOMPARE(editor->Buffer().GetLine(0), QStringLiteral("A\x1d"
                                                             "B"));
        editor->SetSelection(0, 0, 1, 0);
        QTest::keyClick(editor, Qt::Key_Insert, Qt::ControlModifier);
        QTest::keyClick(editor, Qt::Key_Delete, Qt::ShiftModifier);
        editor->SetCursor(2, 0);
        QTest::keyClick(editor, Qt::Key_Insert, Qt::ShiftModifier);
        QCOMPARE(editor->Buffer().GetLine(0), QStringLiteral("\x1d"
                                                             "BA"));
    }

    void tabCloseAsksAndCancelKeepsIt() {
        dirtyNew();
        settle();
        QTabBar* tabs = frame->Tabs().TabBar();
        BoxAnswers answers;
        answers.Push({MsgBox::Cancel, MsgBox::No});
        frame->Tabs().CloseTab(0);
        settle();
        QCOMPARE(tabs->count(), 1);
        frame->Tabs().CloseTab(0);
        settle();
        QCOMPARE(tabs->count(), 0);
    }

    // Every shortcut pressed in the editor reaches the frame, not the component's key map.
    void everyShortcutReachesItsCommandFromTheEditor() {
        auto document = dirtyNew();
        SourceView* editor = document->Editor();
        frame->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(frame));
        document->Activate();
        editor->setFocus();
        QTRY_VERIFY(editor->hasFocus());
        const QString before = document->Text();
        QObject::disconnect(&frame->Bar(), &CommandBar::ToolClicked, frame, nullptr);
        const auto reconnect = qScopeGuard([this] {
            QObject::disconnect(&frame->Bar(), &CommandBar::ToolClicked, this, nullptr);
            connect(&frame->Bar(), &CommandBar::ToolClicked, frame.data(),
                    [f = frame.data()](CommandTool* t) { f->Dispatcher().Dispatch(*t); });
        });
        QStringList seen;
        connect(&frame->Bar(), &CommandBar::ToolClicked, this,
                [&seen](CommandTool* t) { seen << t->Key(); });
        int pressed = 0;
        for (QAction* action : frame->findChildren<QAction*>()) {
            if (action->shortcut().isEmpty())
                continue;
            action->setEnabled(true);
            seen.clear();
            const QKeyCombination key = action->shortcut()[0];
            QTest::keyClick(editor, key.key(), key.keyboardModifiers());
            QVERIFY2(seen.size() == 1, qPrintable(action->shortcut().toString()));
            ++pressed;
        }
        QVERIFY(pressed >= 20);
        QCOMPARE(document->Text(), before);
    }

    // A maximised document that goes, however, hands the maximised state to the next.
    void nextDocumentStaysMaximised_data() {
        QTest::addColumn<int>("how");
        QTest::newRow("closed") << 0;
        QTest::newRow("no to create") << 1;
    }
    void nextDocumentStaysMaximised() {
        QFETCH(int, how);
        auto first = localFile(QStringLiteral("a.bas"), false);
        auto second = localFile(QStringLiteral("b.bas"), false);
        QVERIFY(first && second);
        settle();
        QVERIFY(second->View()->WindowState() == frmDocument::Maximized);
        BoxAnswers answers;
        answers.Push(MsgBox::No);
        if (how == 1) {
            QVERIFY(!mvDocument::Create()->FileOpen(
                mvConnection::Instance().MakeFilePath({}, {}, dir.filePath("none.bas")), false));
        } else {
            second->View()->Widget()->close();
        }
        settle();
        QMdiSubWindow* active = frame->DocumentArea()->activeSubWindow();
        QVERIFY(active && active->isMaximized());
        QCOMPARE(active, qobject_cast<QMdiSubWindow*>(first->View()->Widget()));
    }

    // Keys outside the table: window entries, out-of-range ones (nothing), user tools.
    void dynamicKeys_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("userTool");
        QTest::addColumn<int>("activeAfter");
        QTest::newRow("user tool") << "UserTool7"
                                   << "UserTool7" << 1;
        QTest::newRow("window list") << "miWList1"
                                     << "" << 0;
        QTest::newRow("window list past the end") << "miWList9"
                                                  << "" << 1;
        QTest::newRow("recent entry past the end") << "file_9"
                                                   << "" << 1;
    }
    void dynamicKeys() {
        QFETCH(QString, key);
        QFETCH(QString, userTool);
        QFETCH(int, activeAfter);
        std::shared_ptr<mvDocument> documents[] = {localFile(QStringLiteral("a.bas"), false),
                                                   localFile(QStringLiteral("b.bas"), false)};
        settle();
        QString seen;
        std::shared_ptr<mvDocument> seenDocument;
        frame->Dispatcher().UserTool = [&](const QString& k, const std::shared_ptr<mvDocument>& d) {
            seen = k;
            seenDocument = d;
        };
        const auto reset = qScopeGuard([this] { frame->Dispatcher().UserTool = nullptr; });
        BoxAnswers boxes;
        frame->Dispatcher().Dispatch(key, false);
        settle();
        QCOMPARE(seen, userTool);
        QCOMPARE(seenDocument, userTool.isEmpty() ? nullptr : documents[1]);
        QCOMPARE(frame->ActiveDocument(), documents[activeAfter]);
        QVERIFY(boxes.Seen.isEmpty());
    }

    void saveAllAsksAboutReadOnly_data() {
        QTest::addColumn<int>("answer");
        QTest::newRow("go on") << int(MsgBox::OK);
        QTest::newRow("stop") << int(MsgBox::Cancel);
    }
    void saveAllAsksAboutReadOnly() {
        QFETCH(int, answer);
        auto first = localFile(QStringLiteral("first.bas"), false);
        auto locked = localFile(QStringLiteral("locked.bas"), true);
        auto last = localFile(QStringLiteral("last.bas"), false);
        QVERIFY(first && locked && last);
        for (const auto& d : {first, locked, last})
            d->SetDirty(true);
        BoxAnswers answers;
        answers.Push(answer);
        frame->SaveAllDocuments();
        QCOMPARE(answers.Seen.size(), 1);
        QCOMPARE(answers.Seen[0].Text,
                 QStringLiteral("Document ") + locked->DisplayName() +
                     QStringLiteral(" is read-only and cannot be saved. Continue with next "
                                    "document?"));
        QVERIFY(!first->IsDirty());
        QVERIFY(locked->IsDirty());
        QCOMPARE(last->IsDirty(), answer == MsgBox::Cancel);
    }

    // Double-clicks on a label and a program name bring up goto and the browser.
    void doubleClickRouting() {
        auto document = dirtyNew();
        SourceView* editor = document->Editor();
        editor->Buffer().SetAllText(QStringLiteral("   GOSUB 100\n   CALL SUBNAME(A)"));
        settle();
        QStringList dialogs;
        QTimer dismiss;
        connect(&dismiss, &QTimer::timeout, this, [&dialogs] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                dialogs << QString::fromLatin1(dialog->metaObject()->className());
                dialog->reject();
            }
        });
        dismiss.start(20);
        const std::tuple<int32_t, int32_t, const char*> clicks[] = {{10, 0, "100"},
                                                                    {9, 1, "SUBNAME"}};
        for (const auto& [column, line, word] : clicks) {
            const long at = editor->Buffer().PositionOf(column, line);
            const QPoint point(
                int(editor->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0, at)) + 2,
                int(editor->SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0, at)) + 4);
            QTest::mouseClick(editor->viewport(), Qt::LeftButton, {}, point);
            QTest::mouseDClick(editor->viewport(), Qt::LeftButton, {}, point);
            QTest::mouseRelease(editor->viewport(), Qt::LeftButton, {}, point);
            QCOMPARE(state().ContextWord, QLatin1String(word));
        }
        dismiss.stop();
        QCOMPARE(dialogs, (QStringList{"frmGoto", "frmBrowse"}));
    }

    // Marks and characters beyond the BMP go through the clipboard; a picture is no text.
    void clipboardText() {
        const QString text = QStringLiteral("\u00c5ngstr\u00f6m \u03a9 \U0001F600");
        QVERIFY(UnicodeClipboard::SetText(text));
        QCOMPARE(QGuiApplication::clipboard()->text(), text);
        QVERIFY(UnicodeClipboard::TextAvailable());
        auto* picture = new QMimeData;
        picture->setImageData(QImage(2, 2, QImage::Format_RGB32));
        QGuiApplication::clipboard()->setMimeData(picture);
        QVERIFY(!UnicodeClipboard::TextAvailable());
    }

    void captionShowsMaximisedChild() {
        auto document = dirtyNew();
        settle();
        auto* window = dynamic_cast<frmDocument*>(document->View());
        window->showMaximized();
        settle();
        frame->SetTitle(QStringLiteral("Brix"));
        QCOMPARE(frame->windowTitle(),
                 QStringLiteral("Brix - [") + window->Title() + QStringLiteral("]"));
        window->showNormal();
        settle();
        QCOMPARE(frame->windowTitle(), QStringLiteral("Brix"));
    }
};

BRIX_TEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
