#include "language/SourceViewControl.h"

#include "language/SourceView.h"

SourceViewControl::SourceViewControl(SourceView* view) : view_(view) {}

int32_t SourceViewControl::CursorCol() const {
    return view_ ? view_->CursorCol() : 0;
}

int32_t SourceViewControl::CursorLine() const {
    return view_ ? view_->CursorLine() : 0;
}

bool SourceViewControl::HasSelection() const {
    return view_ && view_->HasSelection();
}

void SourceViewControl::GetSelection(int32_t& startColumn, int32_t& startLine, int32_t& endColumn,
                                     int32_t& endLine) const {
    if (view_) {
        view_->GetSelection(startColumn, startLine, endColumn, endLine);
        return;
    }
    startColumn = startLine = endColumn = endLine = 0;
}

void SourceViewControl::SetSelection(int32_t startColumn, int32_t startLine, int32_t endColumn,
                                     int32_t endLine) {
    if (view_)
        view_->SetSelection(startColumn, startLine, endColumn, endLine);
}

int32_t SourceViewControl::TabSize() const {
    return view_ ? view_->TabSize() : 0;
}
