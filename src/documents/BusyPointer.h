#pragma once

#include <QApplication>

// The busy pointer of one document operation; it comes off while a question waits for the
// user, and goes back on when the work goes on.
class BusyPointer {
public:
    BusyPointer() { Show(); }
    ~BusyPointer() { Restore(); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
    void Show() {
        if (!shown_ && qobject_cast<QApplication*>(QCoreApplication::instance())) {
            QApplication::setOverrideCursor(Qt::WaitCursor);
            shown_ = true;
        }
    }
    void Restore() {
        if (shown_)
            QApplication::restoreOverrideCursor();
        shown_ = false;
    }

private:
    bool shown_ = false;
};
