#include "BoxAnswers.h"

#include "support/MsgBoxEx.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QMessageBox>

BoxAnswers::BoxAnswers() {
    MsgBox::SetAnswerProvider([this](QMessageBox& box) { answer(box); });
}

BoxAnswers::~BoxAnswers() {
    MsgBox::SetAnswerProvider({});
}

void BoxAnswers::Push(int32_t code, bool tick) {
    answers_.append({code, tick});
}

void BoxAnswers::Push(const QList<int32_t>& codes) {
    for (int32_t code : codes)
        Push(code);
}

QStringList BoxAnswers::Texts() const {
    QStringList texts;
    for (const Shown& shown : Seen)
        texts << shown.Text;
    return texts;
}

bool BoxAnswers::AnyUnexpected() const {
    for (const Shown& shown : Seen)
        if (shown.Unexpected)
            return true;
    return false;
}

void BoxAnswers::answer(QMessageBox& box) {
    Shown shown;
    shown.Text = box.text();
    shown.Caption = box.windowTitle();
    shown.Icon = box.icon();
    for (QAbstractButton* button : box.buttons())
        shown.Buttons << button->text();
    shown.CheckBox = box.checkBox() != nullptr;
    if (box.checkBox())
        shown.CheckText = box.checkBox()->text();

    QAbstractButton* press = nullptr;
    if (!answers_.isEmpty()) {
        const Answer next = answers_.takeFirst();
        for (QAbstractButton* button : box.buttons())
            if (button->property(MsgBox::AnswerProperty).toInt() == next.code)
                press = button;
        if (next.tick && box.checkBox())
            box.checkBox()->click();
        shown.Unexpected = press == nullptr;
    } else {
        // A message with only OK needs no answer of its own.
        shown.Unexpected = box.buttons().size() != 1;
    }
    if (!press)
        press = box.escapeButton() ? box.escapeButton() : box.buttons().last();
    Seen.append(shown);
    press->click();
}
