#pragma once

#include <cstdint>

// What an editing operation needs of the text control besides its buffer: the caret, the
// selection with its direction, and the indent step. Lines and columns are zero-based,
// columns in 16-bit code units.
class SourceControl {
public:
    virtual ~SourceControl() = default;

    virtual int32_t CursorCol() const = 0;
    virtual int32_t CursorLine() const = 0;
    virtual bool HasSelection() const = 0;
    // Start is where the selection was begun, so it may lie behind the end.
    virtual void GetSelection(int32_t& startColumn, int32_t& startLine, int32_t& endColumn,
                              int32_t& endLine) const = 0;
    // Selects; the caret goes to the end given.
    virtual void SetSelection(int32_t startColumn, int32_t startLine, int32_t endColumn,
                              int32_t endLine) = 0;
    virtual int32_t TabSize() const = 0;
};
