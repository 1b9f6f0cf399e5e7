#include "shell/CommandDispatcher.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "editing/frmFind.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "shell/ChildArrangement.h"
#include "shell/CommandBar.h"
#include "shell/CursorCommands.h"
#include "shell/DocumentTabs.h"
#include "shell/EditCommands.h"
#include "shell/SettingsCommand.h"
#include "shell/frmAbout.h"
#include "shell/frmMain.h"
#include "support/HelpFile.h"
#include "support/ShowError.h"

#include <QApplication>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStatusBar>
#include <QToolBar>

// The order in which keys are compared. A null handler is a tool that stands in the bars
// but whose command this program does not offer yet; it stays disabled.
const CommandDispatcher::Entry CommandDispatcher::Table[] = {
    {"New", &CommandDispatcher::newDocument},
    {"Open", &CommandDispatcher::open},
    {"Close", &CommandDispatcher::close},
    {"Save", &CommandDispatcher::save},
    {"SaveAs", &CommandDispatcher::saveAs},
    {"SaveAll", &CommandDispatcher::saveAll},
    {"Print", &CommandDispatcher::print},
    {"Exit", &CommandDispatcher::exit},
    {"Properties", &CommandDispatcher::properties},
    {"Undo", &CommandDispatcher::undo},
    {"Redo", &CommandDispatcher::redo},
    {"Cut", &CommandDispatcher::cut},
    {"Copy", &CommandDispatcher::copy},
    {"Paste", &CommandDispatcher::paste},
    {"Clear", &CommandDispatcher::clear},
    {"DeleteLine", &CommandDispatcher::deleteLine},
    {"SelectAll", &CommandDispatcher::selectAll},
    {"Find", &CommandDispatcher::find},
    {"FindNext", &CommandDispatcher::findNext},
    {"Replace", &CommandDispatcher::replace},
    {"IndentBlock", &CommandDispatcher::indentBlock},
    {"OutdentBlock", &CommandDispatcher::outdentBlock},
    {"CommentBlock", &CommandDispatcher::commentBlock},
    {"UncommentBlock", &CommandDispatcher::uncommentBlock},
    {"Goto", &CommandDispatcher::gotoLine},
    {"ctxGoto", &CommandDispatcher::contextGoto},
    {"ctxOpen", &CommandDispatcher::contextOpen},
    {"ViewToolbar", &CommandDispatcher::viewToolbar},
    {"ViewStatusbar", &CommandDispatcher::viewStatusbar},
    {"Highlight", &CommandDispatcher::highlight},
    {"LineWrap", &CommandDispatcher::lineWrap},
    {"Results", &CommandDispatcher::results},
    {"ValueMark", &CommandDispatcher::valueMark},
    {"SubValueMark", &CommandDispatcher::subValueMark},
    {"Format", &CommandDispatcher::format},
    {"Compile", &CommandDispatcher::compile},
    {"ToggleCase", &CommandDispatcher::toggleCase},
    {"OptGeneral", &CommandDispatcher::optGeneral},
    {"OptHighlight", &CommandDispatcher::optHighlight},
    {"OptTools", &CommandDispatcher::optTools},
    {"TileHorizontal", &CommandDispatcher::tileHorizontal},
    {"TileVertical", &CommandDispatcher::tileVertical},
    {"Cascade", &CommandDispatcher::cascade},
    {"Maximize", &CommandDispatcher::maximize},
    {"HelpTopics", &CommandDispatcher::helpTopics},
    {"HelpAbout", &CommandDispatcher::about},
    {"tab_activate", &CommandDispatcher::tabActivate},
    {"tab_close", &CommandDispatcher::tabClose},
    {"tab_max", &CommandDispatcher::tabMax},
    {"tab_min", &CommandDispatcher::tabMin},
};

CommandDispatcher::CommandDispatcher(frmMain& frame) : frame_(frame) {}

bool CommandDispatcher::Handles(const QString& key) {
    for (const Entry& entry : Table)
        if (key == QLatin1String(entry.Key))
            return entry.Run != nullptr;
    return true;
}

