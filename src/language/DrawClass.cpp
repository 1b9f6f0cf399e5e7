#include "language/DrawClass.h"

#include "language/LineNumberGutter.h"
#include "language/SourceView.h"
#include "settings/modColors.h"

#include <QPainter>
#include <algorithm>

DrawClass::DrawClass(SourceView& view) : view_(&view) {}

int32_t DrawClass::DrawnDigits(int32_t digits) {
    return std::clamp(digits, 3, 10);
}

QString DrawClass::LineNumberText(int32_t line, int32_t digits, int32_t wrapRow, bool lineWrap) {
    const int32_t width = DrawnDigits(digits);
    if (lineWrap && wrapRow > 0)
        return QString(width, QLatin1Char(' '));
    const QString number = QString::number(static_cast<int64_t>(line) + 1);
    if (number.size() >= width)
        return number.right(width);
    return QString(width - number.size(), QLatin1Char('0')) + number;
}

void DrawClass::ISourceDraw2_PreDrawLine(SourceDrawLine& record) {
    SourceView* view = view_.data();
    QPainter* painter = record.Painter;
    if (!view || !painter)
        return;
    const LineNumberGutter& gutter = view->Gutter();
    const int16_t mode = gutter.Mode();
    if (mode == LineNumberGutter::ModeNone)
        return;
    const int32_t width = DrawnDigits(gutter.Digits());
    const QString text = LineNumberText(record.Line, width, record.WrapRow, view->LineWrap());
    const int32_t x = mode == LineNumberGutter::ModeLeftEdge ? 0 : record.TextX;

    painter->save();
    const QRect cell(x, record.LineY, record.CharWidth * width, record.LineHeight);
    painter->fillRect(cell, modColors::ToQColor(gutter.GutterColor()));
    painter->setPen(modColors::ToQColor(GrayText));
    painter->drawText(cell, Qt::AlignLeft | Qt::AlignVCenter, text);
    painter->restore();

    const QColor back = gutter.TextBackColor();
    if (!backBrush_ || backBrush_->color() != back)
        backBrush_ = QBrush(back);
    painter->fillRect(record.CharWidth * width - 1, record.LineY, 1, record.LineHeight,
                      *backBrush_);
}
