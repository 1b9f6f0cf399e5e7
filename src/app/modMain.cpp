#include "app/modMain.h"

#include "app/Application.h"
#include "app/AutomationServer.h"
#include "app/CommandLine.h"
#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvConnection.h"
#include "editing/frmGoto.h"
#include "recovery/modAutoRecover.h"
#include "settings/Moriox.h"
#include "shell/CommandDispatcher.h"
#include "shell/ToolIcon.h"
#include "shell/frmMain.h"
#include "support/BrixError.h"
#include "support/EditorFont.h"
#include "support/HelpFile.h"
#include "support/ShowError.h"
#include "support/UnixSignalWatcher.h"

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QMessageBox>
#include <csignal>
#include <cstdio>
#include <cstring>

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

// The objects on the session bus. Losing the bus ends an editor started for clients, as
// nobody else can reach it then.
void startAutomation() {
    ProcessState& state = ProcessState::Instance();
    if (state.Automation)
        return;
    state.Automation = std::make_unique<AutomationServer>();
    if (!state.Automation->Start()) {
        state.Automation.reset();
        return;
    }
    QObject::connect(state.Automation.get(), &AutomationServer::BusLost, [] {
        ProcessState& s = ProcessState::Instance();
        if (s.Mode != ProcessState::StartMode::Automation)
            return;
        if (s.MainWindow)
            s.MainWindow->UnloadForm();
        else
            Shutdown();
    });
}

const char* const kUsage =
    "Usage: brix [OPTION]... [SWITCH | FILE]...\n"
    "Edits programs of MultiValue databases and local files.\n"
    "\n"
    "  /T=PROVIDER    provider of the host context (mvdb or file)\n"
    "  /H=SERVER      connection to use; alone, it connects at once\n"
    "  /A=ACCOUNT     account of the host context\n"
    "  /F=FILE        file of the host context\n"
    "  /I=ITEM        opens the item from the host context as it stands\n"
    "  /L             opens what follows read only\n"
    "  FILE           opens a local file\n"
    "\n"
    "Switches apply from left to right. A value or name with blanks is quoted as the\n"
    "shell wants it: \"/F=MY FILE\" or \"my prog.bas\". An absolute path such as\n"
    "/home/me/prog.bas is a file name.\n"
    "\n"
    "  --automation   start for automation clients (D-Bus service com.tolvek.Brix)\n"
    "  --help         show this help and exit\n"
    "  --version      show the version and exit\n";

} // namespace

bool Main(QApplication& app) {
    ProcessState& state = ProcessState::Instance();
    try {
        // Only composed here: a manual that isn't there fails nothing until F1.
        state.HelpFilePath = HelpFile::Locate(QCoreApplication::applicationDirPath(),
                                              QString::fromLatin1(HelpFile::StartPage));
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
        frame->Dispatcher().UserTool = &Application::RaiseUserTool;
        // An editor started for clients stays out of sight until one asks for it.
        if (state.Mode == ProcessState::StartMode::User)
            frame->show();

        QApplication::setOverrideCursor(Qt::WaitCursor);
        frame->SetPaneText(1, QString());

        // Loaded ahead of any use and kept until shutdown.
        frmGoto::Instance();

        // What a crashed run left is offered before anything else; not to an automation
        // client.
        if (state.Mode == ProcessState::StartMode::User)
            modAutoRecover::ScanForRecoverableCopies(frame);
        // A signal while the dialog was up has ended the program already.
        if (state.ShutdownStarted) {
            QApplication::restoreOverrideCursor();
            return true;
        }

        if (state.Mode == ProcessState::StartMode::User) {
            mvConnection::Instance().ShowWarnings(frame);
            CommandLine::Process(state.CommandLine);
        }

        // After the command line, so that a client finds what it opened.
        startAutomation();

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
        modAutoRecover::CleanExit();
    } catch (const std::exception& error) {
        ShowError(QString::fromLocal8Bit(error.what()));
    }
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

    state.Documents.reset();
    state.ExtendedTools.reset();

    // After the windows, which write their place and the recent list into the settings.
    try {
        if (state.Settings)
            state.Settings->SaveSettings();
    } catch (...) {
    }
    state.Settings.reset();

    // Clients holding the Application hear that the editor ends, settings written.
    if (auto application = state.ActiveApplication.lock())
        application->RaiseQuit();

    EditorFont::Remove(state.FontInstalled);
    state.Automation.reset();

    // The event loop ends once the shutdown is through.
    QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit,
                              Qt::QueuedConnection);
}

int RunBrix(int argc, char** argv) {
    // Answered before any window system is needed.
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) {
            std::fputs(kUsage, stdout);
            const QString manual = HelpFile::Locate(HelpFile::ProgramFolder(),
                                                    QString::fromLatin1(HelpFile::StartPage));
            std::printf("\nThe manual: %s (also Help > Topics, F1)\n", qPrintable(manual));
            return 0;
        }
        if (std::strcmp(argv[i], "--version") == 0) {
            std::printf("brix %s\n", BRIX_VERSION);
            return 0;
        }
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Brix"));
    QApplication::setOrganizationName(QStringLiteral("Tolvek"));
    QApplication::setApplicationVersion(QStringLiteral(BRIX_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.tolvek.Brix"));
    QApplication::setWindowIcon(ToolIcon::Application());
    QApplication::setQuitOnLastWindowClosed(false);

    ProcessState& state = ProcessState::Instance();
    QStringList arguments = app.arguments().mid(1);
    state.Mode = arguments.removeAll(QStringLiteral("--automation")) > 0
                     ? ProcessState::StartMode::Automation
                     : ProcessState::StartMode::User;
    state.CommandLine = CommandLine::JoinArguments(arguments);

    // Ending signals (a logout, a closed terminal, Ctrl+C) close the frame without
    // questions; the changes go into recovery copies that the next start offers.
    UnixSignalWatcher signalWatcher({SIGTERM, SIGINT, SIGHUP});
    QObject::connect(&signalWatcher, &UnixSignalWatcher::Received, &app, [] {
        modAutoRecover::FinalPass();
        ProcessState& s = ProcessState::Instance();
        if (s.MainWindow)
            s.MainWindow->UnloadForm();
        else
            Shutdown();
    });

    if (!Main(app))
        return 1;
    if (state.ShutdownStarted)
        return 0;
    const int code = app.exec();
    Shutdown();
    return code;
}
