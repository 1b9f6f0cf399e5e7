#include "language/LineBuffer.h"

#include "language/ISourceLex4.h"
#include "language/ISourceOp.h"
#include "language/SourceControl.h"

#include <algorithm>

namespace {

// The pieces of a text between its line ends: CR LF, CR and LF each end a line.
std::vector<QString> splitLines(const QString& text) {
    std::vector<QString> pieces;
    qsizetype from = 0;
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = text.at(i).unicode();
        if (c != u'\r' && c != u'\n')
            continue;
        pieces.push_back(text.mid(from, i - from));
        if (c == u'\r' && i + 1 < size && text.at(i + 1) == u'\n')
            ++i;
        from = i + 1;
    }
    pieces.push_back(text.mid(from));
    return pieces;
}

} // namespace

// The caret and selection kept beside the lines. It clamps what it is given to the text, as
// a caret in an editor can't stand outside it.
class LineBuffer::Caret final : public SourceControl {
public:
    explicit Caret(const LineBuffer* buffer) : buffer_(buffer) {}
    void Detach() { buffer_ = nullptr; }

    int32_t CursorCol() const override { return clamped(caretColumn_, caretLine_); }
    int32_t CursorLine() const override { return clampedLine(caretLine_); }
    bool HasSelection() const override {
        return clampedLine(anchorLine_) != CursorLine() ||
               clamped(anchorColumn_, anchorLine_) != CursorCol();
    }
    void GetSelection(int32_t& startColumn, int32_t& startLine, int32_t& endColumn,
                      int32_t& endLine) const override {
        startColumn = clamped(anchorColumn_, anchorLine_);
        startLine = clampedLine(anchorLine_);
        endColumn = CursorCol();
        endLine = CursorLine();
    }
    void SetSelection(int32_t startColumn, int32_t startLine, int32_t endColumn,
                      int32_t endLine) override {
        place(startColumn, startLine, anchorColumn_, anchorLine_);
        place(endColumn, endLine, caretColumn_, caretLine_);
    }
    int32_t TabSize() const override { return buffer_ ? buffer_->tabSize_ : 0; }

    void PlaceCaret(int32_t column, int32_t line) { SetSelection(column, line, column, line); }

private:
    int32_t clampedLine(int32_t line) const {
        return buffer_ ? std::clamp(line, 0, buffer_->NumLines() - 1) : 0;
    }
    int32_t clamped(int32_t column, int32_t line) const {
        if (!buffer_)
            return 0;
        int32_t c = column;
        int32_t l = line;
        buffer_->clampPosition(c, l);
        return c;
    }
    void place(int32_t column, int32_t line, int32_t& toColumn, int32_t& toLine) const {
        if (buffer_)
            buffer_->clampPosition(column, line);
        toColumn = column;
        toLine = line;
    }

    const LineBuffer* buffer_;
    int32_t anchorColumn_ = 0, anchorLine_ = 0, caretColumn_ = 0, caretLine_ = 0;
};

LineBuffer::LineBuffer() : lines_(1), caret_(std::make_shared<Caret>(this)) {}

LineBuffer::~LineBuffer() {
    // Operations may still hold the control; it must not reach back into a dead buffer.
    caret_->Detach();
}

std::shared_ptr<SourceControl> LineBuffer::Control() const {
    return caret_;
}

const QString& LineBuffer::LineText(int32_t line) const {
    static const QString none;
    return line >= 0 && line < NumLines() ? lines_[static_cast<size_t>(line)].Text : none;
}

QString LineBuffer::GetLine(int32_t line) const {
    return LineText(line);
}

int32_t LineBuffer::GetLineLength(int32_t line) const {
    return static_cast<int32_t>(LineText(line).size());
}

int32_t LineBuffer::GetLineData(int32_t line, int32_t word) const {
    if (word != 1 || line < 0 || line >= NumLines())
        return 0;
    return lines_[static_cast<size_t>(line)].Data;
}

