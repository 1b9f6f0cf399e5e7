#pragma once

#include <QString>
#include <cstdint>
#include <memory>

class ISourceOp;
class LexClass;
class LineBuffer;
class SourceBuffer;
class SourceControl;
class SourceView;

// A buffer with its caret, either in the editor widget (shown offscreen, so that keys
// reach it) or in memory, so that one test drives operations on both the same way.
class EditHarness {
public:
    enum Kind { Editor, Memory };
    explicit EditHarness(Kind kind);
    ~EditHarness();
    EditHarness(const EditHarness&) = delete;
    EditHarness& operator=(const EditHarness&) = delete;

    static const char* Name(Kind kind) { return kind == Editor ? "editor" : "memory"; }

    SourceBuffer& Buffer() const;
    std::shared_ptr<SourceControl> Control() const { return control_; }
    // The lexer both kinds scan with; it starts with the default keyword table.
    std::shared_ptr<LexClass> Lex() const { return lex_; }

    // Replaces the text (lines joined by LF), scans it, and forgets the undo steps.
    void SetText(const QString& text);
    // The lines joined by LF.
    QString Text() const;
    void SetTabSize(int32_t size);
    void Select(int32_t startColumn, int32_t startLine, int32_t endColumn, int32_t endLine);
    void PlaceCaret(int32_t column, int32_t line) { Select(column, line, column, line); }
    // The text, then the selection as anchor and caret: "text|a,b>c,d".
    QString State() const;

    // Types at the caret as a user does: key presses in the editor, a recorded edit in memory.
    void Type(const QString& text);
    void Run(std::unique_ptr<ISourceOp> op);
    // Scans every line first, as the document's Format does.
    void Format(std::unique_ptr<ISourceOp> op);
    void Undo();
    void Redo();
    // Undo and redo, twice over, give back exactly the states before and after.
    void CheckUndoRedo(const QString& before, const QString& after);

private:
    std::unique_ptr<SourceView> view_;
    std::unique_ptr<LineBuffer> memory_;
    std::shared_ptr<SourceControl> control_;
    std::shared_ptr<LexClass> lex_;
};
