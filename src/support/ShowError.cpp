#include "support/ShowError.h"

#include <QApplication>
#include <QMessageBox>

void ShowMessage(const QString& text, int icon, QWidget* parent) {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return;
    QMessageBox box(static_cast<QMessageBox::Icon>(icon), QStringLiteral("Brix"), text,
                    QMessageBox::Ok, parent);
    box.exec();
}

void ShowError(const QString& description, QWidget* parent) {
    ShowMessage(QStringLiteral("The following error has occurred:\r\n") + description,
                QMessageBox::Critical, parent);
}
