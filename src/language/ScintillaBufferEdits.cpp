#include "language/ScintillaBuffer.h"

#include "language/Utf8Columns.h"

#include <QScrollBar>
#include <QSignalBlocker>
#include <Qsci/qsciscintillabase.h>
#include <algorithm>

// Edits within lines made inside an operation are kept aside as the UTF-8 Scintilla takes,
// and handed over as one replace per run of neighbouring lines: each Scintilla edit costs
// several searches of its line index.

namespace {

// Pending lines this close to each other go to Scintilla in one edit: copying a few
// unchanged lines costs less than the line-index searches of another edit.
constexpr int32_t kJoinGap = 4;

void appendUtf8(std::string& out, const QString& text) {
    const char16_t* units = reinterpret_cast<const char16_t*>(text.constData());
    const auto count = static_cast<size_t>(text.size());
    const size_t base = out.size();
    out.resize(base + count);
    char* dst = out.data() + base;
    for (size_t i = 0; i < count; ++i) {
        if (units[i] >= 0x80) {
            out.resize(base);
            out += text.toUtf8().toStdString();
            return;
        }
        dst[i] = static_cast<char>(units[i]);
    }
}

std::pair<int, int> rangeOf(const QScrollBar* bar) {
    return {bar->minimum(), bar->maximum()};
}

} // namespace

void ScintillaBuffer::pendLine(int32_t line) {
    if (line == edits_.LastLine())
        return;
    // Edits go to the last pending line only: anything else hands those over first.
    if (line < edits_.LastLine())
        flushEdits();
    const int32_t last = edits_.LastLine();
    const bool join = last >= 0 && line - last - 1 <= kJoinGap;
    if (join) {
        // The line end of the last pending line and the unchanged lines up to this one.
        const int32_t count =
            fetchRange(pendingEnd_, sci(QsciScintillaBase::SCI_POSITIONFROMLINE, line));
        runBytes_.assign(lineBytes_.data(), static_cast<size_t>(count));
    }
    const std::string_view bytes = lineSpan(line, &pendingEnd_);
    edits_.Add(line, bytes, join ? std::string_view(runBytes_) : std::string_view(), join);
}

int32_t ScintillaBuffer::pendingOffset(int32_t column) const {
    std::string_view bytes;
    edits_.Find(edits_.LastLine(), bytes);
    const auto count = static_cast<int32_t>(bytes.size());
    if (column <= 0)
        return 0;
    if (Utf8Columns::IsAscii(bytes.data(), count))
        return std::min(column, count);
    return Utf8Columns::ByteOffset(bytes.data(), count, column);
}

void ScintillaBuffer::insertInLine(int32_t column, int32_t line, const QString& text,
                                   int32_t& endColumn, int32_t& endLine) {
    line = std::clamp(line, 0, NumLines() - 1);
    endLine = line;
    pendLine(line);
    const int32_t offset = pendingOffset(column);
    std::string_view bytes;
    edits_.Find(line, bytes);
    const int32_t startColumn =
        Utf8Columns::IsAscii(bytes.data(), offset)
            ? offset
            : Utf8Columns::Column(bytes.data(), static_cast<int32_t>(bytes.size()), offset);
    endColumn = startColumn + static_cast<int32_t>(text.size());
    if (text.isEmpty())
        return;
    runBytes_.clear();
    appendUtf8(runBytes_, text);
    edits_.ReplaceInLast(static_cast<size_t>(offset), 0, runBytes_);
}

void ScintillaBuffer::deleteInLine(int32_t startColumn, int32_t endColumn, int32_t line) {
    pendLine(line);
    int32_t from = pendingOffset(startColumn);
    int32_t to = pendingOffset(endColumn);
    if (to < from)
        std::swap(from, to);
    if (to > from)
        edits_.ReplaceInLast(static_cast<size_t>(from), static_cast<size_t>(to - from), {});
}

