#pragma once

class QWidget;

// Brings a top-level window to the front: restored if minimised, shown otherwise. Gives
// whether it is now the active window.
bool ForceForeground(QWidget* window);
