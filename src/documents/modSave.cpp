#include "documents/modSave.h"

#include "app/ProcessState.h"
#include "documents/modOpen.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "documents/mvResource.h"
#include "recovery/modAutoRecover.h"
#include "settings/Moriox.h"
#include "support/BrixError.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

bool modSave::SaveAsCommand(const std::shared_ptr<mvDocument>& document, QWidget* owner) {
    if (!document)
        return false;
    std::shared_ptr<mvResource> target;
    try {
        const modAutoRecover::Suspension suspended;
        const auto start = modOpen::DefaultResource(document->DocumentResource());
        target = mvConnection::Instance().BrowseForResource(
            QStringLiteral("Save"), start, QString(), 0, 0, Settings().RecordLocking, 0, owner);
    } catch (const BrixError& error) {
        BrixMessage(error.Description, MsgBox::Exclamation);
        return false;
    }
    if (!target)
        return false;
    const QString oldPath = document->Path();
    if (!document->SaveToResource(target))
        return false;
    clsRecentList* recent = Settings().RecentList.get();
    if (recent && !oldPath.isEmpty())
        recent->RemoveItem(modOpen::RecentPathOf(oldPath));
    modOpen::AddRecent(document->Path());
    return true;
}
