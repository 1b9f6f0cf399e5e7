#pragma once

#include <QString>
#include <functional>
#include <memory>

class CommandTool;
class frmMain;
class mvDocument;

// Carries out a tool click by its key: the fixed keys first, in one order, then the
// window list ("miWList" and a number), the recent files ("file_" and a number) and last
// the user tools that automation clients add.
class CommandDispatcher {
public:
    explicit CommandDispatcher(frmMain& frame);

    // Errors end the command with the common error box.
    void Dispatch(const CommandTool& tool);
    void Dispatch(const QString& key, bool checked);

    // True when the key has behaviour in this program; tools without it stay disabled.
    static bool Handles(const QString& key);

    // Looks up and raises a user tool of an automation client; unset, such keys do nothing.
    std::function<void(const QString& key, const std::shared_ptr<mvDocument>& document)> UserTool;

private:
    using Handler = void (CommandDispatcher::*)(bool checked);
    struct Entry {
        const char* Key;
        Handler Run;
    };
    static const Entry Table[];

    std::shared_ptr<mvDocument> active() const;
    void dispatchDynamic(const QString& key);

    void newDocument(bool);
    void open(bool);
    void close(bool);
    void save(bool);
    void saveAs(bool);
    void saveAll(bool);
    void print(bool);
    void exit(bool);
    void undo(bool);
    void redo(bool);
    void cut(bool);
    void copy(bool);
    void paste(bool);
    void clear(bool);
    void deleteLine(bool);
    void selectAll(bool);
    void viewToolbar(bool checked);
    void viewStatusbar(bool checked);
    void highlight(bool checked);
    void lineWrap(bool checked);
    void indentBlock(bool);
    void outdentBlock(bool);
    void commentBlock(bool);
    void uncommentBlock(bool);
    void format(bool);
    void toggleCase(bool);
    void properties(bool);
    void results(bool);
    void compile(bool);
    void find(bool);
    void findNext(bool);
    void replace(bool);
    void gotoLine(bool);
    void contextGoto(bool);
    void contextOpen(bool);
    void valueMark(bool);
    void subValueMark(bool);
    void tileHorizontal(bool);
    void tileVertical(bool);
    void cascade(bool);
    void maximize(bool);
    void optGeneral(bool);
    void optHighlight(bool);
    void optTools(bool);
    void helpTopics(bool);
    void about(bool);
    void tabActivate(bool);
    void tabClose(bool);
    void tabMax(bool);
    void tabMin(bool);

    frmMain& frame_;
};
