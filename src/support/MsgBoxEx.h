#pragma once

#include <QString>
#include <cstdint>
#include <functional>

class QMessageBox;
class QWidget;

// Flags and answers of the program's message box. The values are those of the classic
// platform message box, with three additions: the Yes / Yes to All / No button sets, the
// "do not show again" check box and a sound by icon.
namespace MsgBox {

// Button sets: the low four bits.
constexpr int32_t OKOnly = 0;
constexpr int32_t OKCancel = 1;
constexpr int32_t AbortRetryIgnore = 2;
constexpr int32_t YesNoCancel = 3;
constexpr int32_t YesNo = 4;
constexpr int32_t RetryCancel = 5;
constexpr int32_t CancelTryContinue = 6;
// Yes, Yes to All, No; only a button closes the box.
constexpr int32_t YesToAllNo = 9;
// The same words; Escape and the close box answer No.
constexpr int32_t YesToAllNoCancel = 10;

// Icons.
constexpr int32_t Critical = 16;
constexpr int32_t Question = 32;
constexpr int32_t Exclamation = 48;
constexpr int32_t Information = 64;

// Which button Enter presses: the first unless one of these is given.
constexpr int32_t DefaultButton2 = 0x100;
constexpr int32_t DefaultButton3 = 0x200;

constexpr int32_t CheckBox = 0x80;
constexpr int32_t PlaySound = 0x40000000;

// Answers.
constexpr int32_t OK = 1;
constexpr int32_t Cancel = 2;
constexpr int32_t Abort = 3;
constexpr int32_t Retry = 4;
constexpr int32_t Ignore = 5;
constexpr int32_t Yes = 6;
constexpr int32_t No = 7;
constexpr int32_t TryAgain = 10;
constexpr int32_t Continue = 11;
constexpr int32_t YesToAll = 14;
// Added to the answer when the check box was ticked.
constexpr int32_t Ticked = 128;

// Each button of a box carries its answer in this property.
inline constexpr char AnswerProperty[] = "MsgBoxAnswer";

// Called with each box once it is up and waiting for the user, from inside the box's own
// event loop; it answers by pressing a button. Tools and tests that can't wait for a
// person set one; an empty function clears it.
using AnswerProvider = std::function<void(QMessageBox& box)>;
void SetAnswerProvider(AnswerProvider provider);

// True while a box is up.
bool IsOpen();

// The sound scheme name for the icon of the flags ("SystemHand", "SystemQuestion",
// "SystemExclamation", "SystemAsterisk"); empty without an icon.
QString SoundName(int32_t flags);

} // namespace MsgBox

// Shows a message and gives the answer, plus MsgBox::Ticked when the check box was ticked.
// A call while another box is up shows nothing and gives 0, as does a process without a
// user interface. An empty caption takes the application's name, an empty check box text
// "Do not show this &warning again". Without an owner the box blocks the whole program.
int32_t MsgBoxEx(const QString& message, int32_t flags, const QString& caption = QString(),
                 const QString& checkText = QString(), QWidget* owner = nullptr);
