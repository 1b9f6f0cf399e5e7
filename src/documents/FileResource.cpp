#include "documents/FileResource.h"

#include "app/ProcessState.h"
#include "settings/Moriox.h"

#include "documents/ConnectionErrors.h"
#include "documents/LocalTransport.h"
#include "documents/mvHost.h"
#include "documents/mvPath.h"

#include <algorithm>

FileResource::FileResource(QString folder, QString name)
    : folder_(std::move(folder)), name_(std::move(name)),
      files_(std::make_shared<LocalTransport>()) {
    if (name_.contains(QLatin1Char('/')) || name_ == QLatin1String(".."))
        throw BrixError(ConnectionErrors::BadPath,
                        QStringLiteral("\"%1\" is not a file name.").arg(name_));
    const Moriox* settings = ProcessState::Instance().Settings.get();
    codec_.AcceptBothMarkForms(!settings || settings->LocalFileRawMarks);
}

QString FileResource::FullName() const {
    if (name_.isEmpty())
        return folder_;
    return (folder_.endsWith(QLatin1Char('/')) ? folder_ : folder_ + QLatin1Char('/')) + name_;
}

QString FileResource::Path() const {
    return mvPath{QStringLiteral("file"), {}, {}, folder_, name_}.ToString();
}

bool FileResource::IsItem() const {
    if (name_.isEmpty() || name_ == QLatin1String("."))
        return false;
    return !files_->Stat(FullName()).IsFolder;
}

bool FileResource::Exists() const {
    return files_->Stat(FullName()).Exists;
}

bool FileResource::ReadOnly() const {
    if (readOnly_)
        return true;
    const HostTransport::FileInfo info = files_->Stat(FullName());
    if (info.Exists)
        return !info.Writable;
    return !files_->Stat(folder_).Writable;
}

QByteArray FileResource::readBytes() {
    if (!IsItem())
        throw BrixError(ConnectionErrors::NotAnItem,
                        QStringLiteral("%1 is a folder, not a file.").arg(FullName()));
    try {
        return files_->ReadStamped(FullName(), stamp_);
    } catch (const BrixError& e) {
        throw BrixError(e.Number,
                        QStringLiteral("The file could not be read. %1").arg(e.Description));
    }
}

void FileResource::writeBytes(const QByteArray& bytes) {
    bool written = false;
    HostTransport::Stamp stamp;
    try {
        written = files_->WriteUnchanged(FullName(), bytes, stamp_, stamp);
    } catch (const BrixError& e) {
        throw BrixError(e.Number,
                        QStringLiteral("%1 was not saved; the file on disk is unchanged. %2")
                            .arg(FullName(), e.Description));
    }
    if (!written)
        throw ConnectionErrors::ChangedSinceRead(FullName());
    stamp_ = stamp;
}

void FileResource::checkWritable() const {
    if (!IsItem())
        throw BrixError(ConnectionErrors::NotAnItem,
                        QStringLiteral("%1 is a folder, not a file.").arg(FullName()));
    if (ReadOnly())
        throw BrixError(BrixErrors::CannotWrite,
                        QStringLiteral("%1 can't be written: it is read-only.").arg(FullName()));
}

QString FileResource::ReadText() {
    return codec_.Decode(readBytes());
}

void FileResource::WriteText(const QString& text) {
    checkWritable();
    writeBytes(codec_.Encode(text, FullName()));
}

QByteArray FileResource::ReadEditorText(int tabBlanks) {
    return codec_.DecodeForEditor(readBytes(), tabBlanks);
}

void FileResource::WriteEditorText(std::string_view text) {
    checkWritable();
    writeBytes(codec_.EncodeFromEditor(text, FullName()));
}

std::shared_ptr<mvHost> FileResource::Host() {
    return std::make_shared<mvHost>(nullptr, nullptr, QString());
}

std::vector<mvResource::Child> FileResource::Children() {
    std::vector<Child> children;
    for (const auto& entry : files_->List(FullName())) {
        if (entry.Name.startsWith(QLatin1Char('.')))
            continue;
        children.push_back({entry.Name, entry.IsFolder, !entry.IsFolder});
    }
    std::sort(children.begin(), children.end(), [](const Child& a, const Child& b) {
        if (a.Container != b.Container)
            return a.Container;
        return a.Name.compare(b.Name, Qt::CaseInsensitive) < 0;
    });
    return children;
}
