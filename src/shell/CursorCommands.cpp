#include "shell/CursorCommands.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/modOpen.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "documents/mvResource.h"
#include "editing/frmGoto.h"
#include "recovery/modAutoRecover.h"
#include "settings/Moriox.h"
#include "support/BrixError.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

void CursorCommands::HandleGoto(const std::shared_ptr<mvDocument>& document, bool forceDialog,
                                QWidget* owner) {
    const QString word = ProcessState::Instance().ContextWord;
    if (word.isEmpty() || forceDialog || !Settings().NoGotoDialog || !document) {
        frmGoto::Instance().ShowGoto(word, owner);
        return;
    }
    try {
        document->GotoLabel(word);
    } catch (const std::exception&) {
        // Past the dialog, a label that isn't there just ends the command.
    }
}

void CursorCommands::SplitWord(const QString& word, const QString& defaultFolder, QString& folder,
                               QString& itemID) {
    const QStringList fields = word.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (fields.size() > 1) {
        folder = fields.at(0);
        itemID = fields.at(1);
    } else {
        folder = defaultFolder;
        itemID = word;
    }
}

void CursorCommands::HandleOpen(const std::shared_ptr<mvDocument>& document, QWidget* owner) {
    ProcessState& state = ProcessState::Instance();
    const std::shared_ptr<mvResource> resource = document ? document->DocumentResource() : nullptr;
    QString provider = state.Host.Provider;
    QString serverName = state.Host.ServerName;
    QString database = state.Host.Database;
    QString defaultFolder;
    try {
        if (resource) {
            provider = resource->Provider();
            serverName = resource->ServerName();
            database = resource->Database();
            defaultFolder = resource->Folder();
        }
    } catch (const std::exception&) {
    }
    state.ContextWord = state.ContextWord.trimmed();
    QString folder;
    QString itemID;
    SplitWord(state.ContextWord, defaultFolder, folder, itemID);

    if (state.Documents) {
        for (const auto& open : state.Documents->Snapshot()) {
            if (open->FileName().compare(folder, Qt::CaseInsensitive) == 0 &&
                open->ItemID().compare(itemID, Qt::CaseInsensitive) == 0) {
                open->Activate();
                return;
            }
        }
    }

    std::shared_ptr<mvResource> chosen;
    {
        const modAutoRecover::Suspension suspended;
        try {
            mvConnection& connection = mvConnection::Instance();
            const QString path =
                connection.MakePath(provider, serverName, database, folder, itemID);
            std::shared_ptr<mvResource> start;
            try {
                start = connection.GetResource(path, false, false);
            } catch (const BrixError&) {
                // An incomplete path (no file or account at the cursor): the browser starts
                // at the current place instead.
                start = modOpen::DefaultResource(nullptr);
            }
            chosen = connection.BrowseForResource(QStringLiteral("Open"), start, QString(), -1, 0,
                                                  Settings().RecordLocking, -1, owner);
        } catch (const BrixError& error) {
            BrixMessage(error.Description, MsgBox::Exclamation, owner);
            return;
        } catch (const std::exception& error) {
            ShowError(QString::fromLocal8Bit(error.what()), owner);
            return;
        }
    }
    if (!chosen)
        return;
    const auto opened = mvDocument::Create();
    bool readOnly = false;
    try {
        readOnly = chosen->ReadOnly();
    } catch (const std::exception&) {
    }
    if (opened->OpenResource(chosen, readOnly))
        modOpen::AddRecent(opened->Path());
    else
        opened->FileClose(true);
}
