#pragma once

#include "language/SourceBuffer.h"

#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

class SourceControl;

// A text buffer in memory, without a widget: lines of 16-bit characters, each with its data
// word, scanned by the buffer's lexer, with an undo stack of its own. Operations run through
// ExecuteOp exactly as in the editor; edits made outside an operation are recorded as undo
// steps of their own, the way the editor records typing. Command-line tools and tests use it
// where no editor is wanted.
class LineBuffer final : public SourceBuffer {
public:
    LineBuffer();
    ~LineBuffer() override;
    LineBuffer(const LineBuffer&) = delete;
    LineBuffer& operator=(const LineBuffer&) = delete;

    int32_t NumLines() const override { return static_cast<int32_t>(lines_.size()); }
    QString GetLine(int32_t line) const override;
    int32_t GetLineLength(int32_t line) const override;
    int32_t GetLineData(int32_t line, int32_t word) const override;
    void SetLineData(int32_t line, int32_t word, int32_t value) override;
    void InsertText(int32_t column, int32_t line, const QString& text, int32_t reserved,
                    int32_t& endColumn, int32_t& endLine) override;
    void DeleteText(int32_t startColumn, int32_t startLine, int32_t endColumn,
                    int32_t endLine) override;
    void UpdateLines(int32_t first, int32_t last, int32_t& scanTo) override;
    void RefreshLines(int32_t flags, int32_t first, int32_t last, int32_t caretColumn,
                      int32_t caretLine) override;
    std::shared_ptr<ISourceLex4> Lex() const override { return lex_; }
    void SetLex(std::shared_ptr<ISourceLex4> lex) override { lex_ = std::move(lex); }
    void ExecuteOp(std::unique_ptr<ISourceOp> op) override;
    void Undo() override;
    void Redo() override;
    bool CanUndo() const override { return position_ > 0; }
    bool CanRedo() const override { return position_ < steps_.size(); }
    void ClearUndoStack() override;
    void ClearAllBookmarks() override {}
    bool Modified() const override;
    void SetModified(bool modified) override;

    using SourceBuffer::CanRedo;
    using SourceBuffer::CanUndo;
    using SourceBuffer::GetLine;
    using SourceBuffer::GetLineLength;

    // The lines as they stand, without copying.
    const QString& LineText(int32_t line) const;
    // The whole text, lines joined by `lineEnd`.
    QString AllText(const QString& lineEnd = QStringLiteral("\n")) const;
    // Replaces the text; CR LF, CR and LF end lines. Forgets the undo steps and the flags.
    void SetAllText(const QString& text);
    // Takes the lines as they are: characters 13 and 10 inside one stay in it. At least one.
    void SetLines(std::vector<QString> lines);

    // The caret and selection of this buffer, for the operations' Ctl. The caret stays
    // where it is put: edits don't move it, the end of an operation places it.
    std::shared_ptr<SourceControl> Control() const;
    void SetTabSize(int32_t size) { tabSize_ = size; }

private:
    class Caret;
    struct Line {
        QString Text;
        int32_t Data = 0;
    };
    // One undo step: an operation, or an edit made outside one.
    struct Step {
        std::unique_ptr<ISourceOp> Op;
        bool Insert = false;
        int32_t Column = 0, Line = 0, EndColumn = 0, EndLine = 0;
        QString Text;
    };

    // A position moved into the text: lines past the last mean the end of the text.
    void clampPosition(int32_t& column, int32_t& line) const;
    // The inserted text's end position.
    void insertRaw(int32_t column, int32_t line, const QString& text, int32_t& endColumn,
                   int32_t& endLine);
    // The deleted text, lines joined by LF. The range must be in the text, start first.
    QString deleteRaw(int32_t startColumn, int32_t startLine, int32_t endColumn, int32_t endLine);
    // An edit made outside an operation becomes an undo step.
    void record(bool insert, int32_t column, int32_t line, int32_t endColumn, int32_t endLine,
                QString text);
    void push(Step step);
    void apply(Step& step, bool undo);

    std::vector<Line> lines_;
    std::shared_ptr<ISourceLex4> lex_;
    std::shared_ptr<Caret> caret_;
    int32_t tabSize_ = 3;
    std::vector<Step> steps_;
    size_t position_ = 0;
    // The undo position of the last save; none once that step was cut off.
    std::ptrdiff_t savePoint_ = 0;
    bool forcedModified_ = false;
    // Edits inside an operation, an undo or a redo make no steps of their own.
    int replaying_ = 0;
};
