#include "language/PrintClass.h"

#include <QDate>
#include <QFontMetrics>
#include <QLocale>
#include <QPainter>
#include <algorithm>
#include <cmath>

QString PrintClass::Title() const {
    if (!FileName.isEmpty() && !ItemName.isEmpty())
        return QStringLiteral("File: ") + FileName + QStringLiteral("     Item: ") + ItemName;
    if (!FileName.isEmpty())
        return QStringLiteral("File: ") + FileName;
    return QStringLiteral("File: (untitled)");
}

int32_t PrintClass::NumberDigits(int32_t lineCount) {
    return std::max<int32_t>(4, static_cast<int32_t>(QString::number(lineCount).size()));
}

QString PrintClass::LinePrefix(int32_t line, int32_t lineCount, bool continuation) {
    const int32_t width = NumberDigits(lineCount);
    if (continuation)
        return QString(width + 2, QLatin1Char(' '));
    const QString number = QString::number(static_cast<int64_t>(line) + 1);
    const QString digits = number.size() >= width
                               ? number.right(width)
                               : QString(width - number.size(), QLatin1Char('0')) + number;
    return digits + QStringLiteral("  ");
}

int32_t PrintClass::TitleX(int32_t leftEdge, int32_t rightEdge, int32_t charWidth,
                           int32_t pageWidth, int32_t dateWidth, int32_t titleWidth) {
    const double free =
        double(rightEdge - dateWidth) - double(leftEdge + pageWidth) - 8.0 * charWidth;
    return static_cast<int32_t>(
        std::lround(leftEdge + 4.0 * charWidth + pageWidth + (free - titleWidth) / 2.0));
}

void PrintClass::ISourceDraw2_PreDrawLine(SourceDrawLine& record) {
    // The control sets the prefix as text in front of the line, black on white, and
    // indents wrapped rows to the text's x.
    record.Prefix = LinePrefix(record.Line, record.LineCount, record.WrapRow > 0);
    record.TextX += static_cast<int32_t>(record.Prefix.size()) * record.CharWidth;
}

void PrintClass::ISourceDraw2_PreDrawPage(const SourceDrawPage& record) {
    QPainter* painter = record.Painter;
    if (!painter)
        return;
    const QFontMetrics metrics(painter->font(), painter->device());
    // A text the font can't measure counts as its length in characters.
    const auto width = [&](const QString& text) {
        const int measured = metrics.horizontalAdvance(text);
        return measured > 0 || text.isEmpty() ? measured
                                              : static_cast<int>(text.size()) * record.CharWidth;
    };
    const QString page = QStringLiteral("Page ") + QString::number(record.Page);
    const QString date = QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat);
    const QString title = Title();
    const int32_t pageWidth = width(page);
    const int32_t dateWidth = width(date);

    painter->save();
    painter->setPen(Qt::black);
    painter->setBackground(Qt::white);
    painter->setBackgroundMode(Qt::OpaqueMode);
    const int32_t top = record.Y - 2 * record.CharHeight;
    const int32_t baseline = top + metrics.ascent();
    painter->drawText(record.LeftEdge + 4 * record.CharWidth, baseline, page);
    painter->drawText(record.RightEdge - dateWidth - 4 * record.CharWidth, baseline, date);
    painter->drawText(TitleX(record.LeftEdge, record.RightEdge, record.CharWidth, pageWidth,
                             dateWidth, width(title)),
                      baseline, title);
    painter->restore();
}
