#include "support/BusyCursor.h"

#include <QApplication>
#include <QCursor>

BusyCursor::BusyCursor() {
    if (qobject_cast<QApplication*>(QCoreApplication::instance())) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        active_ = true;
    }
}

BusyCursor::~BusyCursor() {
    if (active_)
        QApplication::restoreOverrideCursor();
}
