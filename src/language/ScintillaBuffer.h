#pragma once

#include "language/ISourceLex4.h"
#include "language/PendingLineEdits.h"
#include "language/SourceBuffer.h"

#include <QObject>
#include <QString>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QsciScintillaBase;

// The buffer contract over a Scintilla document. Operations run with Scintilla's undo
// collection off and its insert/delete notifications masked, so that their cost never
// grows with the document, and stand on Scintilla's undo stack as container actions whose
// token is the operation's index. Typing stays in Scintilla's own undo records.
//
// Inside an operation, edits within one line are kept aside and given to Scintilla when
// the operation ends (or something needs its positions): each Scintilla edit costs a few
// searches of its line index, so an operation that touches every line replaces runs of
// neighbouring lines in one edit instead. Line data and markers of those lines are kept.
class ScintillaBuffer final : public QObject, public SourceBuffer {
    Q_OBJECT

public:
    explicit ScintillaBuffer(QsciScintillaBase& editor);
    ~ScintillaBuffer() override;

    int32_t NumLines() const override;
    QString GetLine(int32_t line) const override;
    int32_t GetLineLength(int32_t line) const override;
    int32_t GetLineData(int32_t line, int32_t word) const override;
    void SetLineData(int32_t line, int32_t word, int32_t value) override;
    void InsertText(int32_t column, int32_t line, const QString& text, int32_t reserved,
                    int32_t& endColumn, int32_t& endLine) override;
    void DeleteText(int32_t startColumn, int32_t startLine, int32_t endColumn,
                    int32_t endLine) override;
    void UpdateLines(int32_t first, int32_t last, int32_t& scanTo) override;
    void RefreshLines(int32_t flags, int32_t first, int32_t last, int32_t caretColumn,
                      int32_t caretLine) override;
    std::shared_ptr<ISourceLex4> Lex() const override { return lex_; }
    void SetLex(std::shared_ptr<ISourceLex4> lex) override;
    void ExecuteOp(std::unique_ptr<ISourceOp> op) override;
    void Undo() override;
    void Redo() override;
    bool CanUndo() const override;
    bool CanRedo() const override;
    void ClearUndoStack() override;
    void ClearAllBookmarks() override;
    bool Modified() const override;
    void SetModified(bool modified) override;

    using SourceBuffer::CanRedo;
    using SourceBuffer::CanUndo;
    using SourceBuffer::GetLine;
    using SourceBuffer::GetLineLength;

    // The whole text with the buffer's line ends, and replacing it (no undo record).
    QString AllText() const;
    void SetAllText(const QString& text);
    // The text as the component holds it (UTF-8, LF lines), NULs and all, without a copy:
    // valid until the next change.
    std::string_view AllBytes() const;
    // Takes text in that form; CRs are the caller's to have turned into line ends.
    void SetAllBytes(const QByteArray& utf8);

    // Scintilla byte position of a line and column, and back.
    long PositionOf(int32_t column, int32_t line) const;
    void ColumnLineOf(long position, int32_t& column, int32_t& line) const;

    // Scans one line and gives its tokens; the scanner stores the line's flags.
    std::vector<SourceToken> ScanLine(int32_t line);
    // Scans and colours lines; called by the editor when it needs styles.
    void StyleLines(int32_t first, int32_t last);
    // Makes the editor colour again, lazily, from the given line on.
    void InvalidateStyles(int32_t fromLine);
    // Styles lines `first` to `last` as far as the view needs them: all of them when they
    // are few; otherwise only those from `viewFirst` to `viewLast`, and the rest are
    // marked with PendingStyle, to be styled when they come into view. Scintilla takes
    // every line up to the later of `last` and `viewLast` as styled.
    void StyleLinesFor(int32_t first, int32_t last, int32_t viewFirst, int32_t viewLast);
    // Styles the lines of a range that still carry PendingStyle; the mark of what
    // Scintilla takes as styled stays where it was.
    void StylePendingLines(int32_t first, int32_t last);

