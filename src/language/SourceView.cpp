#include "language/SourceView.h"

#include <Qsci/qscicommand.h>
#include <Qsci/qscicommandset.h>

#include "language/BufferLexer.h"
#include "language/LineMessageMarks.h"
#include "language/LineNumberGutter.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceViewAccessible.h"

#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QKeyEvent>
#include <algorithm>

SourceView::SourceView(QWidget* parent)
    : QsciScintilla(parent), buffer_(std::make_unique<ScintillaBuffer>(*this)) {
    SourceViewAccessible::Install();
    lexer_ = new BufferLexer(*buffer_, this);
    setUpStyles();
    setLexer(lexer_);
    setUpMarks();
    setUtf8(true);
    setMarginWidth(0, 0);
    setMarginWidth(1, 0);
    setMarginWidth(2, 0);
    setIndentationsUseTabs(false);
    // Enter starts the new line under the one above; Format sets the real levels.
    setAutoIndent(true);
    SendScintilla(SCI_SETEOLMODE, SC_EOL_LF);
    // The horizontal bar follows the widest line seen instead of a fixed guess.
    SendScintilla(SCI_SETSCROLLWIDTH, 1);
    SendScintilla(SCI_SETSCROLLWIDTHTRACKING, 1);
    // Lines on screen keep their measured layout: a key lays out its own line only.
    SendScintilla(SCI_SETLAYOUTCACHE, SC_CACHE_PAGE);
    // Undo and redo of the component's own keys would bypass the operations.
    setContextMenuPolicy(Qt::DefaultContextMenu);
    // The gutter takes its room from the left of the viewport.
    gutter_ = new LineNumberGutter(*this, [this](int room) { setViewportMargins(room, 0, 0, 0); });
    messageMarks_ = new LineMessageMarks(*this);
}

void SourceView::paintEvent(QPaintEvent* event) {
    const auto top = static_cast<int32_t>(
        SendScintilla(SCI_DOCLINEFROMVISIBLE, SendScintilla(SCI_GETFIRSTVISIBLELINE)));
    const auto rows = static_cast<int32_t>(SendScintilla(SCI_LINESONSCREEN));
    buffer_->StylePendingLines(top, top + rows + 1);
    QsciScintilla::paintEvent(event);
}

SourceView::~SourceView() {
    // The lexer refers to the buffer: detach it first.
    setLexer(nullptr);
}

void SourceView::setUpStyles() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setStyleHint(QFont::TypeWriter);
    lexer_->setDefaultFont(font);
    lexer_->setFont(font, -1);
    lexer_->setDefaultPaper(palette().color(QPalette::Base));
    lexer_->setPaper(palette().color(QPalette::Base), -1);
    lexer_->setDefaultColor(palette().color(QPalette::Text));
    lexer_->setColor(palette().color(QPalette::Text), -1);
    const QColor grey(150, 150, 150);
    lexer_->setColor(grey, ScintillaBuffer::StyleOfKind(1001));
    lexer_->setColor(grey, ScintillaBuffer::StyleOfKind(1002));
}

void SourceView::setUpMarks() {
    // Marks stay in the text; they are drawn as their printable forms in a blob so that
    // they can't be mistaken for the characters "]", "\" and "^".
    SendScintilla(SCI_SETREPRESENTATION, "\x1d", "]");
    SendScintilla(SCI_SETREPRESENTATION, "\x1c", "\\");
    SendScintilla(SCI_SETREPRESENTATION, "\x1e", "^");
    // No margin shows markers: a bookmark tints its line.
    markerDefine(QsciScintilla::Background, ScintillaBuffer::BookmarkMarker);
    TintBookmarks(palette().color(QPalette::Base));
}

void SourceView::TintBookmarks(const QColor& paper) {
    // Light enough on any paper that the text stays readable and the line can't pass for
    // a selection.
    const QColor accent = palette().color(QPalette::Highlight);
    const auto mix = [](int p, int a) { return (3 * p + a) / 4; };
    setMarkerBackgroundColor(QColor(mix(paper.red(), accent.red()),
                                    mix(paper.green(), accent.green()),
                                    mix(paper.blue(), accent.blue())),
                             ScintillaBuffer::BookmarkMarker);
}

