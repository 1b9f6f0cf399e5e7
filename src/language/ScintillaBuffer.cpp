#include "language/ScintillaBuffer.h"

#include "language/ISourceOp.h"
#include "language/Utf8Columns.h"

#include <QScopeGuard>
#include <Qsci/qsciscintillabase.h>
#include <algorithm>
#include <cstring>

namespace {

// Notifications of inserts and deletes are never let through: the component answers each
// with a walk from the start of the document to the change. Only the undo tokens of
// operations are wanted (their notification carries the performed-undo/redo flag too).
constexpr long kOperationEventMask = QsciScintillaBase::SC_MOD_CONTAINER;
// The notices sent before a change cost nothing and carry no text for the component to
// count: marks of lines read them to go when their line is edited.
constexpr long kNormalEventMask =
    QsciScintillaBase::SC_MOD_CONTAINER | QsciScintillaBase::SC_MOD_CHANGEMARKER |
    QsciScintillaBase::SC_MOD_BEFOREINSERT | QsciScintillaBase::SC_MOD_BEFOREDELETE;

constexpr int kDefaultStyle = 0;

} // namespace

ScintillaBuffer::ScintillaBuffer(QsciScintillaBase& editor) : editor_(editor) {
    sci(QsciScintillaBase::SCI_SETEOLMODE, QsciScintillaBase::SC_EOL_LF);
    sci(QsciScintillaBase::SCI_SETMODEVENTMASK, kNormalEventMask);
    connect(&editor_, &QsciScintillaBase::SCN_MODIFIED, this, &ScintillaBuffer::onModified);
    connect(&editor_, &QsciScintillaBase::SCN_SAVEPOINTREACHED, this,
            [this] { noteModified(lastModified_); });
    connect(&editor_, &QsciScintillaBase::SCN_SAVEPOINTLEFT, this,
            [this] { noteModified(lastModified_); });
}

ScintillaBuffer::~ScintillaBuffer() = default;

long ScintillaBuffer::sci(unsigned int message, unsigned long wParam, long lParam) const {
    return editor_.SendScintilla(message, wParam, lParam);
}

int32_t ScintillaBuffer::NumLines() const {
    // Inside an operation only the buffer changes the text: the count is asked once.
    if (batching_ && lineCount_ >= 0)
        return lineCount_;
    const auto count = static_cast<int32_t>(sci(QsciScintillaBase::SCI_GETLINECOUNT));
    if (batching_)
        lineCount_ = count;
    return count;
}

int32_t ScintillaBuffer::clampLine(int32_t line) const {
    return std::clamp(line, 0, NumLines() - 1);
}

void ScintillaBuffer::forgetReads() const {
    lineCount_ = -1;
    span_.Line = -1;
}

std::string_view ScintillaBuffer::lineSpan(int32_t line, long* end) const {
    // An operation reads a line and then edits it: the second read is free.
    if (batching_ && line == span_.Line) {
        if (end)
            *end = span_.End;
        return span_.Bytes;
    }
    const int32_t count = NumLines();
    if (line < 0 || line >= count)
        return {};
    const long start = sci(QsciScintillaBase::SCI_POSITIONFROMLINE, line);
    const long next = line + 1 < count ? sci(QsciScintillaBase::SCI_POSITIONFROMLINE, line + 1)
                                       : sci(QsciScintillaBase::SCI_GETLENGTH);
    long length = next - start;
    const char* bytes =
        length > 0 ? reinterpret_cast<const char*>(sci(QsciScintillaBase::SCI_GETRANGEPOINTER,
                                                       static_cast<unsigned long>(start), length))
                   : nullptr;
    if (!bytes)
        length = 0;
    // Only the last line has no line end, and no line holds a CR or LF of its own.
    if (length > 0 && bytes[length - 1] == '\n')
        --length;
    if (length > 0 && bytes[length - 1] == '\r')
        --length;
    const std::string_view span(bytes, static_cast<size_t>(length));
    if (end)
        *end = start + length;
    if (batching_)
        span_ = {line, span, start + length};
    return span;
}

