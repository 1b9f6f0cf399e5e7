#include "shell/CommandTable.h"

#include "shell/CommandBar.h"
#include "shell/ToolIcon.h"

#include <QIcon>
#include <QLabel>
#include <QMenu>

namespace {

using Type = CommandTool::Type;

struct MenuTool {
    const char* Menu;
    const char* Key;
    const char* Caption;
    const char* Shortcut;
    bool Group;
    Type ToolType;
};

// In menu order; shortcuts as the bar stores them.
constexpr MenuTool MenuTools[] = {
    {"File", "New", "&New", "Ctrl+N", false, Type::Button},
    {"File", "Open", "&Open", "Ctrl+O", false, Type::Button},
    {"File", "Close", "&Close", "Ctrl+F4", true, Type::Button},
    {"File", "Save", "&Save", "Ctrl+S", false, Type::Button},
    {"File", "SaveAs", "Save &As...", "", false, Type::Button},
    {"File", "SaveAll", "Sa&ve All", "shift+ctrl+s", false, Type::Button},
    {"File", "Print", "&Print", "Ctrl+P", true, Type::Button},
    {"File", "Properties", "&Document Properties", "Ctrl+L", false, Type::Button},
    // The recent files' slot, replaced as the menu drops down.
    {"File", "file_1", "", "", true, Type::Button},
    {"File", "Exit", "E&xit", "Ctrl+Q", true, Type::Button},
    {"Edit", "Undo", "&Undo", "Ctrl+Z", false, Type::Button},
    {"Edit", "Redo", "Redo", "", false, Type::Button},
    {"Edit", "Cut", "Cu&t", "Ctrl+X", true, Type::Button},
    {"Edit", "Copy", "&Copy", "Ctrl+C", false, Type::Button},
    {"Edit", "Paste", "&Paste", "Ctrl+V", false, Type::Button},
    {"Edit", "Clear", "Clear", "Delete", false, Type::Button},
    {"Edit", "DeleteLine", "&Delete Line", "Ctrl+Y", false, Type::Button},
    {"Edit", "SelectAll", "Select &All", "Ctrl+A", false, Type::Button},
    {"Edit", "IndentBlock", "&Indent", "", true, Type::Button},
    {"Edit", "OutdentBlock", "&Outdent", "", false, Type::Button},
    {"Edit", "CommentBlock", "Comment", "", true, Type::Button},
    {"Edit", "UncommentBlock", "Uncomment", "", false, Type::Button},
    {"Edit", "Find", "&Find", "Ctrl+F", true, Type::Button},
    {"Edit", "FindNext", "Find Next", "F3", false, Type::Button},
    {"Edit", "Replace", "&Replace", "Ctrl+H", false, Type::Button},
    {"Edit", "Goto", "Goto", "Ctrl+G", true, Type::Button},
    {"Insert", "ValueMark", "Value Mark", "", false, Type::Button},
    {"Insert", "SubValueMark", "SubValue Mark", "", false, Type::Button},
    {"View", "ViewToolbar", "&Tool Bar", "", false, Type::Check},
    {"View", "ViewStatusbar", "&Status Bar", "", false, Type::Check},
    {"View", "Highlight", "&Highlight", "", false, Type::Check},
    {"View", "LineWrap", "Line &Wrap", "", false, Type::Check},
    {"View", "Results", "&Results", "", true, Type::Button},
    {"Tools", "Format", "&Format", "F12", false, Type::Button},
    {"Tools", "Compile", "&Compile", "F11", false, Type::Button},
    {"Tools", "ToggleCase", "&Toggle Case", "Shift+F3", true, Type::Button},
    {"Options", "OptGeneral", "&General...", "", false, Type::Button},
    {"Options", "OptHighlight", "&Highlight...", "", false, Type::Button},
    {"Options", "OptTools", "&Tools...", "", false, Type::Button},
    {"Window", "TileHorizontal", "Tile &Horizontal", "", false, Type::Button},
    {"Window", "TileVertical", "Tile &Vertical", "", false, Type::Button},
    {"Window", "Cascade", "&Cascade", "", false, Type::Button},
    {"Window", "Maximize", "&Maximize", "", true, Type::Check},
    {"Help", "HelpTopics", "&Topics", "", false, Type::Button},
    {"Help", "HelpAbout", "&About Brix", "", false, Type::Button},
};

struct SubMenu {
    const char* Key;
    const char* Caption;
};

constexpr SubMenu SubMenus[] = {{"File", "&File"},     {"Edit", "&Edit"},   {"Insert", "&Insert"},
                                {"View", "&View"},     {"Tools", "&Tools"}, {"Options", "&Options"},
                                {"Window", "&Window"}, {"Help", "&Help"}};

struct BarTool {
    const char* Key;
    const char* Caption;
    const char* ToolTip;
    bool Group;
    const char* Icon;
};

// "&Fine" is how the tool bar's Find has always been stored.
constexpr BarTool BarTools[] = {
    {"New", "&New", "Create a new document", false, "document-new"},
    {"Open", "&Open", "Open existing document", false, "document-open"},
    {"Save", "&Save", "Save current document", false, "document-save"},
    {"SaveAll", "Sa&ve All", "Saves all open documents that have been changed", false,
     "brix:save-all"},
    {"Print", "&Print", "Print the current document", true, "document-print"},
    {"Undo", "&Undo", "Undo last editing operation", true, "edit-undo"},
    {"Redo", "Redo", "Redo last editing operation", false, "edit-redo"},
    {"Cut", "Cu&t", "Cut", true, "edit-cut"},
    {"Copy", "&Copy", "Copy", false, "edit-copy"},
    {"Paste", "&Paste", "Paste", false, "edit-paste"},
    {"Clear", "Clear", "Clear", false, "edit-delete"},
    {"IndentBlock", "&Indent", "Indents currently selected lines", true, "format-indent-more"},
    {"OutdentBlock", "&Outdent", "Outdents currently selected lines", false, "format-indent-less"},
    {"CommentBlock", "Comment", "Comment selected lines", true, "brix:comment-block"},
    {"UncommentBlock", "Uncomment", "Uncomment selected lines", false, "brix:uncomment-block"},
    {"Goto", "Goto", "Positions cursor on specified line or label", true, "go-jump"},
    {"Find", "&Fine", "Search for text in document (press F3 to find next)", false, "edit-find"},
    {"ValueMark", "Value Mark", "Insert value-mark at current position", true, "brix:value-mark"},
    {"SubValueMark", "SubValue Mark", "Insert sub-value-mark at current position", false,
     "brix:subvalue-mark"},
    {"ToggleCase", "&Toggle Case", "Toggles case of selected text (upper, lower, mixed)", false,
     "brix:toggle-case"},
    {"Highlight", "&Highlight", "Toggles syntax highlighting on or off", true, "format-text-bold"},
    {"Format", "&Format", "Format code", false, "format-justify-left"},
    {"Compile", "&Compile", "Compile code", false, "system-run"},
};

struct PopupTool {
    const char* Key;
    const char* Caption;
    bool Group;
    Type ToolType;
};

constexpr PopupTool EditorPopup[] = {
    {"Undo", "Undo", false, Type::Button},
    {"Cut", "Cut", true, Type::Button},
    {"Copy", "Copy", false, Type::Button},
    {"Paste", "Paste", false, Type::Button},
    {"Clear", "Clear", false, Type::Button},
    {"DeleteLine", "Delete Line", false, Type::Button},
    {"SelectAll", "Select All", true, Type::Button},
    {"Find", "Find", true, Type::Button},
    {"FindNext", "Find Next", false, Type::Button},
    {"Replace", "Replace", false, Type::Button},
    {"ctxGoto", "Goto", true, Type::Button},
    {"ctxOpen", "Open", false, Type::Button},
    {"Highlight", "Highlight", true, Type::Check},
};

constexpr PopupTool TabPopup[] = {
    {"tab_activate", "Activate", false, Type::Button},
    {"tab_close", "Close", false, Type::Button},
    {"tab_min", "Minimize", true, Type::Check},
    {"tab_max", "Maximize", true, Type::Check},
};

struct Panel {
    const char* Key;
    const char* Caption;
    const char* ToolTip;
};

// Panel2's caption is only a width template until the first caret report.
constexpr Panel Panels[] = {
    {"Panel1", "Starting up", "Server status"},
    {"Panel2", "Ln 1000, Col 100", "Current insertion point"},
    {"Panel3", "Ovr", "Overwrite / Insert"},
    {"Panel4", "", ""},
    {"Panel5", "", ""},
};

QString text(const char* value) {
    return QString::fromLatin1(value);
}

template <size_t N>
void buildPopup(CommandBar& bar, const QString& key, const PopupTool (&tools)[N]) {
    CommandBand* band = bar.AddPopup(key);
    for (const PopupTool& tool : tools)
        band->AddTool(text(tool.Key), text(tool.Caption), tool.ToolType, tool.Group);
}

} // namespace