void CommandDispatcher::Dispatch(const CommandTool& tool) {
    Dispatch(tool.Key(), tool.Checked());
}

void CommandDispatcher::Dispatch(const QString& key, bool checked) {
    try {
        for (const Entry& entry : Table)
            if (key == QLatin1String(entry.Key)) {
                if (entry.Run)
                    (this->*entry.Run)(checked);
                return;
            }
        dispatchDynamic(key);
    } catch (const std::exception& error) {
        while (QApplication::overrideCursor())
            QApplication::restoreOverrideCursor();
        ShowError(QString::fromLocal8Bit(error.what()), &frame_);
    }
}

void CommandDispatcher::dispatchDynamic(const QString& key) {
    if (key.startsWith(QLatin1String("miWList"))) {
        const ProcessState& state = ProcessState::Instance();
        const int index = key.mid(7).toInt();
        if (state.Documents)
            if (auto document = state.Documents->At(index - 1))
                document->Activate();
        return;
    }
    if (key.startsWith(QLatin1String("file_"))) {
        frame_.OpenRecent(static_cast<int16_t>(key.mid(5).toInt()));
        return;
    }
    if (UserTool)
        UserTool(key, active());
}

std::shared_ptr<mvDocument> CommandDispatcher::active() const {
    return frame_.ActiveDocument();
}

namespace {

SourceView* editorOf(const std::shared_ptr<mvDocument>& document) {
    return document ? document->Editor() : nullptr;
}

} // namespace

void CommandDispatcher::newDocument(bool) {
    frame_.NewDocument();
}

void CommandDispatcher::open(bool) {
    frame_.OpenDocument();
}

void CommandDispatcher::close(bool) {
    // The document asks about its own changes.
    if (auto document = active())
        document->FileClose(true);
}

void CommandDispatcher::save(bool) {
    frame_.SaveDocument(active());
}

void CommandDispatcher::saveAs(bool) {
    frame_.SaveDocumentAs(active());
}

void CommandDispatcher::saveAll(bool) {
    frame_.SaveAllDocuments();
}

void CommandDispatcher::print(bool) {
    if (auto document = active())
        document->PrintText();
}

void CommandDispatcher::exit(bool) {
    frame_.ExitApplication();
}

void CommandDispatcher::undo(bool) {
    if (SourceView* editor = editorOf(active()))
        editor->Buffer().Undo();
}

void CommandDispatcher::redo(bool) {
    if (SourceView* editor = editorOf(active()))
        editor->Buffer().Redo();
}

void CommandDispatcher::cut(bool) {
    if (SourceView* editor = editorOf(active()))
        editor->Cut();
}

void CommandDispatcher::copy(bool) {
    if (SourceView* editor = editorOf(active()))
        editor->Copy();
}

void CommandDispatcher::paste(bool) {
    if (SourceView* editor = editorOf(active()))
        editor->Paste();
}

void CommandDispatcher::clear(bool) {
    // As the Delete key: the selection, or the character behind the caret.
    if (SourceView* editor = editorOf(active()))
        editor->SendScintilla(QsciScintillaBase::SCI_CLEAR);
}

void CommandDispatcher::deleteLine(bool) {
    if (SourceView* editor = editorOf(active()))
        editor->SendScintilla(QsciScintillaBase::SCI_LINEDELETE);
}

void CommandDispatcher::selectAll(bool) {
    if (SourceView* editor = editorOf(active()))
        editor->selectAll(true);
}

void CommandDispatcher::viewToolbar(bool checked) {
    frame_.Bar().ToolBarWidget()->setVisible(checked);
}

void CommandDispatcher::viewStatusbar(bool checked) {
    frame_.Bar().StatusBarWidget()->setVisible(checked);
}

void CommandDispatcher::highlight(bool checked) {
    auto document = active();
    if (!document)
        return;
    document->SetHighlight(checked);
    CommandBar& bar = frame_.Bar();
    for (const char* band : {"toolbar", "View", "Popup"})
        if (CommandTool* tool = bar.Tool(QLatin1String(band), QStringLiteral("Highlight")))
            tool->SetChecked(checked);
}

