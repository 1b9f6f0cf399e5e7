#pragma once

#include <QString>
#include <cstdint>

class QPainter;

// One row of a line about to be drawn: the surface, the font's character width, the row
// height, the x of the line's text and the y of the row on the surface, the zero-based
// line and which wrapped row of it this is (0 for the first).
//
// When printing, the control lays each line out with its prefix as text, so that wrapped
// rows fall under it: the hook is called once per line with no surface, the line count of
// the document, and gives the prefix in `Prefix` and the text's x in `TextX`.
struct SourceDrawLine {
    QPainter* Painter = nullptr;
    int32_t CharWidth = 0;
    int32_t LineHeight = 0;
    int32_t TextX = 0;
    int32_t LineY = 0;
    int32_t Line = 0;
    int32_t WrapRow = 0;
    int32_t LineCount = 0;
    QString Prefix;
};

// One printed page: the surface, the font's character width and height, the left and right
// edges of the text area, the y where its text begins and the one-based page number.
struct SourceDrawPage {
    QPainter* Painter = nullptr;
    int32_t CharWidth = 0;
    int32_t CharHeight = 0;
    int32_t LeftEdge = 0;
    int32_t RightEdge = 0;
    int32_t Y = 0;
    int32_t Page = 0;
};

// Draw hooks a control calls while it paints the screen or a printed page.
class ISourceDraw2 {
public:
    virtual ~ISourceDraw2() = default;
    virtual void ISourceDraw2_PostDraw(QPainter* painter) = 0;
    virtual void ISourceDraw2_PostDrawPage(const SourceDrawPage& record) = 0;
    virtual void ISourceDraw2_PreDraw(QPainter* painter) = 0;
    virtual void ISourceDraw2_PreDrawLine(SourceDrawLine& record) = 0;
    virtual void ISourceDraw2_PreDrawPage(const SourceDrawPage& record) = 0;
};
