#include "shell/ChildArrangement.h"

#include <QMdiArea>
#include <QMdiSubWindow>

void ChildArrangement::Arrange(QMdiArea& area, Mode mode) {
    if (mode == Cascade) {
        area.cascadeSubWindows();
        return;
    }
    QList<QMdiSubWindow*> windows;
    for (QMdiSubWindow* window : area.subWindowList(QMdiArea::CreationOrder))
        if (window->isVisible() && !window->isMinimized())
            windows << window;
    if (windows.isEmpty())
        return;
    const QRect space = area.viewport()->rect();
    const int count = static_cast<int>(windows.size());
    for (int i = 0; i < count; ++i) {
        QMdiSubWindow* window = windows[i];
        if (window->isMaximized())
            window->showNormal();
        QRect place;
        if (mode == TileHorizontal) {
            const int top = space.height() * i / count;
            place = QRect(0, top, space.width(), space.height() * (i + 1) / count - top);
        } else {
            const int left = space.width() * i / count;
            place = QRect(left, 0, space.width() * (i + 1) / count - left, space.height());
        }
        window->setGeometry(place);
    }
}
