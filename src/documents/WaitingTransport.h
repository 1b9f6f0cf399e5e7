#pragma once

#include "documents/HostTransport.h"

#include <memory>

// Another transport whose every call goes through HostCallWaiter, so that a slow or hung
// host never freezes the window.
class WaitingTransport final : public HostTransport {
public:
    explicit WaitingTransport(std::shared_ptr<HostTransport> inner) : inner_(std::move(inner)) {}

    QString Place() const override { return inner_->Place(); }
    FileInfo Stat(const QString& path) override;
    std::vector<FileInfo> StatAll(const QStringList& paths) override;
    std::vector<Entry> List(const QString& folder) override;
    QByteArray ReadFile(const QString& path) override;
    void WriteFile(const QString& path, const QByteArray& bytes) override;
    bool CreateExclusive(const QString& path, const QByteArray& bytes) override;
    bool Rename(const QString& from, const QString& to) override;
    void Remove(const QString& path) override;
    void MakeFolder(const QString& path) override;
    QByteArray ReadStamped(const QString& path, Stamp& stamp) override;
    bool WriteUnchanged(const QString& path, const QByteArray& bytes, const Stamp& expected,
                        Stamp& written) override;
    QByteArray Run(const QStringList& command, const QString& workingFolder,
                   int& exitCode) override;
    std::unique_ptr<PipeProcess> Start(const QStringList& command,
                                       const QString& workingFolder) override;

private:
    std::shared_ptr<HostTransport> inner_;
};
