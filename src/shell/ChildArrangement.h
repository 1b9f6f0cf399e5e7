#pragma once

class QMdiArea;

// Arranges the document windows of the frame: cascaded, one above the other, or side by
// side. Minimised windows keep their place.
class ChildArrangement {
public:
    enum Mode { Cascade = 0, TileHorizontal = 1, TileVertical = 2 };
    static void Arrange(QMdiArea& area, Mode mode);
};
