#include "documents/DocumentSteps.h"

#include "app/ProcessState.h"
#include "documents/BusyPointer.h"
#include "documents/mvResource.h"
#include "support/BrixError.h"
#include "support/IFrame.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

#include <exception>

namespace DocumentSteps {

QString CurrentDescription() {
    try {
        throw;
    } catch (const BrixError& error) {
        return error.Description;
    } catch (const std::exception& error) {
        return QString::fromLocal8Bit(error.what());
    } catch (...) {
        return QStringLiteral("An unexpected error has occurred.");
    }
}

int32_t Ask(const QString& question, int32_t buttons) {
    return BrixMessage(question, buttons | MsgBox::Question) & ~MsgBox::Ticked;
}

void Tell(const QString& text) {
    BrixMessage(text, MsgBox::Exclamation);
}

void SetStatus(const QString& text) {
    if (IFrame* frame = ProcessState::Instance().Frame())
        frame->SetStatusText(text);
}

void UpdateCommands() {
    if (IFrame* frame = ProcessState::Instance().Frame())
        frame->RefreshCommands();
}

bool Failed(BusyPointer& busy) {
    busy.Restore();
    SetStatus(QString());
    Tell(CurrentDescription());
    return false;
}

void TakeHostContext(const mvResource& resource) {
    HostContext context;
    context.Provider = resource.Provider();
    context.ServerName = resource.ServerName();
    context.Database = resource.Database();
    context.Folder = resource.Folder();
    ProcessState::Instance().Host = context;
}

} // namespace DocumentSteps
