#include "support/MsgBoxEx.h"

#include <QApplication>
#include <QCheckBox>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <vector>

namespace {

struct Button {
    const char* text;
    int32_t answer;
};

bool boxOpen = false;
MsgBox::AnswerProvider answerProvider;

// The buttons of a set in the order they stand, and the answer that Escape and the close
// box give (0: neither closes the box).
std::vector<Button> buttonsOf(int32_t type, int32_t& escapeAnswer) {
    using namespace MsgBox;
    escapeAnswer = 0;
    switch (type) {
    case OKCancel:
        escapeAnswer = Cancel;
        return {{"OK", OK}, {"Cancel", Cancel}};
    case AbortRetryIgnore:
        return {{"&Abort", Abort}, {"&Retry", Retry}, {"&Ignore", Ignore}};
    case YesNoCancel:
        escapeAnswer = Cancel;
        return {{"&Yes", Yes}, {"&No", No}, {"Cancel", Cancel}};
    case YesNo:
        return {{"&Yes", Yes}, {"&No", No}};
    case RetryCancel:
        escapeAnswer = Cancel;
        return {{"&Retry", Retry}, {"Cancel", Cancel}};
    case CancelTryContinue:
        escapeAnswer = Cancel;
        return {{"Cancel", Cancel}, {"&Try Again", TryAgain}, {"&Continue", Continue}};
    case YesToAllNo:
        return {{"&Yes", Yes}, {"Yes to &All", YesToAll}, {"&No", No}};
    case YesToAllNoCancel:
        escapeAnswer = No;
        return {{"&Yes", Yes}, {"Yes to &All", YesToAll}, {"&No", No}};
    default:
        escapeAnswer = OK;
        return {{"OK", OK}};
    }
}

QMessageBox::Icon iconOf(int32_t flags) {
    switch (flags & 0x70) {
    case MsgBox::Critical:
        return QMessageBox::Critical;
    case MsgBox::Question:
        return QMessageBox::Question;
    case MsgBox::Exclamation:
        return QMessageBox::Warning;
    case MsgBox::Information:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

// An owner that stays on top would hide the box behind it.
void dropStayOnTop(QWidget* owner) {
    if (!owner)
        return;
    QWidget* window = owner->window();
    if (!(window->windowFlags() & Qt::WindowStaysOnTopHint))
        return;
    const bool visible = window->isVisible();
    window->setWindowFlag(Qt::WindowStaysOnTopHint, false);
    if (visible)
        window->show();
}

} // namespace

namespace MsgBox {

void SetAnswerProvider(AnswerProvider provider) {
    answerProvider = std::move(provider);
}

bool IsOpen() {
    return boxOpen;
}

QString SoundName(int32_t flags) {
    switch (flags & 0x70) {
    case Critical:
        return QStringLiteral("SystemHand");
    case Question:
        return QStringLiteral("SystemQuestion");
    case Exclamation:
        return QStringLiteral("SystemExclamation");
    case Information:
        return QStringLiteral("SystemAsterisk");
    default:
        return {};
    }
}

} // namespace MsgBox

int32_t MsgBoxEx(const QString& message, int32_t flags, const QString& caption,
                 const QString& checkText, QWidget* owner) {
    if (boxOpen || !qobject_cast<QApplication*>(QCoreApplication::instance()))
        return 0;
    boxOpen = true;
    struct Closing {
        ~Closing() { boxOpen = false; }
    } closing;

    // The sound is played even where the box itself would be silent.
    if ((flags & MsgBox::PlaySound) && !MsgBox::SoundName(flags).isEmpty())
        QApplication::beep();

    dropStayOnTop(owner);

    QMessageBox box(owner);
    if (!owner)
        box.setWindowModality(Qt::ApplicationModal);
    box.setWindowTitle(caption.isEmpty() ? QGuiApplication::applicationDisplayName() : caption);
    box.setTextFormat(Qt::PlainText);
    QString text = message;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    box.setText(text);
    box.setIcon(iconOf(flags));

    int32_t escapeAnswer = 0;
    const std::vector<Button> buttons = buttonsOf(flags & 0xF, escapeAnswer);
    std::vector<QPushButton*> made;
    for (const Button& button : buttons) {
        // One role for all keeps them in the order given; Escape is set apart below.
        QPushButton* pushButton =
            box.addButton(QString::fromLatin1(button.text), QMessageBox::AcceptRole);
        pushButton->setProperty(MsgBox::AnswerProperty, button.answer);
        made.push_back(pushButton);
        if (button.answer == escapeAnswer)
            box.setEscapeButton(pushButton);
    }
    const size_t defaultIndex = static_cast<size_t>((flags & 0x300) >> 8);
    box.setDefaultButton(made[defaultIndex < made.size() ? defaultIndex : 0]);

    if (flags & MsgBox::CheckBox) {
        const QString wording =
            checkText.isEmpty() ? QStringLiteral("Do not show this &warning again") : checkText;
        box.setCheckBox(new QCheckBox(wording, &box));
    }

    if (answerProvider) {
        // Runs inside the box's own loop, once the box is up.
        QTimer::singleShot(0, &box, [&box] {
            if (answerProvider)
                answerProvider(box);
        });
    }
    box.exec();

    int32_t answer = escapeAnswer;
    if (const QAbstractButton* clicked = box.clickedButton()) {
        const QVariant value = clicked->property(MsgBox::AnswerProperty);
        if (value.isValid())
            answer = value.toInt();
    }
    if (box.checkBox() && box.checkBox()->isChecked())
        answer += MsgBox::Ticked;
    return answer;
}
