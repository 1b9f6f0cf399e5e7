#include "support/ShowError.h"

#include "app/ProcessState.h"
#include "support/IFrame.h"
#include "support/MsgBoxEx.h"

#include <QMessageBox>

namespace {

int32_t flagsOf(int icon) {
    switch (icon) {
    case QMessageBox::Critical:
        return MsgBox::Critical;
    case QMessageBox::Question:
        return MsgBox::Question;
    case QMessageBox::Warning:
        return MsgBox::Exclamation;
    case QMessageBox::Information:
        return MsgBox::Information;
    default:
        return 0;
    }
}

} // namespace

int32_t BrixMessage(const QString& text, int32_t flags, QWidget* owner) {
    if (!owner)
        if (IFrame* frame = ProcessState::Instance().Frame())
            owner = frame->OwnerWindow();
    return MsgBoxEx(text, flags, QStringLiteral("Brix"), QString(), owner);
}

void ShowMessage(const QString& text, int icon, QWidget* parent) {
    BrixMessage(text, MsgBox::OKOnly | flagsOf(icon), parent);
}

void ShowError(const QString& description, QWidget* parent) {
    ShowMessage(QStringLiteral("The following error has occurred:\r\n") + description,
                QMessageBox::Critical, parent);
}