void LineBuffer::SetLineData(int32_t line, int32_t word, int32_t value) {
    if (word == 1 && line >= 0 && line < NumLines())
        lines_[static_cast<size_t>(line)].Data = value;
}

void LineBuffer::clampPosition(int32_t& column, int32_t& line) const {
    if (line >= NumLines()) {
        line = NumLines() - 1;
        column = GetLineLength(line);
        return;
    }
    line = std::max(line, 0);
    column = std::clamp(column, 0, GetLineLength(line));
}

void LineBuffer::insertRaw(int32_t column, int32_t line, const QString& text, int32_t& endColumn,
                           int32_t& endLine) {
    // An insert past the last line goes to the last line, at the column asked for.
    line = std::min(line, NumLines() - 1);
    clampPosition(column, line);
    QString& target = lines_[static_cast<size_t>(line)].Text;
    if (!text.contains(QLatin1Char('\r')) && !text.contains(QLatin1Char('\n'))) {
        target.insert(column, text);
        endColumn = column + static_cast<int32_t>(text.size());
        endLine = line;
        return;
    }
    std::vector<QString> pieces = splitLines(text);
    const QString tail = target.mid(column);
    target.truncate(column);
    target += pieces.front();
    endColumn = static_cast<int32_t>(pieces.back().size());
    pieces.back() += tail;
    std::vector<Line> added(pieces.size() - 1);
    for (size_t i = 1; i < pieces.size(); ++i)
        added[i - 1].Text = std::move(pieces[i]);
    lines_.insert(lines_.begin() + line + 1, std::make_move_iterator(added.begin()),
                  std::make_move_iterator(added.end()));
    endLine = line + static_cast<int32_t>(added.size());
}

QString LineBuffer::deleteRaw(int32_t startColumn, int32_t startLine, int32_t endColumn,
                              int32_t endLine) {
    QString& first = lines_[static_cast<size_t>(startLine)].Text;
    if (startLine == endLine) {
        const QString taken = first.mid(startColumn, endColumn - startColumn);
        first.remove(startColumn, endColumn - startColumn);
        return taken;
    }
    QString taken = first.mid(startColumn);
    for (int32_t line = startLine + 1; line < endLine; ++line)
        taken += QLatin1Char('\n') + lines_[static_cast<size_t>(line)].Text;
    const QString& last = lines_[static_cast<size_t>(endLine)].Text;
    taken += QLatin1Char('\n') + last.left(endColumn);
    first.truncate(startColumn);
    first += QStringView(last).mid(endColumn);
    lines_.erase(lines_.begin() + startLine + 1, lines_.begin() + endLine + 1);
    return taken;
}

void LineBuffer::InsertText(int32_t column, int32_t line, const QString& text, int32_t,
                            int32_t& endColumn, int32_t& endLine) {
    line = std::min(line, NumLines() - 1);
    clampPosition(column, line);
    insertRaw(column, line, text, endColumn, endLine);
    if (!text.isEmpty())
        record(true, column, line, endColumn, endLine, text);
}

void LineBuffer::DeleteText(int32_t startColumn, int32_t startLine, int32_t endColumn,
                            int32_t endLine) {
    clampPosition(startColumn, startLine);
    clampPosition(endColumn, endLine);
    if (endLine < startLine || (endLine == startLine && endColumn < startColumn)) {
        std::swap(startColumn, endColumn);
        std::swap(startLine, endLine);
    }
    QString taken = deleteRaw(startColumn, startLine, endColumn, endLine);
    if (!taken.isEmpty())
        record(false, startColumn, startLine, endColumn, endLine, std::move(taken));
}

void LineBuffer::UpdateLines(int32_t first, int32_t last, int32_t& scanTo) {
    first = std::max(first, 0);
    last = std::min(std::max(last, scanTo), NumLines() - 1);
    scanTo = last;
    if (!lex_)
        return;
    for (int32_t line = first; line <= last; ++line)
        lex_->ISourceLex4_ScanLine(*this, line, QStringView(lines_[static_cast<size_t>(line)].Text),
                                   nullptr);
}

