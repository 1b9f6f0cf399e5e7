#pragma once

#include <QString>
#include <cstdint>

class QWidget;

// The common error box: caption "Brix", "The following error has occurred:", a line end
// and the description.
void ShowError(const QString& description, QWidget* parent = nullptr);

// The common message box with the program's caption; `icon` is a QMessageBox::Icon.
void ShowMessage(const QString& text, int icon, QWidget* parent = nullptr);

// A message of the program in the extended box (flags and answers of MsgBoxEx.h), caption
// "Brix", owned by the main window when there is one. Gives the answer.
int32_t BrixMessage(const QString& text, int32_t flags, QWidget* owner = nullptr);