int32_t SourceView::CursorCol() const {
    int32_t column = 0;
    int32_t line = 0;
    buffer_->ColumnLineOf(SendScintilla(SCI_GETCURRENTPOS), column, line);
    return column;
}

int32_t SourceView::CursorLine() const {
    return static_cast<int32_t>(
        SendScintilla(SCI_LINEFROMPOSITION, SendScintilla(SCI_GETCURRENTPOS)));
}

bool SourceView::HasSelection() const {
    return SendScintilla(SCI_GETANCHOR) != SendScintilla(SCI_GETCURRENTPOS);
}

void SourceView::GetSelection(int32_t& startColumn, int32_t& startLine, int32_t& endColumn,
                              int32_t& endLine) const {
    buffer_->ColumnLineOf(SendScintilla(SCI_GETANCHOR), startColumn, startLine);
    buffer_->ColumnLineOf(SendScintilla(SCI_GETCURRENTPOS), endColumn, endLine);
}

void SourceView::SetSelection(int32_t startColumn, int32_t startLine, int32_t endColumn,
                              int32_t endLine) {
    const long anchor = buffer_->PositionOf(startColumn, startLine);
    const long caret = buffer_->PositionOf(endColumn, endLine);
    SendScintilla(SCI_SETSEL, static_cast<unsigned long>(anchor), caret);
}

void SourceView::SetCursor(int32_t column, int32_t line) {
    SendScintilla(SCI_GOTOPOS, static_cast<unsigned long>(buffer_->PositionOf(column, line)));
}

int32_t SourceView::TabSize() const {
    return static_cast<int32_t>(SendScintilla(SCI_GETTABWIDTH));
}

void SourceView::SetTabSize(int32_t size) {
    size = std::max(size, 1);
    SendScintilla(SCI_SETTABWIDTH, size);
    SendScintilla(SCI_SETINDENT, size);
}

bool SourceView::LineWrap() const {
    return SendScintilla(SCI_GETWRAPMODE) != SC_WRAP_NONE;
}

void SourceView::SetLineWrap(bool wrap) {
    SendScintilla(SCI_SETWRAPMODE, wrap ? SC_WRAP_WORD : SC_WRAP_NONE);
}

void SourceView::SetMargin(int32_t column) {
    margin_ = std::max(column, 0);
    if (margin_ == 0) {
        setEdgeMode(EdgeNone);
        return;
    }
    // Faint on the paper of the moment: a guide, not a rule.
    const QColor paper = lexer_->defaultPaper();
    const QColor ink = lexer_->defaultColor();
    const auto mix = [](int p, int i) { return (4 * p + i) / 5; };
    setEdgeColor(QColor(mix(paper.red(), ink.red()), mix(paper.green(), ink.green()),
                        mix(paper.blue(), ink.blue())));
    setEdgeColumn(margin_);
    setEdgeMode(EdgeLine);
}

bool SourceView::OvertypeMode() const {
    return SendScintilla(SCI_GETOVERTYPE) != 0;
}

void SourceView::PointToPosition(int x, int y, int32_t& column, int32_t& line) const {
    const long position = SendScintilla(SCI_POSITIONFROMPOINT, static_cast<unsigned long>(x), y);
    buffer_->ColumnLineOf(position, column, line);
}

void SourceView::ScreenPosition(int32_t column, int32_t line, int32_t& displayColumn,
                                int32_t& displayLine) const {
    const long position = buffer_->PositionOf(column, line);
    displayColumn =
        static_cast<int32_t>(SendScintilla(SCI_GETCOLUMN, static_cast<unsigned long>(position)));
    displayLine = line;
}

int32_t SourceView::FirstVisibleLine() const {
    return static_cast<int32_t>(
        SendScintilla(SCI_DOCLINEFROMVISIBLE, SendScintilla(SCI_GETFIRSTVISIBLELINE)));
}

