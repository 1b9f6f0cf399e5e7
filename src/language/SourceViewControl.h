#pragma once

#include "language/SourceControl.h"

#include <QPointer>

class SourceView;

// The control of an operation when the text lives in the editor widget. A view that is gone
// reads as a caret at the start and no selection.
class SourceViewControl final : public SourceControl {
public:
    explicit SourceViewControl(SourceView* view);

    int32_t CursorCol() const override;
    int32_t CursorLine() const override;
    bool HasSelection() const override;
    void GetSelection(int32_t& startColumn, int32_t& startLine, int32_t& endColumn,
                      int32_t& endLine) const override;
    void SetSelection(int32_t startColumn, int32_t startLine, int32_t endColumn,
                      int32_t endLine) override;
    int32_t TabSize() const override;

private:
    QPointer<SourceView> view_;
};
