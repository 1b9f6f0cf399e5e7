#pragma once

#include <QString>
#include <cstdint>

class BusyPointer;
class mvResource;

// The small steps that the document's open, save and text members share: questions and
// notices through the program's message box, the status line, the command state, and the
// handler at the end of an operation.
namespace DocumentSteps {

constexpr char16_t ValueMarkHost = 0xF8FD;
constexpr char16_t SubvalueMarkHost = 0xF8FC;
constexpr char16_t ValueMark = 29;
constexpr char16_t SubvalueMark = 28;

// Reads of the resource never raise: an error gives the default.
template <typename Fn, typename T> T Guarded(Fn&& fn, T fallback) {
    try {
        return fn();
    } catch (...) {
        return fallback;
    }
}

// The description of the exception being handled, as the user is to read it.
QString CurrentDescription();
int32_t Ask(const QString& question, int32_t buttons);
void Tell(const QString& text);
void SetStatus(const QString& text);
void UpdateCommands();
// The one handler at the end of an operation, called from inside its catch: the pointer
// back, the status line cleared, the description shown. Gives false.
bool Failed(BusyPointer& busy);
// New paths start from the place of the last item opened or saved.
void TakeHostContext(const mvResource& resource);

} // namespace DocumentSteps
