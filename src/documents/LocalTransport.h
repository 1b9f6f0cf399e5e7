#pragma once

#include "documents/HostTransport.h"

// The host's files on this machine, through the operating system's calls.
class LocalTransport final : public HostTransport {
public:
    QString Place() const override { return QStringLiteral("local"); }
    FileInfo Stat(const QString& path) override;
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
};
