#pragma once

#include "documents/HostTransport.h"
#include "documents/ItemTextCodec.h"
#include "documents/mvResource.h"

#include <memory>

// A local file or folder (provider "file"). Text files are UTF-8 (or Latin-1, byte for
// byte, when they aren't valid UTF-8) and keep their line ends. Local files take no
// editor locks: Locked only records the wish.
class FileResource final : public mvResource {
public:
    // `folder` is absolute; an empty `name` stands for the folder itself.
    FileResource(QString folder, QString name);

    QString Path() const override;
    QString Provider() const override { return QStringLiteral("file"); }
    QString ServerName() const override { return {}; }
    QString Database() const override { return {}; }
    QString Folder() const override { return folder_; }
    QString ItemID() const override { return name_; }
    QString DisplayID() const override { return FullName(); }
    QString ShortName() const override { return name_.isEmpty() ? folder_ : name_; }
    QString HostLabel() const override { return {}; }
    QString HostDatabaseLabel() const override { return {}; }
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

    void SetLocked(bool locked) override { locked_ = locked; }
    bool Locked() const override { return locked_; }
    void Release() override { locked_ = false; }

    bool HostAllows(int32_t) override { return false; }
    std::shared_ptr<mvHost> Host() override;
    std::vector<Child> Children() override;

    QString FullName() const;

private:
    QByteArray readBytes();
    void writeBytes(const QByteArray& bytes);
    void checkWritable() const;
    QString folder_;
    QString name_;
    std::shared_ptr<HostTransport> files_;
    ItemTextCodec codec_{false, ItemTextCodec::Charset::Utf8};
    bool readOnly_ = false;
    bool locked_ = false;
    // The file as last read or written here.
    HostTransport::Stamp stamp_;
};
