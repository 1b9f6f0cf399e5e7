#pragma once

#include <QString>
#include <cstdint>
#include <memory>

class ISourceLex4;
class ISourceOp;

// The text buffer of a source editor: lines of 16-bit characters, each with data words,
// an undo stack that carries operations, and a line scanner. Lines and columns are
// zero-based; columns count 16-bit code units.
class SourceBuffer {
public:
    virtual ~SourceBuffer() = default;

    // An empty buffer has one line.
    virtual int32_t NumLines() const = 0;
    // The text of a line, without its line end.
    virtual QString GetLine(int32_t line) const = 0;
    virtual int32_t GetLineLength(int32_t line) const = 0;

    // Word 1 holds the scanner's line flags; it moves with its line and survives edits of
    // other lines.
    virtual int32_t GetLineData(int32_t line, int32_t word) const = 0;
    virtual void SetLineData(int32_t line, int32_t word, int32_t value) = 0;

    // CR LF, CR and LF in `text` make new lines. The end position is where the insert ends.
    virtual void InsertText(int32_t column, int32_t line, const QString& text, int32_t reserved,
                            int32_t& endColumn, int32_t& endLine) = 0;
    virtual void DeleteText(int32_t startColumn, int32_t startLine, int32_t endColumn,
                            int32_t endLine) = 0;

    // Scans lines `first` to `last` with the scanner; `scanTo` comes back as the last line
    // that was scanned.
    virtual void UpdateLines(int32_t first, int32_t last, int32_t& scanTo) = 0;
    // Ends an operation: repaints the lines and puts the caret at the given place.
    virtual void RefreshLines(int32_t flags, int32_t first, int32_t last, int32_t caretColumn,
                              int32_t caretLine) = 0;

    virtual std::shared_ptr<ISourceLex4> Lex() const = 0;
    virtual void SetLex(std::shared_ptr<ISourceLex4> lex) = 0;

    // Runs the operation's DoOp and makes it the newest undo step; the buffer owns it then.
    virtual void ExecuteOp(std::unique_ptr<ISourceOp> op) = 0;
    virtual void Undo() = 0;
    virtual void Redo() = 0;
    virtual bool CanUndo() const = 0;
    virtual bool CanRedo() const = 0;
    virtual void ClearUndoStack() = 0;
    virtual void ClearAllBookmarks() = 0;

    virtual bool Modified() const = 0;
    virtual void SetModified(bool modified) = 0;

    // Convenience for the contract's out-argument forms.
    void GetLine(int32_t line, QString& text) const { text = GetLine(line); }
    void GetLineLength(int32_t line, int32_t& length) const { length = GetLineLength(line); }
    void CanUndo(bool& result) const { result = CanUndo(); }
    void CanRedo(bool& result) const { result = CanRedo(); }
};