void CommandDispatcher::lineWrap(bool checked) {
    if (SourceView* editor = editorOf(active()))
        editor->SetLineWrap(checked);
}

void CommandDispatcher::valueMark(bool) {
    if (auto document = active())
        document->InsValue();
}

void CommandDispatcher::subValueMark(bool) {
    if (auto document = active())
        document->InsSubValue();
}

void CommandDispatcher::tileHorizontal(bool) {
    ChildArrangement::Arrange(*frame_.MdiArea(), ChildArrangement::TileHorizontal);
}

void CommandDispatcher::tileVertical(bool) {
    ChildArrangement::Arrange(*frame_.MdiArea(), ChildArrangement::TileVertical);
}

void CommandDispatcher::cascade(bool) {
    ChildArrangement::Arrange(*frame_.MdiArea(), ChildArrangement::Cascade);
}

void CommandDispatcher::maximize(bool) {
    if (QMdiSubWindow* child = frame_.MdiArea()->activeSubWindow()) {
        if (child->isMaximized())
            child->showNormal();
        else
            child->showMaximized();
    }
}

void CommandDispatcher::helpTopics(bool) {
    // A manual that can't be shown says nothing.
    if (HelpFile::Open(ProcessState::Instance().HelpFilePath))
        frame_.HelpOpen = true;
}

void CommandDispatcher::about(bool) {
    frmAbout::ShowAbout(&frame_);
}

void CommandDispatcher::tabActivate(bool) {
    frame_.Tabs().ActivateFromMenu();
}

void CommandDispatcher::tabClose(bool) {
    frame_.Tabs().CloseFromMenu();
}

void CommandDispatcher::tabMax(bool) {
    frame_.Tabs().ToggleStateFromMenu(2);
}

void CommandDispatcher::tabMin(bool) {
    frame_.Tabs().ToggleStateFromMenu(1);
}

void CommandDispatcher::indentBlock(bool) {
    EditCommands::IndentBlock(active(), true);
}

void CommandDispatcher::outdentBlock(bool) {
    EditCommands::IndentBlock(active(), false);
}

void CommandDispatcher::commentBlock(bool) {
    EditCommands::CommentBlock(active(), true);
}

void CommandDispatcher::uncommentBlock(bool) {
    EditCommands::CommentBlock(active(), false);
}

void CommandDispatcher::format(bool) {
    EditCommands::Format(active());
}

void CommandDispatcher::properties(bool) {
    frame_.ShowProperties(active());
}

void CommandDispatcher::results(bool) {
    frame_.ShowResults(QString());
}

void CommandDispatcher::compile(bool) {
    frame_.CompileDocument(active());
}

void CommandDispatcher::toggleCase(bool) {
    EditCommands::ToggleCase(active());
}

void CommandDispatcher::optGeneral(bool) {
    SettingsCommand::Run(frame_, 1);
}

void CommandDispatcher::optHighlight(bool) {
    SettingsCommand::Run(frame_, 2);
}

void CommandDispatcher::optTools(bool) {
    SettingsCommand::Run(frame_, 3);
}

void CommandDispatcher::find(bool) {
    if (active())
        frmFind::Instance().Find();
}

void CommandDispatcher::findNext(bool) {
    if (!active())
        return;
    // Nothing to repeat yet: the dialog asks for it.
    frmFind& dialog = frmFind::Instance();
    if (dialog.txtFind->text().isEmpty())
        dialog.Find();
    else
        dialog.FindNext();
}

void CommandDispatcher::replace(bool) {
    if (active())
        frmFind::Instance().Replace();
}

void CommandDispatcher::gotoLine(bool) {
    CursorCommands::HandleGoto(active(), true, &frame_);
}

void CommandDispatcher::contextGoto(bool) {
    CursorCommands::HandleGoto(active(), false, &frame_);
}

void CommandDispatcher::contextOpen(bool) {
    CursorCommands::HandleOpen(active(), &frame_);
}