int32_t ScintillaBuffer::fetchRange(long start, long end) const {
    const auto count = static_cast<int32_t>(std::max(0L, end - start));
    lineBytes_.resize(static_cast<size_t>(count) + 1);
    if (count > 0)
        editor_.SendScintilla(QsciScintillaBase::SCI_GETTEXTRANGE, start, end, lineBytes_.data());
    lineBytes_.resize(static_cast<size_t>(count));
    return count;
}

void ScintillaBuffer::decodeLine(int32_t byteCount) const {
    decodeLine(lineBytes_.data(), byteCount);
}

void ScintillaBuffer::decodeLine(const char* bytes, int32_t byteCount) const {
    // Widening in place keeps the string's capacity: no allocation per line. ASCII is
    // checked in the same pass; any other line is decoded again as UTF-8.
    lineText_.resize(byteCount);
    auto* out = reinterpret_cast<char16_t*>(lineText_.data());
    unsigned char high = 0;
    for (int32_t i = 0; i < byteCount; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        high |= byte;
        out[i] = byte;
    }
    if (high & 0x80)
        lineText_ = QString::fromUtf8(bytes, byteCount);
}

QString ScintillaBuffer::GetLine(int32_t line) const {
    if (line < 0)
        return {};
    if (std::string_view pending; edits_.Find(line, pending)) {
        decodeLine(pending.data(), static_cast<int32_t>(pending.size()));
        return lineText_;
    }
    // A line past the last one reads as empty.
    const std::string_view bytes = lineSpan(line);
    decodeLine(bytes.data(), static_cast<int32_t>(bytes.size()));
    return lineText_;
}

int32_t ScintillaBuffer::GetLineLength(int32_t line) const {
    if (line == scanLine_)
        return scanLength_;
    if (line < 0)
        return 0;
    if (std::string_view pending; edits_.Find(line, pending))
        return Utf8Columns::CodeUnits(pending.data(), static_cast<int32_t>(pending.size()));
    // Counted where the component keeps the line: the scanner may hold a view of lineText_.
    const std::string_view bytes = lineSpan(line);
    return Utf8Columns::CodeUnits(bytes.data(), static_cast<int32_t>(bytes.size()));
}

int32_t ScintillaBuffer::GetLineData(int32_t line, int32_t word) const {
    if (word != 1 || line < 0 || line >= NumLines())
        return 0;
    return static_cast<int32_t>(sci(QsciScintillaBase::SCI_GETLINESTATE, line));
}

void ScintillaBuffer::SetLineData(int32_t line, int32_t word, int32_t value) {
    // The component keeps one word per line that moves with its line: word 1.
    if (word != 1 || line < 0 || (line != scanLine_ && line >= NumLines()))
        return;
    sci(QsciScintillaBase::SCI_SETLINESTATE, line, value);
}

long ScintillaBuffer::PositionOf(int32_t column, int32_t line) const {
    flushEdits();
    line = std::max(line, 0);
    const long start = sci(QsciScintillaBase::SCI_POSITIONFROMLINE, line);
    if (start < 0)
        return sci(QsciScintillaBase::SCI_GETLENGTH);
    return column <= 0 ? start : offsetInLine(start, line, column);
}

long ScintillaBuffer::offsetInLine(long start, int32_t line, int32_t column) const {
    const long end = sci(QsciScintillaBase::SCI_GETLINEENDPOSITION, line);
    // A code unit takes at most three bytes: the bytes beyond that can't matter.
    const long stop = std::min(end, start + 3L * column);
    const int32_t count = fetchRange(start, stop);
    const char* bytes = lineBytes_.data();
    if (Utf8Columns::IsAscii(bytes, count))
        return start + std::min(column, count);
    return start + Utf8Columns::ByteOffset(bytes, count, column);
}