int32_t SourceView::VisibleRows() const {
    return static_cast<int32_t>(SendScintilla(SCI_LINESONSCREEN));
}

void SourceView::ToggleBookmark(int32_t line) {
    if (HasBookmark(line))
        SendScintilla(SCI_MARKERDELETE, line, ScintillaBuffer::BookmarkMarker);
    else
        SendScintilla(SCI_MARKERADD, line, ScintillaBuffer::BookmarkMarker);
}

bool SourceView::HasBookmark(int32_t line) const {
    return (SendScintilla(SCI_MARKERGET, line) & (1 << ScintillaBuffer::BookmarkMarker)) != 0;
}

void SourceView::NextBookmark() {
    const long mask = 1 << ScintillaBuffer::BookmarkMarker;
    long line = SendScintilla(SCI_MARKERNEXT, CursorLine() + 1, mask);
    if (line < 0)
        line = SendScintilla(SCI_MARKERNEXT, 0, mask);
    if (line >= 0)
        SetCursor(0, static_cast<int32_t>(line));
}

void SourceView::PreviousBookmark() {
    const long mask = 1 << ScintillaBuffer::BookmarkMarker;
    long line = SendScintilla(SCI_MARKERPREVIOUS, CursorLine() - 1, mask);
    if (line < 0)
        line = SendScintilla(SCI_MARKERPREVIOUS, Buffer().NumLines() - 1, mask);
    if (line >= 0)
        SetCursor(0, static_cast<int32_t>(line));
}

void SourceView::SetCommandKeys(const QList<QKeySequence>& keys) {
    commandKeys_.clear();
    QsciCommandSet* commands = standardCommands();
    for (const QKeySequence& sequence : keys) {
        if (sequence.isEmpty())
            continue;
        const QKeyCombination key = sequence[0];
        commandKeys_.append(key);
        // Unmodified keys (Delete) keep their editing action for when the command is off.
        if (key.keyboardModifiers() == Qt::NoModifier)
            continue;
        const int combined = key.toCombined();
        for (QsciCommand* command : commands->commands()) {
            if (command->key() == combined)
                command->setKey(0);
            if (command->alternateKey() == combined)
                command->setAlternateKey(0);
        }
    }
}

bool SourceView::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && !commandKeys_.isEmpty()) {
        auto* key = static_cast<QKeyEvent*>(event);
        const QKeyCombination pressed(key->modifiers() & ~Qt::KeypadModifier,
                                      static_cast<Qt::Key>(key->key()));
        if (commandKeys_.contains(pressed)) {
            // Left to the shortcut map; without an enabled command it comes back as a press.
            event->ignore();
            return false;
        }
    }
    return QsciScintilla::event(event);
}

void SourceView::keyPressEvent(QKeyEvent* event) {
    // The component's own undo would skip the operations on the stack.
    if (event->matches(QKeySequence::Undo)) {
        buffer_->Undo();
        return event->accept();
    }
    if (event->matches(QKeySequence::Redo)) {
        buffer_->Redo();
        return event->accept();
    }
    if (event->key() == Qt::Key_F2) {
        const auto mods =
            event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier);
        if (mods == Qt::ControlModifier)
            ToggleBookmark(CursorLine());
        else if (mods == Qt::ShiftModifier)
            PreviousBookmark();
        else if (mods == Qt::NoModifier)
            NextBookmark();
        else
            return QsciScintilla::keyPressEvent(event);
        return event->accept();
    }
    if (event->key() == Qt::Key_Backspace && (event->modifiers() & Qt::AltModifier)) {
        // Alt+Backspace is the component's other undo key.
        if (event->modifiers() & Qt::ShiftModifier)
            buffer_->Redo();
        else
            buffer_->Undo();
        return event->accept();
    }
    QsciScintilla::keyPressEvent(event);
}

void SourceView::contextMenuEvent(QContextMenuEvent* event) {
    // The component's built-in menu would undo behind the buffer's back; the window that
    // holds the control brings its own.
    Q_EMIT ContextMenuRequested(event->globalPos());
    event->accept();
}
