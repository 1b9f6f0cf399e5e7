#pragma once

#include "language/ISourceOp.h"

#include <cstdint>
#include <memory>
#include <vector>

class Moriox;
class SourceControl;

// Re-indents a whole program as one undoable step. It doesn't parse: the block level comes
// from the flags the lexer left on every line, so what counts as a block is what the
// keyword table says. Only spaces change: in front of a line or its label, behind a label,
// and at the end of a line. Every line must carry fresh flags before the run. The first run
// fixes the settings and the caret it starts from; a redo measures the lines anew with them.
class OpFormat final : public ISourceOp {
public:
    std::shared_ptr<SourceControl> Ctl;
    // The settings to follow (`TabSize`, `Margin`, `IndentStar`, `IndentBang`); null means
    // the program's own.
    const Moriox* Options = nullptr;

    // What a run did to one line, for its undo.
    struct LineRecord {
        // Spaces taken away in front of a label.
        int32_t LeadRemoved = 0;
        // The label's characters, colon included; 0 without one.
        int32_t LabelLength = 0;
        // Spaces added (positive) or removed (negative) behind the label.
        int32_t GapChange = 0;
        // Spaces taken away at the end of the line.
        int32_t TrailRemoved = 0;
    };

    void ISourceOp_DoOp(SourceBuffer& buffer) override;
    void ISourceOp_UndoOp(SourceBuffer& buffer) override;

    // The records of the last run, one per line from line 0.
    const std::vector<LineRecord>& Records() const { return records_; }

    // Levels a line of these flags closes in front of itself and opens behind itself.
    static void LevelChange(int32_t flags, int32_t& before, int32_t& after);

private:
    void FormatLines(SourceBuffer& buffer, int32_t tabSize, int32_t margin, int32_t indentStar,
                     int32_t indentBang);
    // Keeps the caret on its line and ends the run.
    void finish(SourceBuffer& buffer, int32_t column, int32_t line);

    std::vector<LineRecord> records_;
    bool ran_ = false;
    int32_t tabSize_ = 0, margin_ = 0, indentStar_ = 0, indentBang_ = 0;
    // The caret and selection before the run; undo gives them back.
    bool hadSelection_ = false;
    int32_t anchorColumn_ = 0, anchorLine_ = 0, caretColumn_ = 0, caretLine_ = 0;
};