void ScintillaBuffer::ColumnLineOf(long position, int32_t& column, int32_t& line) const {
    flushEdits();
    line = static_cast<int32_t>(sci(QsciScintillaBase::SCI_LINEFROMPOSITION, position));
    const long start = sci(QsciScintillaBase::SCI_POSITIONFROMLINE, line);
    const long end = sci(QsciScintillaBase::SCI_GETLINEENDPOSITION, line);
    const long stop = std::clamp(position, start, end);
    const auto count = static_cast<int32_t>(stop - start);
    if (count == 0) {
        column = 0;
        return;
    }
    fetchRange(start, stop);
    column = Utf8Columns::IsAscii(lineBytes_.data(), count)
                 ? count
                 : Utf8Columns::Column(lineBytes_.data(), count, count);
}

QByteArray ScintillaBuffer::toBufferText(const QString& text) {
    // Every line end becomes the buffer's own LF, so lines are counted one way only.
    QByteArray utf8 = text.toUtf8();
    const qsizetype size = utf8.size();
    const char* firstCr = static_cast<const char*>(std::memchr(utf8.constData(), '\r', size));
    if (!firstCr)
        return utf8;
    // In place, a stretch between CRs at a time.
    char* data = utf8.data();
    qsizetype in = firstCr - utf8.constData();
    qsizetype out = in;
    while (in < size) {
        data[out++] = '\n';
        ++in;
        if (in < size && data[in] == '\n')
            ++in;
        const void* next = std::memchr(data + in, '\r', static_cast<size_t>(size - in));
        const qsizetype stop = next ? static_cast<const char*>(next) - data : size;
        std::memmove(data + out, data + in, static_cast<size_t>(stop - in));
        out += stop - in;
        in = stop;
    }
    utf8.truncate(out);
    return utf8;
}

void ScintillaBuffer::InsertText(int32_t column, int32_t line, const QString& text, int32_t,
                                 int32_t& endColumn, int32_t& endLine) {
    if (batching_ && !text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r'))) {
        insertInLine(column, line, text, endColumn, endLine);
        return;
    }
    flushEdits();
    line = std::max(line, 0);
    long start = sci(QsciScintillaBase::SCI_POSITIONFROMLINE, line);
    if (start < 0 || line >= NumLines()) {
        line = NumLines() - 1;
        start = sci(QsciScintillaBase::SCI_POSITIONFROMLINE, line);
    }
    const long position = column <= 0 ? start : offsetInLine(start, line, column);
    int32_t startColumn = 0;
    if (position > start)
        ColumnLineOf(position, startColumn, line);
    const QByteArray bytes = toBufferText(text);
    if (!bytes.isEmpty())
        editor_.SendScintilla(QsciScintillaBase::SCI_INSERTTEXT, position, bytes.constData());
    forgetReads();

    const auto lastBreak = bytes.lastIndexOf('\n');
    endLine = line + static_cast<int32_t>(bytes.count('\n'));
    if (lastBreak < 0) {
        endColumn = startColumn +
                    Utf8Columns::CodeUnits(bytes.constData(), static_cast<int32_t>(bytes.size()));
    } else {
        const char* tail = bytes.constData() + lastBreak + 1;
        endColumn =
            Utf8Columns::CodeUnits(tail, static_cast<int32_t>(bytes.size() - lastBreak - 1));
    }
}

void ScintillaBuffer::DeleteText(int32_t startColumn, int32_t startLine, int32_t endColumn,
                                 int32_t endLine) {
    if (batching_ && startLine == endLine && startLine >= 0 && startLine < NumLines()) {
        deleteInLine(startColumn, endColumn, startLine);
        return;
    }
    flushEdits();
    long from = 0;
    long to = 0;
    if (startLine == endLine && startLine >= 0) {
        // Within one line, both ends come from one read of the line's start.
        const long start = sci(QsciScintillaBase::SCI_POSITIONFROMLINE, startLine);
        if (start < 0)
            return;
        from = startColumn <= 0 ? start : offsetInLine(start, startLine, startColumn);
        to = endColumn <= 0 ? start : offsetInLine(start, startLine, endColumn);
    } else {
        from = PositionOf(startColumn, startLine);
        to = PositionOf(endColumn, endLine);
    }
    if (to < from)
        std::swap(from, to);
    if (to > from)
        sci(QsciScintillaBase::SCI_DELETERANGE, static_cast<unsigned long>(from), to - from);
    forgetReads();
}

