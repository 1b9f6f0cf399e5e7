#pragma once

#include <QString>

class QWidget;

// The common error box: caption "Brix", "The following error has occurred:", a line end
// and the description.
void ShowError(const QString& description, QWidget* parent = nullptr);

// The common message box with the program's caption; `icon` is a QMessageBox::Icon.
void ShowMessage(const QString& text, int icon, QWidget* parent = nullptr);
