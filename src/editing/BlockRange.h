#pragma once

#include <QString>
#include <cstdint>

class SourceBuffer;
class SourceControl;

// The lines a block command works on: the selection, or the caret's line, normalised so
// that the start doesn't lie behind the end, with what the normalising swapped, so that the
// selection can be given back in the direction it had.
struct BlockRange {
    int32_t StartColumn = 0;
    int32_t StartLine = 0;
    int32_t EndColumn = 0;
    int32_t EndLine = 0;
    int32_t CaretColumn = 0;
    int32_t CaretLine = 0;
    bool ColumnsSwapped = false;
    bool LinesSwapped = false;
    bool HadSelection = false;

    // Without a selection both ends are the caret; a caret at column 0 takes the line
    // below as the end, so that its own line takes part.
    static BlockRange Read(const SourceControl& ctl);

    // A selection that ends at the start of a line leaves that line out.
    bool TakesPart(int32_t line) const { return line < EndLine || EndColumn != 0; }

    // Text came or went at the start of `line`: the start column (on the start line), else
    // the end column (on the end line), and the caret column (on its line) move by `delta`
    // where they lie behind `from`, never below 0. A `from` of -1 moves them wherever they
    // are, and then the start line's column is the one that moves even at column 0.
    void Shift(int32_t line, int32_t from, int32_t delta);

    // Selects the range again, its ends swapped back.
    void Select(SourceControl& ctl) const;

    // The last line that takes part and is in the buffer.
    int32_t LastLine(const SourceBuffer& buffer) const;
    // Ends the operation: rescans the lines, places the caret, and selects the range again
    // if there was a selection.
    void Finish(SourceBuffer& buffer, SourceControl& ctl) const;

    // InsertText of a text that may be empty, where the end position isn't wanted.
    static void Insert(SourceBuffer& buffer, int32_t column, int32_t line, const QString& text);
};
