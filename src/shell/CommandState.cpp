#include "shell/CommandState.h"

#include "documents/mvDocument.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "shell/CommandBar.h"
#include "shell/CommandDispatcher.h"
#include "support/UnicodeClipboard.h"

namespace {

using Inputs = CommandState::Inputs;
using Rule = bool (*)(const Inputs&);

struct StateRule {
    const char* Band;
    const char* Key;
    Rule Enabled;
    Rule Checked; // null: the check is not touched
};

bool always(const Inputs&) {
    return true;
}
bool writable(const Inputs& in) {
    return !in.ReadOnly;
}
bool canSave(const Inputs& in) {
    return !in.ReadOnly && in.IsDirty;
}
bool canSaveAll(const Inputs& in) {
    return in.ReadOnly ? in.DocumentCount > 1 : true;
}
bool canCompile(const Inputs& in) {
    return !in.ReadOnly && in.CanCompile;
}
bool selection(const Inputs& in) {
    return in.HasSelection;
}
bool canUndo(const Inputs& in) {
    return in.CanUndo;
}
bool canRedo(const Inputs& in) {
    return in.CanRedo;
}
bool clipboardText(const Inputs& in) {
    return in.ClipboardText;
}
bool highlight(const Inputs& in) {
    return in.Highlight;
}
bool lineWrap(const Inputs& in) {
    return in.LineWrap;
}

// Every tool that follows the document, on every band where it stands. The menu's Paste is
// on whatever the clipboard holds; the tool bar's follows the clipboard.
constexpr StateRule Rules[] = {
    {"File", "Close", always, nullptr},
    {"File", "Save", canSave, nullptr},
    {"File", "SaveAs", always, nullptr},
    {"File", "SaveAll", canSaveAll, nullptr},
    {"File", "Print", always, nullptr},
    {"File", "Properties", always, nullptr},
    {"Edit", "Undo", canUndo, nullptr},
    {"Edit", "Redo", canRedo, nullptr},
    {"Edit", "Cut", selection, nullptr},
    {"Edit", "Copy", selection, nullptr},
    {"Edit", "Paste", always, nullptr},
    {"Edit", "Clear", selection, nullptr},
    {"Edit", "DeleteLine", always, nullptr},
    {"Edit", "SelectAll", always, nullptr},
    {"Edit", "Find", always, nullptr},
    {"Edit", "FindNext", always, nullptr},
    {"Edit", "Replace", always, nullptr},
    {"Edit", "Goto", always, nullptr},
    {"Edit", "IndentBlock", always, nullptr},
    {"Edit", "OutdentBlock", always, nullptr},
    {"Edit", "CommentBlock", always, nullptr},
    {"Edit", "UncommentBlock", always, nullptr},
    {"Insert", "ValueMark", always, nullptr},
    {"Insert", "SubValueMark", always, nullptr},
    {"View", "Highlight", always, highlight},
    {"View", "LineWrap", always, lineWrap},
    {"Tools", "Format", writable, nullptr},
    {"Tools", "Compile", canCompile, nullptr},
    {"Tools", "ToggleCase", always, nullptr},
    {"toolbar", "Save", canSave, nullptr},
    {"toolbar", "SaveAll", canSaveAll, nullptr},
    {"toolbar", "Print", always, nullptr},
    {"toolbar", "Undo", canUndo, nullptr},
    {"toolbar", "Redo", canRedo, nullptr},
    {"toolbar", "Cut", selection, nullptr},
    {"toolbar", "Copy", selection, nullptr},
    {"toolbar", "Paste", clipboardText, nullptr},
    {"toolbar", "Clear", selection, nullptr},
    {"toolbar", "Find", always, nullptr},
    {"toolbar", "Goto", always, nullptr},
    {"toolbar", "ValueMark", always, nullptr},
    {"toolbar", "OutdentBlock", always, nullptr},
    {"toolbar", "CommentBlock", always, nullptr},
    {"toolbar", "UncommentBlock", always, nullptr},
    {"toolbar", "SubValueMark", always, nullptr},
    {"toolbar", "IndentBlock", always, nullptr},
    {"toolbar", "Highlight", always, highlight},
    {"toolbar", "Format", writable, nullptr},
    {"toolbar", "Compile", canCompile, nullptr},
    {"toolbar", "ToggleCase", always, nullptr},
};

} // namespace

CommandState::Inputs CommandState::Read(const std::shared_ptr<mvDocument>& document,
                                        int16_t documentCount) {
    Inputs in;
    in.DocumentCount = documentCount;
    in.ClipboardText = UnicodeClipboard::TextAvailable();
    if (!document)
        return in;
    in.HasDocument = true;
    in.ReadOnly = document->ReadOnly();
    in.IsDirty = document->IsDirty();
    in.Highlight = document->Highlight();
    in.CanCompile = document->CanCompile();
    if (const SourceView* editor = document->Editor()) {
        in.LineWrap = editor->LineWrap();
        in.HasSelection = editor->HasSelection();
        in.CanUndo = editor->Buffer().CanUndo();
        in.CanRedo = editor->Buffer().CanRedo();
    }
    return in;
}

void CommandState::Apply(CommandBar& bar, const Inputs& in) {
    for (const StateRule& rule : Rules) {
        CommandTool* tool = bar.Tool(QLatin1String(rule.Band), QLatin1String(rule.Key));
        if (!tool)
            continue;
        // A command not offered yet stays as the bars were built: off.
        if (!CommandDispatcher::Handles(tool->Key()))
            continue;
        tool->SetEnabled(in.HasDocument && rule.Enabled(in));
        // Without a document the checks keep their last state.
        if (in.HasDocument && rule.Checked)
            tool->SetChecked(rule.Checked(in));
    }
    if (CommandTool* topics = bar.Tool(QStringLiteral("Help"), QStringLiteral("HelpTopics")))
        topics->SetShortcut(QStringLiteral("F1"));
}

void CommandState::SwitchOffUnoffered(CommandBar& bar) {
    for (const CommandBand* band : bar.Bands())
        for (const auto& tool : band->Tools())
            if (!CommandDispatcher::Handles(tool->Key()))
                tool->SetEnabled(false);
}
