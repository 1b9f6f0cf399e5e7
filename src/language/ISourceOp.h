#pragma once

class SourceBuffer;

// An undoable editing operation. The command fills its public fields and hands it to
// SourceBuffer::ExecuteOp; all its edits happen inside DoOp, through InsertText and
// DeleteText, and it keeps what it needs to reverse them itself. The same object can be
// redone and undone any number of times.
class ISourceOp {
public:
    virtual ~ISourceOp() = default;
    virtual void ISourceOp_DoOp(SourceBuffer& buffer) = 0;
    virtual void ISourceOp_UndoOp(SourceBuffer& buffer) = 0;
};
