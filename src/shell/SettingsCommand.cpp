#include "shell/SettingsCommand.h"

#include "editing/frmFind.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "editing/frmDocument.h"
#include "settings/Moriox.h"
#include "settings/frmSettings.h"
#include "shell/CommandBar.h"
#include "shell/frmMain.h"

#include <QToolBar>

bool SettingsCommand::Run(frmMain& frame, int tab) {
    const auto documentsOpen = [] {
        const ProcessState& state = ProcessState::Instance();
        return state.Documents && state.Documents->Count() > 0;
    };
    if (!frmSettings::ShowSettings(Settings(), tab, documentsOpen, &frame))
        return false;
    ApplyToScreen(frame);
    return true;
}

void SettingsCommand::ApplyToScreen(frmMain& frame) {
    const int iconSize = Settings().LargeToolbarIcons ? 32 : 16;
    frame.Bar().ToolBarWidget()->setIconSize(QSize(iconSize, iconSize));
    frame.RebuildFileMenu();
    if (const auto& documents = ProcessState::Instance().Documents) {
        for (const auto& document : documents->Snapshot())
            if (auto* window = dynamic_cast<frmDocument*>(document->View()))
                window->ApplySettings();
    }
    // The find dialog shows its text in the editor's font.
    if (frmFind* find = frmFind::Loaded())
        find->SetFont(Settings().FontName, Settings().FontSize.toInt());
    frame.UpdateToolBar();
}