void CommandTable::Build(CommandBar& bar) {
    for (const SubMenu& menu : SubMenus)
        bar.AddSubMenu(text(menu.Key), text(menu.Caption));
    for (const MenuTool& entry : MenuTools) {
        CommandTool* tool =
            bar.Band(text(entry.Menu))
                ->AddTool(text(entry.Key), text(entry.Caption), entry.ToolType, entry.Group);
        if (*entry.Shortcut)
            tool->SetShortcut(text(entry.Shortcut));
        if (tool->Key() == QLatin1String("file_1"))
            tool->SetVisible(false);
    }

    CommandBand* toolBar = bar.Band(QStringLiteral("ToolBar"));
    for (const BarTool& entry : BarTools) {
        const Type type = qstrcmp(entry.Key, "Highlight") == 0 ? Type::Check : Type::Button;
        CommandTool* tool =
            toolBar->AddTool(text(entry.Key), text(entry.Caption), type, entry.Group);
        tool->SetToolTip(text(entry.ToolTip));
        const QIcon icon = ToolIcon::Find(text(entry.Icon));
        if (!icon.isNull())
            tool->Action()->setIcon(icon);
    }

    CommandBand* statusBar = bar.Band(QStringLiteral("StatusBar"));
    for (const Panel& panel : Panels)
        statusBar->AddPanel(text(panel.Key), text(panel.Caption), text(panel.ToolTip),
                            qstrcmp(panel.Key, "Panel1") == 0);

    buildPopup(bar, QStringLiteral("Popup"), EditorPopup);
    buildPopup(bar, QStringLiteral("tabctx"), TabPopup);
}