    // The Scintilla style that shows a token kind.
    static int StyleOfKind(int32_t kind);
    static constexpr int BookmarkMarker = 1;
    // Messages pinned to lines (LineMessageMarks); an operation that rewrites a line drops it.
    static constexpr int MessageMarker = 2;
    // Marks text whose colours wait until it is shown; it is never painted.
    static constexpr int PendingStyle = 31;
    // Requests for more lines than this style the lines in view only.
    static constexpr int32_t LazyStyleLines = 4000;

Q_SIGNALS:
    void ModifiedChanged(bool modified);

private:
    long sci(unsigned int message, unsigned long wParam = 0, long lParam = 0) const;
    // A line's bytes (line end excluded) where the component keeps them, valid until the
    // text changes or another range is asked for; `end` gets the position behind them.
    std::string_view lineSpan(int32_t line, long* end = nullptr) const;
    // Reads bytes of the document into lineBytes_ and returns their count.
    int32_t fetchRange(long start, long end) const;
    // Makes lineText_ the UTF-16 text of lineBytes_.
    void decodeLine(int32_t byteCount) const;
    void decodeLine(const char* bytes, int32_t byteCount) const;
    // Runs the scanner over one line's bytes.
    void scanBytes(int32_t line, const char* bytes, int32_t byteCount,
                   std::vector<SourceToken>* tokens);
    // Calls fn(line, bytes, byteCount, lineEndLength) for each line of a range.
    template <typename Fn> void forEachLine(int32_t first, int32_t last, Fn&& fn) const;
    int32_t clampLine(int32_t line) const;
    // Position of a column of the line that starts at `start`.
    long offsetInLine(long start, int32_t line, int32_t column) const;
    template <typename Fn> void runUnrecorded(Fn&& fn);
    void onModified(int position, int type, const char* text, int length, int added, int line,
                    int foldNow, int foldPrev, int token, int annotationLines);
    void runPendingOps();
    void noteModified(bool before);
    static QByteArray toBufferText(const QString& text);
    // Edits kept aside inside an operation.
    // Makes `line` the pending line that edits go to.
    void pendLine(int32_t line);
    // Byte offset of a column in the last pending line.
    int32_t pendingOffset(int32_t column) const;
    void insertInLine(int32_t column, int32_t line, const QString& text, int32_t& endColumn,
                      int32_t& endLine);
    void deleteInLine(int32_t startColumn, int32_t endColumn, int32_t line);
    // Gives the edits kept aside to Scintilla. Changes no text that the buffer shows.
    void flushEdits() const;
    // Gives one run of pending lines to Scintilla in one edit.
    void replaceRun(const PendingLineEdits::Run& run, std::string_view text) const;
    // Lines of a range that carry markers, with their marker sets.
    std::vector<std::pair<int32_t, long>> markedLines(int32_t first, int32_t last) const;
    int scanInto(int32_t line, std::vector<SourceToken>& tokens);

    QsciScintillaBase& editor_;
    std::shared_ptr<ISourceLex4> lex_;
    // Operations by undo token. Tokens of operations cut off the redo branch are not
    // reused; the list is emptied with the undo stack.
    std::vector<std::unique_ptr<ISourceOp>> ops_;
    struct PendingOp {
        int token;
        bool redo;
    };
    std::vector<PendingOp> pending_;
    int inUndoRedo_ = 0;
    bool forcedModified_ = false;
    bool lastModified_ = false;
    mutable PendingLineEdits edits_;
    bool batching_ = false;
    // What an operation read of the component, valid until the buffer changes its text.
    mutable int32_t lineCount_ = -1;
    struct Span {
        int32_t Line = -1;
        std::string_view Bytes;
        long End = 0;
    };
    mutable Span span_;
    void forgetReads() const;
    // Where the last pending line ends in the component.
    long pendingEnd_ = 0;
    mutable std::string runBytes_;
    mutable std::string lineBytes_;
    mutable QString lineText_;
    std::vector<SourceToken> tokens_;
    std::string styleBytes_;
    // The line being scanned, and its length, while the scanner runs.
    int32_t scanLine_ = -1;
    int32_t scanLength_ = 0;
};
