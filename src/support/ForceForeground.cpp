#include "support/ForceForeground.h"

#include <QApplication>
#include <QWidget>

bool ForceForeground(QWidget* window) {
    if (!window)
        return false;
    window = window->window();
    if (window->isActiveWindow())
        return true;
    if (window->isMinimized())
        window->showNormal();
    else
        window->show();
    window->raise();
    window->activateWindow();
    return window->isActiveWindow();
}