int ScintillaBuffer::scanInto(int32_t line, std::vector<SourceToken>& tokens) {
    const std::string_view bytes = lineSpan(line);
    const auto byteCount = static_cast<int32_t>(bytes.size());
    scanBytes(line, bytes.data(), byteCount, &tokens);
    return byteCount;
}

void ScintillaBuffer::scanBytes(int32_t line, const char* bytes, int32_t byteCount,
                                std::vector<SourceToken>* tokens) {
    if (tokens)
        tokens->clear();
    decodeLine(bytes, byteCount);
    const auto length = static_cast<int32_t>(lineText_.size());
    if (!lex_) {
        if (tokens && length > 0)
            tokens->push_back({TokenKind::Plain, 0, length});
        return;
    }
    // The scanner asks for the line's length and stores its flags: both are answered
    // without going back to the component.
    scanLine_ = line;
    scanLength_ = length;
    lex_->ISourceLex4_ScanLine(*this, line, QStringView(lineText_), tokens);
    scanLine_ = -1;
}

template <typename Fn>
void ScintillaBuffer::forEachLine(int32_t first, int32_t last, Fn&& fn) const {
    const int32_t count = NumLines();
    first = std::max(first, 0);
    last = std::min(last, count - 1);
    if (last < first)
        return;
    // Asking for a range may move the component's text: earlier reads go stale.
    span_.Line = -1;
    const long rangeStart = sci(QsciScintillaBase::SCI_POSITIONFROMLINE, first);
    const long rangeEnd = last + 1 < count ? sci(QsciScintillaBase::SCI_POSITIONFROMLINE, last + 1)
                                           : sci(QsciScintillaBase::SCI_GETLENGTH);
    // The lines are read where the component keeps them: one call for the whole range
    // instead of three a line. Scanning and styling change no text, so the memory stays put.
    const auto* p = reinterpret_cast<const char*>(sci(QsciScintillaBase::SCI_GETRANGEPOINTER,
                                                      static_cast<unsigned long>(rangeStart),
                                                      rangeEnd - rangeStart));
    if (!p)
        return;
    const char* const end = p + (rangeEnd - rangeStart);
    for (int32_t line = first; line <= last; ++line) {
        // Lines end in LF; a CR is looked for only up to it.
        const auto* lf =
            static_cast<const char*>(std::memchr(p, '\n', static_cast<size_t>(end - p)));
        const char* lineEnd = lf ? lf : end;
        if (const auto* cr =
                static_cast<const char*>(std::memchr(p, '\r', static_cast<size_t>(lineEnd - p))))
            lineEnd = cr;
        int32_t eol = 0;
        if (lineEnd < end)
            eol = (*lineEnd == '\r' && lineEnd + 1 < end && lineEnd[1] == '\n') ? 2 : 1;
        fn(line, p, static_cast<int32_t>(lineEnd - p), eol);
        p = lineEnd + eol;
    }
}

std::vector<SourceToken> ScintillaBuffer::ScanLine(int32_t line) {
    flushEdits();
    std::vector<SourceToken> tokens;
    if (line >= 0 && line < NumLines())
        scanInto(line, tokens);
    return tokens;
}

void ScintillaBuffer::UpdateLines(int32_t first, int32_t last, int32_t& scanTo) {
    flushEdits();
    last = std::min(std::max(last, scanTo), NumLines() - 1);
    // Each changed flag asks the component to repaint; one repaint at the end will do.
    QWidget* viewport = editor_.viewport();
    const bool updates = viewport->updatesEnabled();
    if (updates && last - first > 64)
        viewport->setUpdatesEnabled(false);
    // Only the flags are wanted here: the tokens are not kept.
    forEachLine(first, last, [&](int32_t line, const char* bytes, int32_t count, int32_t) {
        scanBytes(line, bytes, count, nullptr);
    });
    if (updates && !viewport->updatesEnabled())
        viewport->setUpdatesEnabled(true);
    scanTo = last;
}

