#pragma once

#include "language/ISourceDraw2.h"

#include <QBrush>
#include <QPointer>
#include <QString>
#include <cstdint>
#include <optional>

class SourceView;

// The draw hook of a text control, whose one job is the line numbers: it paints each
// row's number in front of the line, for the screen and for printing alike.
class DrawClass final : public ISourceDraw2 {
public:
    explicit DrawClass(SourceView& view);

    void ISourceDraw2_PostDraw(QPainter*) override {}
    void ISourceDraw2_PostDrawPage(const SourceDrawPage&) override {}
    void ISourceDraw2_PreDraw(QPainter*) override {}
    void ISourceDraw2_PreDrawLine(SourceDrawLine& record) override;
    void ISourceDraw2_PreDrawPage(const SourceDrawPage&) override {}

    // The digit width as drawn: 3 to 10.
    static int32_t DrawnDigits(int32_t digits);
    // The text of a row: the one-based line number padded with "0" to `digits` (its
    // right-hand digits when wider), or blanks on the later rows of a wrapped line.
    static QString LineNumberText(int32_t line, int32_t digits, int32_t wrapRow, bool lineWrap);

    // Grey text, as stored: system colour 17.
    static constexpr int32_t GrayText = static_cast<int32_t>(0x80000011u);

private:
    QPointer<SourceView> view_;
    // Made at first need, in the control's background colour.
    std::optional<QBrush> backBrush_;
};
