#include "app/ProcessState.h"

#include "app/AutomationServer.h"
#include "documents/DocumentCollection.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"

ProcessState::ProcessState() = default;
ProcessState::~ProcessState() = default;

IFrame* ProcessState::Frame() const {
    return MainWindow.data();
}

ProcessState& ProcessState::Instance() {
    static ProcessState state;
    return state;
}

void ProcessState::ComputeMarkStrings() {
    AttributeMarkHost = QString(QChar(0xF8FE));
    ValueMarkHost = QString(QChar(0xF8FD));
    SubvalueMarkHost = QString(QChar(0xF8FC));
    AttributeMark = QString(QChar(30));
    ValueMark = QString(QChar(29));
    SubvalueMark = QString(QChar(28));
    PrintableMarks = {QString(QChar(28 + 64)), QString(QChar(29 + 64)), QString(QChar(30 + 64))};
}

Moriox& Settings() {
    ProcessState& state = ProcessState::Instance();
    // Before start-up has made it (and in tools that never run start-up) the defaults serve.
    if (!state.Settings)
        state.Settings = std::make_unique<Moriox>();
    return *state.Settings;
}