int ScintillaBuffer::StyleOfKind(int32_t kind) {
    switch (kind) {
    case TokenKind::Label:
        return 1;
    case TokenKind::Keyword:
        return 2;
    case TokenKind::Separator:
        return 3;
    case TokenKind::Comment:
        return 4;
    case TokenKind::String:
        return 5;
    case TokenKind::Normal:
        return 6;
    case TokenKind::Reserved:
        return 7;
    case TokenKind::ValueMark:
        return 8;
    case TokenKind::SubvalueMark:
        return 9;
    default:
        return kDefaultStyle;
    }
}

void ScintillaBuffer::StyleLines(int32_t first, int32_t last) {
    flushEdits();
    first = std::max(first, 0);
    last = std::min(last, NumLines() - 1);
    if (last < first)
        return;
    styleBytes_.clear();
    forEachLine(first, last, [&](int32_t line, const char* bytes, int32_t byteCount, int32_t eol) {
        scanBytes(line, bytes, byteCount, &tokens_);
        const size_t lineStart = styleBytes_.size();
        styleBytes_.append(static_cast<size_t>(byteCount + eol), static_cast<char>(kDefaultStyle));
        char* styles = styleBytes_.data() + lineStart;
        const bool ascii = lineText_.size() == byteCount;
        // Token offsets count code units; styles count bytes. Walk both in step.
        int32_t unit = 0;
        int32_t byte = 0;
        auto advanceTo = [&](int32_t targetUnit) {
            if (ascii) {
                byte = std::min(targetUnit, byteCount);
                unit = byte;
                return;
            }
            while (unit < targetUnit && byte < byteCount) {
                const auto lead = static_cast<unsigned char>(bytes[byte]);
                const int n = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
                unit += n == 4 ? 2 : 1;
                byte = std::min(byte + n, byteCount);
            }
        };
        for (const SourceToken& token : tokens_) {
            advanceTo(token.Start);
            const int32_t from = byte;
            advanceTo(token.Start + token.Length);
            std::fill(styles + from, styles + byte, static_cast<char>(StyleOfKind(token.Kind)));
        }
    });
    const long start = sci(QsciScintillaBase::SCI_POSITIONFROMLINE, first);
    sci(QsciScintillaBase::SCI_STARTSTYLING, static_cast<unsigned long>(start), 0xff);
    editor_.SendScintilla(QsciScintillaBase::SCI_SETSTYLINGEX,
                          static_cast<unsigned long>(styleBytes_.size()), styleBytes_.data());
}

void ScintillaBuffer::StyleLinesFor(int32_t first, int32_t last, int32_t viewFirst,
                                    int32_t viewLast) {
    flushEdits();
    const int32_t count = NumLines();
    first = std::max(first, 0);
    last = std::min(last, count - 1);
    if (last - first < LazyStyleLines) {
        StyleLines(first, last);
        return;
    }
    // No line's colours depend on another's: the lines out of view can wait. They are
    // marked so that they are styled when shown.
    const int32_t stop = std::clamp(std::max(last, viewLast), first, count - 1);
    const long start = sci(QsciScintillaBase::SCI_POSITIONFROMLINE, first);
    const long end = stop + 1 < count ? sci(QsciScintillaBase::SCI_POSITIONFROMLINE, stop + 1)
                                      : sci(QsciScintillaBase::SCI_GETLENGTH);
    sci(QsciScintillaBase::SCI_STARTSTYLING, static_cast<unsigned long>(start), 0xff);
    sci(QsciScintillaBase::SCI_SETSTYLING, static_cast<unsigned long>(end - start), PendingStyle);
    StylePendingLines(std::max(first, viewFirst), std::min(stop, viewLast));
}