void ScintillaBuffer::flushEdits() const {
    if (edits_.IsEmpty())
        return;
    forgetReads();
    // Reads from here on must see Scintilla, not the pending text.
    PendingLineEdits edits;
    std::swap(edits, edits_);
    // The caret and anchor are put back by line and column if their line is replaced;
    // Scintilla would move them to the start of the replaced text.
    int32_t caretColumn = 0, caretLine = 0, anchorColumn = 0, anchorLine = 0;
    ColumnLineOf(sci(QsciScintillaBase::SCI_GETCURRENTPOS), caretColumn, caretLine);
    ColumnLineOf(sci(QsciScintillaBase::SCI_GETANCHOR), anchorColumn, anchorLine);
    bool selectionReplaced = false;

    // Each restored line state asks for a repaint; one at the end will do.
    QWidget* viewport = editor_.viewport();
    const bool updates = viewport->updatesEnabled();
    const auto& runs = edits.Runs();
    if (updates && runs.back().Last - runs.front().First > 64)
        viewport->setUpdatesEnabled(false);
    // A run of several lines goes and comes back, and Scintilla sets the scroll bars' ranges
    // after each half: each change repaints the bar and posts an event to the scroll area,
    // and near the end of the text the view moves up as the lines go. The lines are as many
    // afterwards: the view goes back to its first line, and the bars are told and drawn
    // once, at the end.
    const long top = sci(QsciScintillaBase::SCI_GETFIRSTVISIBLELINE);
    QScrollBar* bars[] = {editor_.verticalScrollBar(), editor_.horizontalScrollBar()};
    const std::pair<int, int> ranges[] = {rangeOf(bars[0]), rangeOf(bars[1])};
    const bool quiet = runs.size() > 1;
    bool drawn[] = {false, false};
    {
        const QSignalBlocker vertical(quiet ? bars[0] : nullptr);
        const QSignalBlocker horizontal(quiet ? bars[1] : nullptr);
        for (size_t i = 0; quiet && i < std::size(bars); ++i) {
            drawn[i] = bars[i]->updatesEnabled();
            bars[i]->setUpdatesEnabled(false);
        }
        for (const PendingLineEdits::Run& run : runs) {
            replaceRun(run, edits.Text(run));
            const auto inRun = [&](int32_t line) { return line >= run.First && line <= run.Last; };
            selectionReplaced = selectionReplaced || inRun(caretLine) || inRun(anchorLine);
        }
        if (sci(QsciScintillaBase::SCI_GETFIRSTVISIBLELINE) != top)
            sci(QsciScintillaBase::SCI_SETFIRSTVISIBLELINE, static_cast<unsigned long>(top));
    }
    for (size_t i = 0; quiet && i < std::size(bars); ++i) {
        if (drawn[i])
            bars[i]->setUpdatesEnabled(true);
        if (rangeOf(bars[i]) != ranges[i])
            Q_EMIT bars[i]->rangeChanged(bars[i]->minimum(), bars[i]->maximum());
    }
    if (updates && !viewport->updatesEnabled())
        viewport->setUpdatesEnabled(true);
    if (selectionReplaced)
        sci(QsciScintillaBase::SCI_SETSEL,
            static_cast<unsigned long>(PositionOf(anchorColumn, anchorLine)),
            PositionOf(caretColumn, caretLine));
    forgetReads();
    edits.Clear();
    std::swap(edits, edits_);
}

std::vector<std::pair<int32_t, long>> ScintillaBuffer::markedLines(int32_t first,
                                                                   int32_t last) const {
    constexpr long allMarkers = -1;
    std::vector<std::pair<int32_t, long>> marked;
    for (long line = sci(QsciScintillaBase::SCI_MARKERNEXT, first, allMarkers);
         line >= 0 && line <= last;
         line = sci(QsciScintillaBase::SCI_MARKERNEXT, line + 1, allMarkers))
        marked.emplace_back(static_cast<int32_t>(line),
                            sci(QsciScintillaBase::SCI_MARKERGET, line));
    return marked;
}

void ScintillaBuffer::replaceRun(const PendingLineEdits::Run& run, std::string_view text) const {
    const int32_t first = run.First;
    const int32_t last = run.Last;
    // Whole lines go and come back: their data words and markers are taken first.
    std::vector<int32_t> states;
    std::vector<std::pair<int32_t, long>> markers;
    if (first != last) {
        for (int32_t line = first; line <= last; ++line)
            states.push_back(static_cast<int32_t>(sci(QsciScintillaBase::SCI_GETLINESTATE, line)));
        markers = markedLines(first, last);
    }
    const long start = sci(QsciScintillaBase::SCI_POSITIONFROMLINE, first);
    const long end = sci(QsciScintillaBase::SCI_GETLINEENDPOSITION, last);
    sci(QsciScintillaBase::SCI_SETTARGETRANGE, static_cast<unsigned long>(start), end);
    editor_.SendScintilla(QsciScintillaBase::SCI_REPLACETARGET,
                          static_cast<unsigned long>(text.size()), text.data());
    // A message pinned to a line is about its old text: rewritten lines lose it.
    constexpr long messageMask = 1L << MessageMarker;
    for (long line = sci(QsciScintillaBase::SCI_MARKERNEXT, first, messageMask);
         line >= 0 && line <= last;
         line = sci(QsciScintillaBase::SCI_MARKERNEXT, line + 1, messageMask))
        sci(QsciScintillaBase::SCI_MARKERDELETE, static_cast<unsigned long>(line), MessageMarker);
    if (first == last)
        return;
    for (size_t i = 0; i < states.size(); ++i)
        sci(QsciScintillaBase::SCI_SETLINESTATE, first + static_cast<unsigned long>(i), states[i]);
    // Scintilla gathered the markers of the removed lines on one of the new ones.
    for (const auto& [line, set] : markedLines(first, last))
        sci(QsciScintillaBase::SCI_MARKERDELETE, static_cast<unsigned long>(line), -1);
    for (const auto& [line, set] : markers) {
        if (const long kept = set & ~(1L << MessageMarker))
            sci(QsciScintillaBase::SCI_MARKERADDSET, static_cast<unsigned long>(line), kept);
    }
}
