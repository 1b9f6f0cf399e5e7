#include "documents/WaitingTransport.h"

#include "documents/HostCallWaiter.h"
#include "documents/PipeProcess.h"

HostTransport::FileInfo WaitingTransport::Stat(const QString& path) {
    FileInfo info;
    HostCallWaiter::Run([&] { info = inner_->Stat(path); });
    return info;
}

std::vector<HostTransport::Entry> WaitingTransport::List(const QString& folder) {
    std::vector<Entry> entries;
    HostCallWaiter::Run([&] { entries = inner_->List(folder); });
    return entries;
}

QByteArray WaitingTransport::ReadFile(const QString& path) {
    QByteArray bytes;
    HostCallWaiter::Run([&] { bytes = inner_->ReadFile(path); });
    return bytes;
}

void WaitingTransport::WriteFile(const QString& path, const QByteArray& bytes) {
    HostCallWaiter::Run([&] { inner_->WriteFile(path, bytes); });
}

bool WaitingTransport::CreateExclusive(const QString& path, const QByteArray& bytes) {
    bool created = false;
    HostCallWaiter::Run([&] { created = inner_->CreateExclusive(path, bytes); });
    return created;
}

bool WaitingTransport::Rename(const QString& from, const QString& to) {
    bool renamed = false;
    HostCallWaiter::Run([&] { renamed = inner_->Rename(from, to); });
    return renamed;
}

void WaitingTransport::Remove(const QString& path) {
    HostCallWaiter::Run([&] { inner_->Remove(path); });
}

void WaitingTransport::MakeFolder(const QString& path) {
    HostCallWaiter::Run([&] { inner_->MakeFolder(path); });
}

QByteArray WaitingTransport::Run(const QStringList& command, const QString& workingFolder,
                                 int& exitCode) {
    QByteArray output;
    inner_->SetCommandTimeout(CommandTimeout());
    HostCallWaiter::Run([&] { output = inner_->Run(command, workingFolder, exitCode); });
    return output;
}

QByteArray WaitingTransport::ReadStamped(const QString& path, Stamp& stamp) {
    QByteArray bytes;
    HostCallWaiter::Run([&] { bytes = inner_->ReadStamped(path, stamp); });
    return bytes;
}

bool WaitingTransport::WriteUnchanged(const QString& path, const QByteArray& bytes,
                                      const Stamp& expected, Stamp& written) {
    bool done = false;
    HostCallWaiter::Run([&] { done = inner_->WriteUnchanged(path, bytes, expected, written); });
    return done;
}

std::vector<HostTransport::FileInfo> WaitingTransport::StatAll(const QStringList& paths) {
    std::vector<FileInfo> infos;
    HostCallWaiter::Run([&] { infos = inner_->StatAll(paths); });
    return infos;
}

std::unique_ptr<PipeProcess> WaitingTransport::Start(const QStringList& command,
                                                     const QString& workingFolder) {
    // Starting waits for nothing; the conversation's own calls are the ones that wait.
    return inner_->Start(command, workingFolder);
}
