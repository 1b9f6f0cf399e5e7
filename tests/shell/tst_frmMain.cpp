#include "BoxAnswers.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/clsDocView.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "editing/WordKind.h"
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
#include <QMenu>
#include <QMimeData>
#include <QScopeGuard>
#include <QTabBar>
#include <QTimer>

// The frame driven as a user would: the command bars' state for each kind of document,
// closing with unsaved documents, the Tab keys, and the menus rebuilt as they drop down.
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
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly))
            return nullptr;
        out.write("CRT 'HELLO'\nEND\n");
        out.close();
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

    void noDocument() {
        frame->UpdateToolBar();
        for (const char* key : {"Paste", "Undo", "IndentBlock"})
            QVERIFY2(!tool("Edit", key)->Enabled(), key);
        QVERIFY(!tool("toolbar", "SaveAll")->Enabled());
        QVERIFY(tool("File", "Exit")->Enabled());
    }

    // With a selection the clipboard holds text too: Cut and the bar's Paste follow both.
    void documentState_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("select");
        QTest::addColumn<bool>("save");
        QTest::addColumn<bool>("saveAll"); // and Format
        QTest::addColumn<bool>("undo");
        QTest::newRow("clean") << "clean" << false << false << true << false;
        QTest::newRow("dirty") << "dirty" << true << true << true << true;
        QTest::newRow("readonly") << "readonly" << true << false << false << false;
        QTest::newRow("new") << "new" << false << true << true << true;
    }
    void documentState() {
        QFETCH(QString, kind);
        QFETCH(bool, select);
        QFETCH(bool, save);
        QFETCH(bool, saveAll);
        QFETCH(bool, undo);
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
        QCOMPARE(tool("Tools", "Format")->Enabled(), saveAll);
        QVERIFY(!tool("Tools", "Compile")->Enabled());
        QCOMPARE(tool("toolbar", "Clear")->Enabled(), select);
        QCOMPARE(tool("Edit", "Undo")->Enabled(), undo);
        QVERIFY(tool("Edit", "Paste")->Enabled());
        QCOMPARE(tool("toolbar", "Paste")->Enabled(), select);
    }

    void ctrlTabSteps() {
        auto first = dirtyNew();
        settle();
        QMdiSubWindow* only = frame->MdiArea()->activeSubWindow();
        QTest::keyClick(first->Editor(), Qt::Key_Tab, Qt::ControlModifier);
        settle();
        QCOMPARE(frame->MdiArea()->activeSubWindow(), only);
        QCOMPARE(first->Editor()->Buffer().GetLine(0), QStringLiteral("X = 1"));

        auto second = dirtyNew();
        settle();
        QMdiSubWindow* newer = frame->MdiArea()->activeSubWindow();
        QTest::keyClick(second->Editor(), Qt::Key_Tab, Qt::ControlModifier);
        settle();
        QCOMPARE(frame->MdiArea()->activeSubWindow(), only);
        QTest::keyClick(first->Editor(), Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        settle();
        QCOMPARE(frame->MdiArea()->activeSubWindow(), newer);
    }

    // Tab and Shift+Tab on lines move their indent; Shift+Tab within a line takes the
    // selected character only.
    void tabOnSelections_data() {
        QTest::addColumn<bool>("multiLine");
        QTest::addColumn<bool>("shift");
        QTest::addColumn<int>("shiftOfLines"); // sign of the change of the lines' indent
        QTest::newRow("tab on two lines") << true << false << 1;
        QTest::newRow("shift+tab on two lines") << true << true << -1;
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
        QStringList keys;
        for (const auto& t : menu.Tools())
            keys << t->Key();
        const int exit = static_cast<int>(keys.indexOf(QStringLiteral("Exit")));
        QCOMPARE(keys.mid(exit - 2, 3), (QStringList{"file_1", "file_2", "Exit"}));
        const QString newest = menu.Tool(QStringLiteral("file_1"))->Caption();
        QVERIFY(newest.startsWith(QStringLiteral("&1 ")) &&
                newest.endsWith(QStringLiteral("b.bas")));
        recent.Clear();
        frame->RebuildFileMenu();
        QVERIFY(!menu.Tool(QStringLiteral("file_1")));
    }

    void windowMenuListsDocuments() {
        const CommandBand& menu = *frame->Bar().Band(QStringLiteral("window"));
        auto first = dirtyNew();
        auto second = dirtyNew();
        first->Activate();
        settle();
        frame->RebuildWindowMenu();
        frame->RebuildWindowMenu();
        CommandTool* one = menu.Tool(QStringLiteral("miWList1"));
        CommandTool* two = menu.Tool(QStringLiteral("miWList2"));
        QVERIFY(one && two && !menu.Tool(QStringLiteral("miWList3")));
        QCOMPARE(one->Caption(), QStringLiteral("&1 ") + first->DisplayName());
        QVERIFY(one->Checked() && !two->Checked());
        two->Action()->trigger();
        settle();
        QCOMPARE(frame->ActiveDocument(), second);
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
        settle();
        QVERIFY(tool("toolbar", "Cut")->Enabled());
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
        QCOMPARE(answers.Seen.size(), 1);
        QCOMPARE(tabs->count(), 1);
        frame->Tabs().CloseTab(0);
        settle();
        QCOMPARE(tabs->count(), 0);
        QCOMPARE(state().Documents->Count(), 0);
    }

    // Every shortcut of the bars, pressed in the editor, reaches the frame's commands and
    // not the component's own key map (Ctrl+Y is Delete Line, Ctrl+L the properties).
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

    // A maximised document that goes hands the maximised state to the one that follows,
    // however it goes.
    void nextDocumentStaysMaximised_data() {
        QTest::addColumn<int>("how");
        QTest::newRow("closed") << 0;
        QTest::newRow("changes discarded") << 1;
        QTest::newRow("no to create") << 2;
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
        if (how == 2) {
            QVERIFY(!mvDocument::Create()->FileOpen(
                mvConnection::Instance().MakeFilePath({}, {}, dir.filePath("none.bas")), false));
        } else {
            if (how == 1)
                second->SetSelText(QStringLiteral("X"));
            second->View()->Widget()->close();
        }
        settle();
        QMdiSubWindow* active = frame->DocumentArea()->activeSubWindow();
        QVERIFY(active && active->isMaximized());
        QCOMPARE(active, qobject_cast<QMdiSubWindow*>(first->View()->Widget()));
    }

    // Keys outside the table: window-list entries activate their document, out-of-range
    // ones do nothing, and only the rest reach a user tool, with the active document.
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

    // Double-clicks on a label and on a program name bring up the goto dialog and the
    // browser (dismissed here).
    void doubleClickAndRightClickRouting() {
        auto document = dirtyNew();
        SourceView* editor = document->Editor();
        editor->Buffer().SetAllText(QStringLiteral("   GOSUB 100\n   CALL SUBNAME(A)"));
        settle();
        const auto pointAt = [editor](int32_t column, int32_t line) {
            const long at = editor->Buffer().PositionOf(column, line);
            return QPoint(
                int(editor->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0, at)) + 2,
                int(editor->SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0, at)) + 4);
        };
        const auto doubleClick = [editor](QPoint at) {
            QTest::mouseClick(editor->viewport(), Qt::LeftButton, {}, at);
            QTest::mouseDClick(editor->viewport(), Qt::LeftButton, {}, at);
            QTest::mouseRelease(editor->viewport(), Qt::LeftButton, {}, at);
        };
        QStringList dialogs;
        QTimer dismiss;
        connect(&dismiss, &QTimer::timeout, this, [&dialogs] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                dialogs << QString::fromLatin1(dialog->metaObject()->className());
                dialog->reject();
            }
        });
        dismiss.start(20);
        doubleClick(pointAt(10, 0));
        QCOMPARE(state().ContextWord, QStringLiteral("100"));
        doubleClick(pointAt(9, 1));
        QCOMPARE(state().ContextWord, QStringLiteral("SUBNAME"));
        dismiss.stop();
        QCOMPARE(dialogs, (QStringList{"frmGoto", "frmBrowse"}));
    }

    // Every fifth tick while auto-recover is on makes a pass; off, the count stands.
    void autoSaveTicksCountWhileOn() {
        frame->AutoSaveTicks = 0;
        Settings().AutoRecover = false;
        frame->AutoSaveTimerTick();
        QCOMPARE(frame->AutoSaveTicks, 0);
        Settings().AutoRecover = true;
        for (int i = 0; i < 5; ++i)
            frame->AutoSaveTimerTick();
        QCOMPARE(frame->AutoSaveTicks, 0);
        frame->AutoSaveTimerTick();
        QCOMPARE(frame->AutoSaveTicks, 1);
    }

    // Marks and characters beyond the BMP go through the clipboard as text; a picture is no
    // text to paste.
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
