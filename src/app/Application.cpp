#include "app/Application.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "shell/CommandBar.h"
#include "shell/frmMain.h"
#include "support/BrixError.h"
#include "support/ForceForeground.h"
#include "support/ShortcutKeyNames.h"

namespace {

constexpr int32_t DuplicateKey = 457;

} // namespace

std::shared_ptr<Application> Application::Acquire() {
    ProcessState& state = ProcessState::Instance();
    if (auto live = state.ActiveApplication.lock())
        return live;
    auto created = std::make_shared<Application>(Token{});
    state.ActiveApplication = created;
    return created;
}

Application::~Application() {
    ProcessState& state = ProcessState::Instance();
    if (state.ActiveApplication.expired())
        state.ActiveApplication.reset();
    // A user start stays with its user; only an editor started for clients ends with them.
    const bool empty = !state.Documents || state.Documents->Count() == 0;
    if (empty && state.Mode == ProcessState::StartMode::Automation && state.MainWindow &&
        !state.ShutdownStarted)
        state.MainWindow->StartShutdownTimer();
}

void Application::Activate() {
    if (frmMain* frame = ProcessState::Instance().MainWindow) {
        frame->show();
        ForceForeground(frame);
    }
}

QString Application::ServerName() const {
    return ProcessState::Instance().Host.ServerName;
}

void Application::SetServerName(const QString& value) {
    if (!value.isEmpty())
        ProcessState::Instance().Host.ServerName = value;
}

QString Application::Provider() const {
    return ProcessState::Instance().Host.Provider;
}

void Application::SetProvider(const QString& value) {
    if (!value.isEmpty())
        ProcessState::Instance().Host.Provider = value;
}

QString Application::Database() const {
    return ProcessState::Instance().Host.Database;
}

void Application::SetDatabase(const QString& value) {
    if (!value.isEmpty())
        ProcessState::Instance().Host.Database = value;
}

QString Application::Folder() const {
    return ProcessState::Instance().Host.Folder;
}

void Application::SetFolder(const QString& value) {
    // The value is read back and stored again: the one given is dropped.
    if (!value.isEmpty())
        ProcessState::Instance().Host.Folder = Folder();
}

bool Application::Visible() const {
    const frmMain* frame = ProcessState::Instance().MainWindow;
    return frame && frame->isVisible();
}

void Application::SetVisible(bool visible) {
    if (frmMain* frame = ProcessState::Instance().MainWindow)
        frame->setVisible(visible);
}

void Application::ExtendedCommand(const QString& name, const QString& caption, int32_t shortcut) {
    ProcessState& state = ProcessState::Instance();
    const QString shortcutText = shortcut >= INT16_MIN && shortcut <= INT16_MAX
                                     ? ShortcutKeyNames::Name(static_cast<int16_t>(shortcut))
                                     : QString();
    // A key stands once on the menu and once in the collection.
    if (state.ExtendedTools && state.ExtendedTools->contains(name))
        throw BrixError(DuplicateKey, QStringLiteral("This key is already associated with an "
                                                     "element of this collection"));
    if (frmMain* frame = state.MainWindow) {
        if (CommandBand* tools = frame->Bar().Band(QStringLiteral("tools"))) {
            if (tools->Tool(name))
                throw BrixError(DuplicateKey, QStringLiteral("Key is not unique in collection"));
            CommandTool* tool = tools->AddTool(name, caption, CommandTool::Type::Button, false);
            tool->SetShortcut(shortcutText);
        }
    }
    if (!state.ExtendedTools)
        state.ExtendedTools = std::make_unique<QStringList>();
    state.ExtendedTools->append(name);
}

void Application::RaiseUserTool(const QString& key, const std::shared_ptr<mvDocument>& document) {
    ProcessState& state = ProcessState::Instance();
    if (!state.ExtendedTools || !state.ExtendedTools->contains(key))
        return;
    std::shared_ptr<Application> target = document ? document->ApplicationRef() : nullptr;
    if (!target)
        target = state.ActiveApplication.lock();
    if (target)
        Q_EMIT target->Custom(key);
}
