#pragma once

#include <Qsci/qsciscintilla.h>
#include <cstdint>
#include <memory>

class BufferLexer;
class ISourceDraw2;
class LineMessageMarks;
class LineNumberGutter;
class ScintillaBuffer;

// The source editor control: shows and edits the lines of its buffer. Lines and columns
// are zero-based, columns in 16-bit code units. Undo and redo go through the buffer, so
// that operations and typing share one stack; value and subvalue marks show as glyphs.
class SourceView : public QsciScintilla {
    Q_OBJECT

public:
    explicit SourceView(QWidget* parent = nullptr);
    ~SourceView() override;

    ScintillaBuffer& Buffer() const { return *buffer_; }

    int32_t CursorCol() const;
    int32_t CursorLine() const;
    bool HasSelection() const;
    // Start is where the selection was begun, so it may lie behind the end.
    void GetSelection(int32_t& startColumn, int32_t& startLine, int32_t& endColumn,
                      int32_t& endLine) const;
    // Selects; the caret goes to the end given. Columns past a line's end mean its end.
    void SetSelection(int32_t startColumn, int32_t startLine, int32_t endColumn, int32_t endLine);
    void SetCursor(int32_t column, int32_t line);

    int32_t TabSize() const;
    void SetTabSize(int32_t size);
    bool LineWrap() const;
    void SetLineWrap(bool wrap);
    bool OvertypeMode() const;
    // The column where code of level 0 starts; a faint guide marks it, none for 0.
    int32_t Margin() const { return margin_; }
    void SetMargin(int32_t column);

    // The text position under a point of the viewport (columns may be past the line end
    // when the point is).
    void PointToPosition(int x, int y, int32_t& column, int32_t& line) const;
    // The position as displayed: tabs expanded and wrapped rows counted.
    void ScreenPosition(int32_t column, int32_t line, int32_t& displayColumn,
                        int32_t& displayLine) const;
    int32_t FirstVisibleLine() const;
    int32_t VisibleRows() const;

    void Cut() { cut(); }
    void Copy() { copy(); }
    void Paste() { paste(); }

    void ToggleBookmark(int32_t line);
    bool HasBookmark(int32_t line) const;
    // The caret goes to the next or previous bookmarked line, wrapping around.
    void NextBookmark();
    void PreviousBookmark();

    BufferLexer& Lexer() const { return *lexer_; }
    // The line-number strip left of the viewport.
    LineNumberGutter& Gutter() const { return *gutter_; }
    // Messages pinned to lines, such as the last compile's errors.
    LineMessageMarks& MessageMarks() const { return *messageMarks_; }

    // The hook that heads the printed pages and numbers their lines.
    const std::shared_ptr<ISourceDraw2>& PrintHook() const { return printHook_; }
    void SetPrintHook(std::shared_ptr<ISourceDraw2> hook) { printHook_ = std::move(hook); }

    // Colours bookmarked lines for text on `paper`.
    void TintBookmarks(const QColor& paper);

    // Keys that the frame's commands own: they pass through to the commands' shortcuts.
    // The component forgets its own bindings of those with a modifier, so a disabled
    // command does not fall back on another editing action (Ctrl+Y is not redo here).
    void SetCommandKeys(const QList<QKeySequence>& keys);

Q_SIGNALS:
    void ContextMenuRequested(const QPoint& globalPos);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    // Lines whose colours were left for later get them before they are shown.
    void paintEvent(QPaintEvent* event) override;

private:
    void setUpMarks();
    void setUpStyles();

    std::unique_ptr<ScintillaBuffer> buffer_;
    QList<QKeyCombination> commandKeys_;
    BufferLexer* lexer_ = nullptr;
    LineNumberGutter* gutter_ = nullptr;
    LineMessageMarks* messageMarks_ = nullptr;
    int32_t margin_ = 0;
    std::shared_ptr<ISourceDraw2> printHook_;
};