void LineBuffer::RefreshLines(int32_t, int32_t, int32_t, int32_t caretColumn, int32_t caretLine) {
    caret_->PlaceCaret(caretColumn, caretLine);
}

void LineBuffer::record(bool insert, int32_t column, int32_t line, int32_t endColumn,
                        int32_t endLine, QString text) {
    if (replaying_ != 0)
        return;
    Step step;
    step.Insert = insert;
    step.Column = column;
    step.Line = line;
    step.EndColumn = endColumn;
    step.EndLine = endLine;
    step.Text = std::move(text);
    push(std::move(step));
}

void LineBuffer::push(Step step) {
    steps_.resize(position_);
    if (savePoint_ > static_cast<std::ptrdiff_t>(position_))
        savePoint_ = -1;
    steps_.push_back(std::move(step));
    position_ = steps_.size();
}

void LineBuffer::apply(Step& step, bool undo) {
    ++replaying_;
    struct Done {
        int& depth;
        ~Done() { --depth; }
    } done{replaying_};
    if (step.Op) {
        if (undo)
            step.Op->ISourceOp_UndoOp(*this);
        else
            step.Op->ISourceOp_DoOp(*this);
        return;
    }
    int32_t column = 0;
    int32_t line = 0;
    // An insert is undone by deleting what it made; a delete by inserting what it took.
    if (step.Insert != undo) {
        insertRaw(step.Column, step.Line, step.Text, column, line);
        caret_->PlaceCaret(column, line);
    } else {
        deleteRaw(step.Column, step.Line, step.EndColumn, step.EndLine);
        caret_->PlaceCaret(step.Column, step.Line);
    }
    if (lex_) {
        const int32_t last = std::max(step.Line, std::max(line, step.EndLine));
        int32_t scanTo = last;
        UpdateLines(step.Line, std::min(last, NumLines() - 1), scanTo);
    }
}

void LineBuffer::ExecuteOp(std::unique_ptr<ISourceOp> op) {
    if (!op)
        return;
    Step step;
    step.Op = std::move(op);
    ISourceOp* raw = step.Op.get();
    push(std::move(step));
    ++replaying_;
    struct Done {
        int& depth;
        ~Done() { --depth; }
    } done{replaying_};
    raw->ISourceOp_DoOp(*this);
}

void LineBuffer::Undo() {
    if (position_ == 0)
        return;
    --position_;
    apply(steps_[position_], true);
}

void LineBuffer::Redo() {
    if (position_ >= steps_.size())
        return;
    apply(steps_[position_], false);
    ++position_;
}

void LineBuffer::ClearUndoStack() {
    // Forgetting the steps doesn't change whether the text differs from the saved one.
    forcedModified_ = Modified();
    steps_.clear();
    position_ = 0;
    savePoint_ = 0;
}

bool LineBuffer::Modified() const {
    return forcedModified_ || savePoint_ != static_cast<std::ptrdiff_t>(position_);
}

void LineBuffer::SetModified(bool modified) {
    forcedModified_ = modified;
    if (!modified)
        savePoint_ = static_cast<std::ptrdiff_t>(position_);
}

QString LineBuffer::AllText(const QString& lineEnd) const {
    qsizetype size = 0;
    for (const Line& line : lines_)
        size += line.Text.size() + lineEnd.size();
    QString text;
    text.reserve(size);
    for (size_t i = 0; i < lines_.size(); ++i) {
        if (i > 0)
            text += lineEnd;
        text += lines_[i].Text;
    }
    return text;
}

void LineBuffer::SetAllText(const QString& text) {
    SetLines(splitLines(text));
}

void LineBuffer::SetLines(std::vector<QString> lines) {
    lines_.clear();
    lines_.resize(std::max<size_t>(lines.size(), 1));
    for (size_t i = 0; i < lines.size(); ++i)
        lines_[i].Text = std::move(lines[i]);
    steps_.clear();
    position_ = 0;
    savePoint_ = 0;
    forcedModified_ = false;
    caret_->PlaceCaret(0, 0);
}
