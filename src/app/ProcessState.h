#pragma once

#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <array>
#include <cstdint>
#include <memory>

class Application;
class AutomationServer;
class DocumentCollection;
class Moriox;
class IFrame;
class frmMain;

// The current place new paths are built from; every successful open or save moves it.
struct HostContext {
    QString Provider = QStringLiteral("mvdb");
    QString ServerName = QStringLiteral("*");
    QString Database;
    QString Folder;
};

// Process-wide state that Main creates and Shutdown takes down.
class ProcessState {
public:
    enum class StartMode { User, Automation };

    static ProcessState& Instance();

    StartMode Mode = StartMode::User;
    // The raw command line of a user start, as the command-line walk reads it.
    QString CommandLine;
    // The automation objects on the session bus; none without a bus.
    std::unique_ptr<AutomationServer> Automation;
    std::unique_ptr<DocumentCollection> Documents;
    std::unique_ptr<Moriox> Settings;
    HostContext Host;
    int32_t NextNewNumber = 0;
    int32_t NextDocumentNumber = 0;
    // Non-owning: it must not keep the automation object alive.
    std::weak_ptr<Application> ActiveApplication;
    std::unique_ptr<QStringList> ExtendedTools;
    bool FontInstalled = false;
    QString HelpFilePath;

    // Marks as the connection delivers them (private-use characters) and as the editor
    // holds them (codes 30, 29, 28).
    QString AttributeMarkHost, ValueMarkHost, SubvalueMarkHost;
    QString AttributeMark, ValueMark, SubvalueMark;
    // Subvalue, value and attribute mark plus 64: "\", "]", "^".
    std::array<QString, 3> PrintableMarks;

    QPointer<frmMain> MainWindow;
    // The main window as the subsystems below the shell see it; null without a frame.
    IFrame* Frame() const;
    QPointer<QWidget> ResultsWindow, GotoWindow, FindWindow, PropertiesWindow;

    bool ShutdownStarted = false;

    // The word last found under the mouse or caret by a document window.
    QString ContextWord;

    void ComputeMarkStrings();

private:
    ProcessState();
    ~ProcessState();
};

// The settings object, which exists from start-up to shutdown.
Moriox& Settings();
