#include "app/modMain.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvConnection.h"
#include "editing/frmGoto.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"
#include "support/BrixError.h"
#include "support/EditorFont.h"
#include "support/ShowError.h"
#include "support/UnixSignalWatcher.h"

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QMessageBox>
#include <csignal>

namespace {

void unloadSlot(QPointer<QWidget>& slot) {
    try {
        if (slot) {
            slot->close();
            slot->deleteLater();
        }
    } catch (...) {
    }
    slot.clear();
}

} // namespace

bool Main(QApplication& app) {
    ProcessState& state = ProcessState::Instance();
    try {
        // Help: the start page of the manual beside the executable.
        state.HelpFilePath =
            QCoreApplication::applicationDirPath() + QStringLiteral("/brix-help.html");
        mvConnection::Instance().Initialize(1);
        state.ComputeMarkStrings();

        // Before the settings, whose default font rule looks for it.
        state.FontInstalled = EditorFont::Add();

        state.Documents = std::make_unique<DocumentCollection>();
        state.Host.Provider = QStringLiteral("mvdb");
        state.Host.ServerName = QStringLiteral("*");

        state.Settings = std::make_unique<Moriox>();
        state.Settings->LoadSettings();

        auto* frame = new frmMain; // deletes itself when it closes
        state.MainWindow = frame;
        frame->Load();
        frame->show();

        QApplication::setOverrideCursor(Qt::WaitCursor);
        frame->SetPaneText(1, QString());

        // Loaded ahead of any use and kept until shutdown.
        frmGoto::Instance();

        // A user start with nothing to show opens an empty document to type into.
        if (state.Mode == ProcessState::StartMode::User && state.Documents->Count() == 0)
            frame->NewDocument();

        QApplication::restoreOverrideCursor();
    } catch (const BrixError& error) {
        QApplication::restoreOverrideCursor();
        ShowMessage(
            QStringLiteral("The Application is unable to start do to the following error:\r\n") +
                error.Description,
            QMessageBox::Critical);
        Shutdown();
        return false;
    } catch (const std::exception& error) {
        QApplication::restoreOverrideCursor();
        ShowMessage(
            QStringLiteral("The Application is unable to start do to the following error:\r\n") +
                QString::fromLocal8Bit(error.what()),
            QMessageBox::Critical);
        Shutdown();
        return false;
    }
    Q_UNUSED(app);
    return true;
}

void Shutdown() {
    ProcessState& state = ProcessState::Instance();
    if (state.ShutdownStarted)
        return;
    state.ShutdownStarted = true;

    try {
        if (state.MainWindow && !state.MainWindow->IsUnloading())
            state.MainWindow->UnloadForm();
    } catch (const BrixError& error) {
        ShowError(error.Description);
    } catch (const std::exception& error) {
        ShowError(QString::fromLocal8Bit(error.what()));
    }
    state.MainWindow.clear();
    unloadSlot(state.ResultsWindow);
    unloadSlot(state.GotoWindow);
    unloadSlot(state.FindWindow);
    unloadSlot(state.PropertiesWindow);
    unloadSlot(state.KeywordsWindow);

    state.Documents.reset();
    state.ExtendedTools.reset();

    // After the windows, which write their place and the recent list into the settings.
    try {
        if (state.Settings)
            state.Settings->SaveSettings();
    } catch (...) {
    }
    state.Settings.reset();

    EditorFont::Remove(state.FontInstalled);

    // The event loop ends once the shutdown is through.
    QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit,
                              Qt::QueuedConnection);
}

int RunBrix(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Brix"));
    QApplication::setOrganizationName(QStringLiteral("Tolvek"));
    QApplication::setApplicationVersion(QStringLiteral(BRIX_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);

    ProcessState& state = ProcessState::Instance();
    state.Mode = app.arguments().contains(QStringLiteral("--automation"))
                     ? ProcessState::StartMode::Automation
                     : ProcessState::StartMode::User;

    // Ending signals close the frame as the program would: no questions.
    UnixSignalWatcher signalWatcher({SIGTERM, SIGINT, SIGHUP});
    QObject::connect(&signalWatcher, &UnixSignalWatcher::Received, &app, [] {
        ProcessState& s = ProcessState::Instance();
        if (s.MainWindow)
            s.MainWindow->UnloadForm();
        else
            Shutdown();
    });

    if (!Main(app))
        return 1;
    const int code = app.exec();
    Shutdown();
    return code;
}
