#include "language/LineNumberGutter.h"

#include "language/BufferLexer.h"
#include "language/DrawClass.h"
#include "language/ISourceDraw2.h"
#include "language/SourceView.h"
#include "settings/modColors.h"

#include <QEvent>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>

LineNumberGutter::LineNumberGutter(SourceView& view, std::function<void(int)> setRoom)
    : QWidget(&view), view_(view), viewport_(view.viewport()), setRoom_(std::move(setRoom)) {
    viewport_->installEventFilter(this);
    // Scrolling, edits and wrapping all end in an update of the view's interface.
    connect(&view_, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int) { update(); });
    connect(&view_, &QsciScintillaBase::SCN_ZOOM, this, [this] { Relayout(); });
    Relayout();
}

void LineNumberGutter::SetDrawHook(std::shared_ptr<ISourceDraw2> hook) {
    hook_ = std::move(hook);
    update();
}

void LineNumberGutter::SetMode(int16_t mode) {
    mode_ = mode;
    Relayout();
}

void LineNumberGutter::SetDigits(int32_t digits) {
    digits_ = digits;
    Relayout();
}

void LineNumberGutter::SetGutterColor(int32_t color) {
    gutterColor_ = color;
    update();
}

QFont LineNumberGutter::textFont() const {
    QFont font = view_.Lexer().font(0);
    // The view's zoom changes the text's size; the numbers follow it.
    const long zoom = view_.SendScintilla(QsciScintillaBase::SCI_GETZOOM);
    if (zoom != 0 && font.pointSizeF() > 0)
        font.setPointSizeF(std::max(1.0, font.pointSizeF() + static_cast<double>(zoom)));
    return font;
}

int32_t LineNumberGutter::CharWidth() const {
    return QFontMetrics(textFont()).horizontalAdvance(QLatin1Char('0'));
}

QColor LineNumberGutter::TextBackColor() const {
    const long bgr =
        view_.SendScintilla(QsciScintillaBase::SCI_STYLEGETBACK, QsciScintillaBase::STYLE_DEFAULT);
    return modColors::ToQColor(static_cast<int32_t>(bgr & 0xFFFFFF));
}

int LineNumberGutter::Room() const {
    if (mode_ == ModeNone)
        return 0;
    return CharWidth() * DrawClass::DrawnDigits(digits_);
}

int LineNumberGutter::lineHeight() const {
    return std::max(1, static_cast<int>(view_.SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0)));
}

void LineNumberGutter::Relayout() {
    const int room = Room();
    if (room != room_) {
        room_ = room;
        if (setRoom_)
            setRoom_(room);
    }
    place();
    update();
}

void LineNumberGutter::place() {
    if (!viewport_)
        return;
    const QRect port = viewport_->geometry();
    setGeometry(port.x() - room_, port.y(), room_, port.height());
    setVisible(room_ > 0);
}

bool LineNumberGutter::eventFilter(QObject* watched, QEvent* event) {
    // Compared by the pointer kept: the view may be half destroyed when its viewport moves.
    if (watched == viewport_ && (event->type() == QEvent::Resize || event->type() == QEvent::Move))
        place();
    return QWidget::eventFilter(watched, event);
}

void LineNumberGutter::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), modColors::ToQColor(gutterColor_));
    ISourceDraw2* hook = hook_.get();
    if (!hook || mode_ == ModeNone)
        return;
    painter.setFont(textFont());

    using Sci = QsciScintillaBase;
    const int height = lineHeight();
    const int32_t lines = static_cast<int32_t>(view_.SendScintilla(Sci::SCI_GETLINECOUNT));
    const long lastLine = lines - 1;
    const long rowsInDocument = view_.SendScintilla(Sci::SCI_VISIBLEFROMDOCLINE, lastLine) +
                                view_.SendScintilla(Sci::SCI_WRAPCOUNT, lastLine);
    const long firstRow = view_.SendScintilla(Sci::SCI_GETFIRSTVISIBLELINE);
    const int rows = this->height() / height + 1;

    SourceDrawLine record;
    record.Painter = &painter;
    record.CharWidth = CharWidth();
    record.LineHeight = height;
    // The gutter has nothing in front of the numbers: the text's left is its own left.
    record.TextX = 0;
    hook->ISourceDraw2_PreDraw(&painter);
    for (int r = 0; r < rows; ++r) {
        const long row = firstRow + r;
        if (row >= rowsInDocument)
            break;
        const long line = view_.SendScintilla(Sci::SCI_DOCLINEFROMVISIBLE, row);
        record.Line = static_cast<int32_t>(line);
        record.WrapRow =
            static_cast<int32_t>(row - view_.SendScintilla(Sci::SCI_VISIBLEFROMDOCLINE, line));
        record.LineY = r * height;
        hook->ISourceDraw2_PreDrawLine(record);
    }
    hook->ISourceDraw2_PostDraw(&painter);
}

int32_t LineNumberGutter::lineAtY(int y) const {
    using Sci = QsciScintillaBase;
    const long row = view_.SendScintilla(Sci::SCI_GETFIRSTVISIBLELINE) + y / lineHeight();
    return static_cast<int32_t>(view_.SendScintilla(Sci::SCI_DOCLINEFROMVISIBLE, row));
}

void LineNumberGutter::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        Q_EMIT LinePressed(lineAtY(event->position().toPoint().y()), event->modifiers());
    event->accept();
}
