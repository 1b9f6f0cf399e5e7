#pragma once

#include <cstdint>

class QPainter;

// One row of a line about to be drawn: the surface, the font's character width, the row
// height, the x of the line's text and the y of the row on the surface, the zero-based
// line and which wrapped row of it this is (0 for the first).
struct SourceDrawLine {
    QPainter* Painter = nullptr;
    int32_t CharWidth = 0;
    int32_t LineHeight = 0;
    int32_t TextX = 0;
    int32_t LineY = 0;
    int32_t Line = 0;
    int32_t WrapRow = 0;
};

// Draw hooks a control calls while it paints the screen or a printed page.
class ISourceDraw2 {
public:
    virtual ~ISourceDraw2() = default;
    virtual void ISourceDraw2_PostDraw(QPainter* painter) = 0;
    virtual void ISourceDraw2_PostDrawPage(QPainter* painter, int32_t page) = 0;
    virtual void ISourceDraw2_PreDraw(QPainter* painter) = 0;
    virtual void ISourceDraw2_PreDrawLine(const SourceDrawLine& record) = 0;
    virtual void ISourceDraw2_PreDrawPage(QPainter* painter, int32_t page) = 0;
};
