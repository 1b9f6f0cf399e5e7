#include "EditHarness.h"

#include "language/ISourceOp.h"
#include "language/LexClass.h"
#include "language/LineBuffer.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceControl.h"
#include "language/SourceView.h"
#include "language/SourceViewControl.h"

#include <QtTest>

EditHarness::EditHarness(Kind kind) : lex_(std::make_shared<LexClass>()) {
    if (kind == Editor) {
        view_ = std::make_unique<SourceView>();
        view_->resize(640, 400);
        view_->show();
        [[maybe_unused]] const bool exposed = QTest::qWaitForWindowExposed(view_.get());
        view_->setFocus();
        control_ = std::make_shared<SourceViewControl>(view_.get());
    } else {
        memory_ = std::make_unique<LineBuffer>();
        control_ = memory_->Control();
    }
    Buffer().SetLex(lex_);
    SetTabSize(3);
}

EditHarness::~EditHarness() = default;

SourceBuffer& EditHarness::Buffer() const {
    if (view_)
        return view_->Buffer();
    return *memory_;
}

void EditHarness::SetText(const QString& text) {
    if (view_)
        view_->Buffer().SetAllText(text);
    else
        memory_->SetAllText(text);
    int32_t last = Buffer().NumLines() - 1;
    Buffer().UpdateLines(0, last, last);
    Buffer().ClearUndoStack();
    Buffer().SetModified(false);
    PlaceCaret(0, 0);
}

QString EditHarness::Text() const {
    return view_ ? view_->Buffer().AllText() : memory_->AllText();
}

void EditHarness::SetTabSize(int32_t size) {
    if (view_)
        view_->SetTabSize(size);
    else
        memory_->SetTabSize(size);
}

void EditHarness::Select(int32_t startColumn, int32_t startLine, int32_t endColumn,
                         int32_t endLine) {
    control_->SetSelection(startColumn, startLine, endColumn, endLine);
}

QString EditHarness::State() const {
    int32_t a = 0, b = 0, c = 0, d = 0;
    control_->GetSelection(a, b, c, d);
    return QStringLiteral("%1|%2,%3>%4,%5").arg(Text()).arg(a).arg(b).arg(c).arg(d);
}

void EditHarness::Type(const QString& text) {
    if (view_) {
        QTest::keyClicks(view_.get(), text);
        return;
    }
    const int32_t column = control_->CursorCol();
    const int32_t line = control_->CursorLine();
    int32_t endColumn = 0;
    int32_t endLine = 0;
    memory_->InsertText(column, line, text, 0, endColumn, endLine);
    PlaceCaret(endColumn, endLine);
}

void EditHarness::Run(std::unique_ptr<ISourceOp> op) {
    Buffer().ExecuteOp(std::move(op));
}

void EditHarness::Format(std::unique_ptr<ISourceOp> op) {
    int32_t last = Buffer().NumLines() - 1;
    Buffer().UpdateLines(0, last, last);
    Run(std::move(op));
}

void EditHarness::Undo() {
    Buffer().Undo();
}

void EditHarness::Redo() {
    Buffer().Redo();
}

void EditHarness::CheckUndoRedo(const QString& before, const QString& after) {
    for (int round = 0; round < 2; ++round) {
        Undo();
        QCOMPARE(State(), before);
        Redo();
        QCOMPARE(State(), after);
    }
}
