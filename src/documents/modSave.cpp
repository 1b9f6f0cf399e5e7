#include "documents/modSave.h"

#include "app/ProcessState.h"
#include "documents/BusyPointer.h"
#include "documents/ConnectionErrors.h"
#include "documents/DocumentCollection.h"
#include "documents/DocumentSteps.h"
#include "documents/clsDocView.h"
#include "documents/modOpen.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "documents/mvPath.h"
#include "documents/mvResource.h"
#include "language/ScintillaBuffer.h"
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

using namespace DocumentSteps;

// The document's own members of saving and closing: the overwrite questions, the lock
// that moves with Save As, the question about unsaved changes.

bool mvDocument::writeToResource() {
    SetStatus(QStringLiteral("Saving document to host"));
    {
        const modAutoRecover::Suspension suspended;
        EnsureView();
        try {
            resource_->WriteEditorText(Buffer()->AllBytes());
        } catch (const BrixError& error) {
            if (error.Number != ConnectionErrors::ChangedOnHost)
                throw;
            // Someone else's editor or program wrote it: theirs is lost only when the user says so.
            if (Ask(DisplayName() +
                        QStringLiteral(" was changed on the host since you opened it, by "
                                       "another user or program.\n\nReplace it with your "
                                       "text? Their changes will be lost. Choose No to leave "
                                       "the host's text as it is and keep yours unsaved here."),
                    MsgBox::YesNo | MsgBox::DefaultButton2) != MsgBox::Yes) {
                SetStatus(QString());
                return false;
            }
            resource_->AllowOverwrite();
            resource_->WriteEditorText(Buffer()->AllBytes());
        }
        resource_->Commit();
    }
    SetStatus(QString());
    return true;
}

bool mvDocument::FileSave() {
    if (!resource_) {
        Tell(QStringLiteral("Cannot save document - file name and/or item ID missing!"));
        return false;
    }
    if (ReadOnly()) {
        Tell(QStringLiteral("Cannot save ") + DisplayName() +
             QStringLiteral(" - document is read-only!"));
        return false;
    }
    EnsureView();
    BusyPointer busy;
    try {
        if (!writeToResource())
            return false;
        TakeHostContext(*resource_);
        SetDirty(false);
        UpdateCommands();
        labels_.reset();
        // A new item stops being "(New)" here.
        View()->SetTitle(TitleText());
        return true;
    } catch (...) {
        // The text and its modified state stay, and so does the resource.
        return Failed(busy);
    }
}

bool mvDocument::FileSaveAs(const QString& path) {
    EnsureView();
    std::shared_ptr<mvResource> target;
    try {
        target = mvConnection::Instance().GetResource(path, false, false, 0);
    } catch (...) {
        Tell(CurrentDescription());
        return false;
    }
    if (Guarded([&] { return target->IsItem(); }, false))
        return SaveToResource(std::move(target));
    Tell(QStringLiteral("Cannot save document - file name and/or item ID missing!"));
    return false;
}

bool mvDocument::SaveToResource(std::shared_ptr<mvResource> target) {
    if (!target)
        return false;
    QString itemId;
    try {
        // Before any test: a refused save still moves the context.
        TakeHostContext(*target);
        itemId = target->ItemID();
        const QString quoted = QLatin1Char('\'') + itemId + QLatin1Char('\'');

        bool checkOverwrite = true;
        if (resource_ && mvPath::Same(resource_->Path(), target->Path())) {
            checkOverwrite = false;
            if (resource_->ReadOnly()) {
                Tell(QStringLiteral("Item ") + quoted +
                     QStringLiteral(" is open in read-only mode. Please save using a different "
                                    "name."));
                return false;
            }
        }
        if (checkOverwrite) {
            if (!target->IsItem()) {
                Tell(quoted +
                     QStringLiteral(" appears to be a file or folder and cannot be overwritten!"));
                return false;
            }
            if (target->Exists()) {
                if (target->ReadOnly()) {
                    Tell(QStringLiteral("Item ") + quoted +
                         QStringLiteral(" exists and cannot be overwritten. Please save using a "
                                        "different name."));
                    return false;
                }
                if (Ask(QStringLiteral("Item ") + quoted + QStringLiteral(" exists. Overwrite?"),
                        MsgBox::YesNo) != MsgBox::Yes)
                    return false;
            }
        }
        if (Settings().RecordLocking) {
            try {
                target->SetLocked(true);
            } catch (...) {
                // The document's own resource is untouched: it stays as it was.
                Tell(QStringLiteral("Item ") + quoted +
                     QStringLiteral(" is currently locked and cannot be updated!"));
                return false;
            }
        }
    } catch (...) {
        Tell(CurrentDescription());
        return false;
    }

    BusyPointer busy;
    try {
        // The old lock goes before the write: a failed write leaves only the target held.
        if (resource_) {
            try {
                resource_->Release();
            } catch (...) {
            }
            resource_.reset();
        }
        resource_ = std::move(target);
        if (!writeToResource())
            return false;
        SetDirty(false);
        labels_.reset();
        View()->SetTitle(TitleText());
        UpdateCommands();
        return true;
    } catch (...) {
        return Failed(busy);
    }
}

bool mvDocument::FileClose(bool prompt) {
    if (closed_)
        return true;
    ProcessState& state = ProcessState::Instance();
    // Keeps this object alive while it takes itself out of the collection.
    std::shared_ptr<mvDocument> self = shared_from_this();
    if (View()) {
        if (prompt && IsDirty()) {
            const int32_t answer =
                Ask(QStringLiteral("Save changes to ") + DisplayName() + QStringLiteral(" ?"),
                    MsgBox::YesNoCancel);
            if (answer == MsgBox::Yes) {
                // A document that was never saved stays: its caller offers Save As.
                if (!resource_ || !FileSave())
                    return false;
            } else if (answer == MsgBox::No) {
                if (resource_) {
                    try {
                        resource_->Release();
                    } catch (...) {
                    }
                }
            } else {
                return false;
            }
        }
        dropView();
    }
    if (state.Documents)
        state.Documents->Remove(QString::number(documentNumber_));
    countOut();
    closed_ = true;
    labels_.reset();
    Q_EMIT DocumentClose();
    dropResource();
    return true;
}