void ScintillaBuffer::StylePendingLines(int32_t first, int32_t last) {
    first = std::max(first, 0);
    last = std::min(last, NumLines() - 1);
    const long styled = sci(QsciScintillaBase::SCI_GETENDSTYLED);
    bool restyled = false;
    for (int32_t line = first; line <= last;) {
        const auto pending = [&](int32_t l) {
            return sci(QsciScintillaBase::SCI_GETSTYLEAT,
                       static_cast<unsigned long>(
                           sci(QsciScintillaBase::SCI_POSITIONFROMLINE, l))) == PendingStyle;
        };
        if (!pending(line)) {
            ++line;
            continue;
        }
        int32_t to = line;
        while (to < last && pending(to + 1))
            ++to;
        StyleLines(line, to);
        restyled = true;
        line = to + 1;
    }
    // Styling moved the mark back to the end of these lines.
    if (restyled && styled > sci(QsciScintillaBase::SCI_GETENDSTYLED))
        sci(QsciScintillaBase::SCI_STARTSTYLING, static_cast<unsigned long>(styled), 0xff);
}

void ScintillaBuffer::InvalidateStyles(int32_t fromLine) {
    flushEdits();
    const long position = sci(QsciScintillaBase::SCI_POSITIONFROMLINE, clampLine(fromLine));
    if (position < sci(QsciScintillaBase::SCI_GETENDSTYLED))
        sci(QsciScintillaBase::SCI_STARTSTYLING, static_cast<unsigned long>(position), 0xff);
    editor_.viewport()->update();
}

void ScintillaBuffer::RefreshLines(int32_t, int32_t, int32_t, int32_t caretColumn,
                                   int32_t caretLine) {
    flushEdits();
    // The component repaints changed lines by itself; placing the caret also scrolls it
    // into view.
    sci(QsciScintillaBase::SCI_GOTOPOS,
        static_cast<unsigned long>(PositionOf(caretColumn, caretLine)));
}

void ScintillaBuffer::SetLex(std::shared_ptr<ISourceLex4> lex) {
    lex_ = std::move(lex);
    InvalidateStyles(0);
}

template <typename Fn> void ScintillaBuffer::runUnrecorded(Fn&& fn) {
    const long mask = sci(QsciScintillaBase::SCI_GETMODEVENTMASK);
    const bool batching = batching_;
    sci(QsciScintillaBase::SCI_SETMODEVENTMASK, kOperationEventMask);
    sci(QsciScintillaBase::SCI_SETUNDOCOLLECTION, 0);
    batching_ = true;
    forgetReads();
    const auto restore = qScopeGuard([&] {
        // What the operation left aside goes in while edits are still unrecorded.
        flushEdits();
        batching_ = batching;
        forgetReads();
        sci(QsciScintillaBase::SCI_SETUNDOCOLLECTION, 1);
        sci(QsciScintillaBase::SCI_SETMODEVENTMASK, mask);
    });
    fn();
}

void ScintillaBuffer::ExecuteOp(std::unique_ptr<ISourceOp> op) {
    if (!op)
        return;
    const bool before = Modified();
    const auto token = static_cast<int>(ops_.size());
    ISourceOp* raw = op.get();
    ops_.push_back(std::move(op));
    runUnrecorded([&] { raw->ISourceOp_DoOp(*this); });
    // No coalescing: the operation is one undo step of its own.
    sci(QsciScintillaBase::SCI_ADDUNDOACTION, static_cast<unsigned long>(token), 0);
    noteModified(before);
}

void ScintillaBuffer::onModified(int, int type, const char*, int, int, int, int, int, int token,
                                 int) {
    if (!(type & QsciScintillaBase::SC_MOD_CONTAINER))
        return;
    const bool redo = type & QsciScintillaBase::SC_PERFORMED_REDO;
    if (!redo && !(type & QsciScintillaBase::SC_PERFORMED_UNDO))
        return;
    // The component refuses edits from inside its notification: run the operation after.
    pending_.push_back({token, redo});
    if (inUndoRedo_ == 0)
        QMetaObject::invokeMethod(this, &ScintillaBuffer::runPendingOps, Qt::QueuedConnection);
}

