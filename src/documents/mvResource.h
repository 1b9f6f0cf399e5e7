#pragma once

#include <QByteArray>
#include <string_view>

#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

class mvHost;

// One handle to an item, local file, file definition or folder of the connection layer.
// Shared ownership; a document holds it while open, and it may hold a lock. Every member
// may raise a BrixError with a number and a readable description.
class mvResource {
public:
    virtual ~mvResource() = default;

    virtual QString Path() const = 0;
    virtual QString Provider() const = 0;
    virtual QString ServerName() const = 0;
    virtual QString Database() const = 0;
    virtual QString Folder() const = 0;
    virtual QString ItemID() const = 0;
    virtual QString DisplayID() const = 0;
    virtual QString ShortName() const = 0;
    virtual QString HostLabel() const = 0;
    virtual QString HostDatabaseLabel() const = 0;
    virtual QString FolderLabel() const = 0;

    virtual bool IsItem() const = 0;
    virtual bool Exists() const = 0;
    virtual bool ReadOnly() const = 0;
    virtual void SetReadOnly(bool readOnly) = 0;

    // The whole content, attribute marks as CR LF, value and subvalue marks as the
    // private-use characters U+F8FD and U+F8FC.
    virtual QString ReadText() = 0;
    virtual void WriteText(const QString& text) = 0;
    // The same text straight in the editor's form, without a copy in between: UTF-8 with LF
    // lines, value and subvalue marks as codes 29 and 28, each tab as `tabBlanks` blanks.
    virtual QByteArray ReadEditorText(int tabBlanks) = 0;
    virtual void WriteEditorText(std::string_view text) = 0;
    virtual void Commit() = 0;
    // A write refuses with ConnectionErrors::ChangedOnHost when someone else changed the item
    // since it was read or written here; after this call the next write replaces it anyway.
    virtual void AllowOverwrite() {}

    // True takes the lock and raises when it is refused; false drops it.
    virtual void SetLocked(bool locked) = 0;
    virtual bool Locked() const = 0;
    // Lets go of what the resource holds; a second call is harmless.
    virtual void Release() = 0;

    virtual bool HostAllows(int32_t code) = 0;
    virtual std::shared_ptr<mvHost> Host() = 0;

    // What a folder-like resource holds, for the browser: accounts of a host, files of an
    // account, items of a file, entries of a local folder.
    struct Child {
        QString Name;
        // Can be gone into (an account, a directory-type file, a folder).
        bool Container = false;
        // Can be opened as text.
        bool Item = false;
    };
    virtual std::vector<Child> Children() { return {}; }
};
