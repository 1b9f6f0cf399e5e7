#pragma once

#include "documents/HostTransport.h"
#include "documents/ItemIdCodec.h"
#include "documents/ItemTextCodec.h"
#include "documents/QmLockKeeper.h"
#include "documents/mvResource.h"

#include <memory>
#include <optional>

class ItemLock;
struct HostProfile;

// An item of a directory-type file on a host, or a folder-like level above it (the host,
// an account, a file). Items are the files of the file's folder; a file that is a plain
// OS file, or a folder with DATA.30/OVER.30, %0/%1 or ~0/~1, is a hashed file: a file
// definition whose items can't be opened here.
class HostResource final : public mvResource {
public:
    // Raises for an account that isn't there and for names that can't be file names.
    // `server` is kept as given (it may be "*").
    HostResource(std::shared_ptr<mvHost> host, QString server, QString database, QString folder,
                 QString itemId);
    ~HostResource() override;

    QString Path() const override;
    QString Provider() const override { return QStringLiteral("mvdb"); }
    QString ServerName() const override { return server_; }
    QString Database() const override { return database_; }
    QString Folder() const override { return folder_; }
    QString ItemID() const override { return item_; }
    QString DisplayID() const override;
    QString ShortName() const override { return DisplayID(); }
    QString HostLabel() const override;
    QString HostDatabaseLabel() const override;
    QString FolderLabel() const override { return folder_; }

    bool IsItem() const override;
    bool Exists() const override;
    bool ReadOnly() const override;
    void SetReadOnly(bool readOnly) override { readOnly_ = readOnly; }

    QString ReadText() override;
    void WriteText(const QString& text) override;
    QByteArray ReadEditorText(int tabBlanks) override;
    void WriteEditorText(std::string_view text) override;
    void Commit() override {}
    void AllowOverwrite() override { stamp_ = {}; }

    void SetLocked(bool locked) override;
    bool Locked() const override;
    void Release() override;

    bool HostAllows(int32_t code) override;
    std::shared_ptr<mvHost> Host() override { return host_; }
    std::vector<Child> Children() override;

    // Where the item lives on the host's machine (empty above the item level).
    QString ItemFile() const { return itemFile_; }
    // True when the file (or the item's file) is a hashed file.
    bool HashedFile() const;

private:
    struct Probe {
        bool Hashed = false;
        HostTransport::FileInfo Folder;
        HostTransport::FileInfo Item;
    };
    // The file's folder and the item, looked at in one call.
    Probe probe() const;
    QByteArray readBytes();
    void writeBytes(const QByteArray& bytes);
    // Locks=qm: WriteUnchanged through the QM process.
    bool writeThroughQm(const QByteArray& bytes, HostTransport::Stamp& written);
    void checkWritable() const;
    const HostProfile& profile() const;
    QString itemLabel() const;
    QmLockKeeper::Item qmItem() const;

    std::shared_ptr<mvHost> host_;
    QString server_, database_, folder_, item_;
    QString accountFolder_, fileFolder_, itemFile_;
    ItemIdCodec names_;
    ItemTextCodec codec_;
    std::unique_ptr<ItemLock> lock_;
    bool readOnly_ = false;
    // A file doesn't turn from directory type to hashed while it is open.
    mutable std::optional<bool> hashed_;
    // The item as last read or written here.
    HostTransport::Stamp stamp_;
    // Holds a lock of the host's QM lock keeper (Locks=qm).
    bool qmLocked_ = false;
};