void ScintillaBuffer::runPendingOps() {
    std::vector<PendingOp> pending;
    pending.swap(pending_);
    for (const PendingOp& p : pending) {
        if (p.token < 0 || p.token >= static_cast<int>(ops_.size()) || !ops_[p.token])
            continue;
        ISourceOp* op = ops_[p.token].get();
        runUnrecorded([&] {
            if (p.redo)
                op->ISourceOp_DoOp(*this);
            else
                op->ISourceOp_UndoOp(*this);
        });
    }
}

void ScintillaBuffer::Undo() {
    const bool before = Modified();
    ++inUndoRedo_;
    sci(QsciScintillaBase::SCI_UNDO);
    --inUndoRedo_;
    runPendingOps();
    noteModified(before);
}

void ScintillaBuffer::Redo() {
    const bool before = Modified();
    ++inUndoRedo_;
    sci(QsciScintillaBase::SCI_REDO);
    --inUndoRedo_;
    runPendingOps();
    noteModified(before);
}

bool ScintillaBuffer::CanUndo() const {
    return sci(QsciScintillaBase::SCI_CANUNDO) != 0;
}

bool ScintillaBuffer::CanRedo() const {
    return sci(QsciScintillaBase::SCI_CANREDO) != 0;
}

void ScintillaBuffer::ClearUndoStack() {
    // Emptying the component's history also moves its save point; the modified state must
    // not change by forgetting undo records.
    const bool before = Modified();
    sci(QsciScintillaBase::SCI_EMPTYUNDOBUFFER);
    ops_.clear();
    pending_.clear();
    forcedModified_ = before;
    noteModified(before);
}

void ScintillaBuffer::ClearAllBookmarks() {
    sci(QsciScintillaBase::SCI_MARKERDELETEALL, BookmarkMarker);
}

bool ScintillaBuffer::Modified() const {
    return forcedModified_ || sci(QsciScintillaBase::SCI_GETMODIFY) != 0;
}

void ScintillaBuffer::SetModified(bool modified) {
    const bool before = Modified();
    if (modified) {
        forcedModified_ = true;
    } else {
        forcedModified_ = false;
        sci(QsciScintillaBase::SCI_SETSAVEPOINT);
    }
    noteModified(before);
}

void ScintillaBuffer::noteModified(bool before) {
    const bool now = Modified();
    lastModified_ = now;
    if (now != before)
        Q_EMIT ModifiedChanged(now);
}

QString ScintillaBuffer::AllText() const {
    flushEdits();
    const long length = sci(QsciScintillaBase::SCI_GETLENGTH);
    QByteArray bytes(static_cast<qsizetype>(length) + 1, Qt::Uninitialized);
    editor_.SendScintilla(QsciScintillaBase::SCI_GETTEXT, static_cast<unsigned long>(length + 1),
                          static_cast<void*>(bytes.data()));
    bytes.resize(static_cast<qsizetype>(length));
    return QString::fromUtf8(bytes);
}

std::string_view ScintillaBuffer::AllBytes() const {
    flushEdits();
    const long length = sci(QsciScintillaBase::SCI_GETLENGTH);
    const auto* text =
        reinterpret_cast<const char*>(sci(QsciScintillaBase::SCI_GETCHARACTERPOINTER));
    return text ? std::string_view(text, static_cast<size_t>(length)) : std::string_view();
}

void ScintillaBuffer::SetAllText(const QString& text) {
    SetAllBytes(toBufferText(text));
}

void ScintillaBuffer::SetAllBytes(const QByteArray& bytes) {
    flushEdits();
    const bool before = Modified();
    // Counted, not terminated: a NUL in the text is text.
    runUnrecorded([&] {
        sci(QsciScintillaBase::SCI_CLEARALL);
        editor_.SendScintilla(QsciScintillaBase::SCI_APPENDTEXT,
                              static_cast<unsigned long>(bytes.size()), bytes.constData());
    });
    // The old records and messages no longer fit the text.
    sci(QsciScintillaBase::SCI_MARKERDELETEALL, MessageMarker);
    sci(QsciScintillaBase::SCI_EMPTYUNDOBUFFER);
    ops_.clear();
    pending_.clear();
    forcedModified_ = before;
    noteModified(before);
}
