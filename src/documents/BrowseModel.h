#pragma once

#include "documents/mvResource.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

// What the browser dialog shows and does, without the window: where it looks (a host's
// account and file, or a local folder), what is there, and turning the names the user
// typed or picked into resources taken as asked (read only, or locked when record
// locking is on).
class BrowseModel {
public:
    enum class Mode { Host, Local };

    BrowseModel(QString caption, const std::shared_ptr<mvResource>& start, QString extension,
                bool multiple, bool recordLocking);

    QString Caption() const { return caption_; }
    bool Multiple() const { return multiple_; }
    // Only "Open" offers opening read only.
    bool OffersReadOnly() const;
    Mode CurrentMode() const { return mode_; }
    void SetMode(Mode mode) { mode_ = mode; }

    QStringList Servers() const;
    QString Server() const { return server_; }
    QString Account() const { return account_; }
    QString File() const { return file_; }
    // Each step down clears what lies below it.
    void SetServer(const QString& server);
    void SetAccount(const QString& account);
    void SetFile(const QString& file);
    QStringList Accounts() const;
    // Directory-type files of the account.
    QStringList Files() const;
    QStringList Items() const;

    QString LocalFolder() const { return localFolder_; }
    void SetLocalFolder(const QString& folder);
    void LocalUp();
    // Folders first; files filtered by the extension while FilterByExtension is on.
    std::vector<mvResource::Child> LocalEntries() const;
    QString Extension() const { return extension_; }
    bool FilterByExtension = true;

    // The name to start with in the name box (a Save keeps the item's own name).
    QString InitialName() const { return initialName_; }
    // Why the start differs from what was asked for (a catalogued program offered in place
    // of a missing item); empty when it doesn't.
    QString Note() const { return note_; }
    // Names typed in the name box: one name, or several in double quotes when the browser
    // takes several ("A" "B C").
    QStringList SplitNames(const QString& typed) const;
    QString JoinNames(const QStringList& names) const;
    // The path of a name at the current place; a full path or an absolute local name is
    // taken as it is.
    QString PathFor(const QString& name) const;
    // A local folder name goes into the folder; true if it did.
    bool Enter(const QString& name);

    // Takes the resources. `ask` gets the question for an item locked by someone else and
    // says whether to take it read only instead; `report` gets a failure, after which
    // nothing is taken. Empty when nothing was taken.
    std::vector<std::shared_ptr<mvResource>>
    Take(const QStringList& names, bool readOnly,
         const std::function<bool(const QString& question)>& ask,
         const std::function<void(const QString& message)>& report) const;

    // Any error of a listing goes here instead of out.
    mutable QString LastError;

private:
    std::shared_ptr<mvResource> hostResource(const QString& folder) const;
    void offerCatalogued(const std::shared_ptr<mvResource>& start);

    QString caption_;
    QString extension_;
    bool multiple_;
    bool recordLocking_;
    Mode mode_ = Mode::Host;
    QString server_, account_, file_;
    QString localFolder_;
    QString initialName_;
    QString note_;
};
