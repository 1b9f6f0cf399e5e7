#pragma once

#include "documents/HostTransport.h"

#include <memory>
#include <mutex>

class SshSession;

// The host's files on another machine, through the system's OpenSSH client, so the user's
// own ssh configuration, keys, agent and known hosts apply. Calls go to one long-lived shell
// there (SshSession), over a connection shared per host (ControlMaster): only the first call
// pays for the handshake and the login shell. A call that finds that shell busy on another
// thread runs as an `ssh` of its own over the same connection. Each call hands a short POSIX
// shell script its arguments quoted for the remote shell, so nothing of a path, an item id
// or a command is ever interpreted there.
class SshTransport final : public HostTransport {
public:
    struct Target {
        QString Host;
        int Port = 0;
        QString User;
        QString IdentityFile;
        // Used instead of ~/.ssh/config when set.
        QString ConfigFile;
    };

    explicit SshTransport(Target target);
    ~SshTransport() override;

    QString Place() const override;
    FileInfo Stat(const QString& path) override;
    std::vector<Entry> List(const QString& folder) override;
    QByteArray ReadFile(const QString& path) override;
    void WriteFile(const QString& path, const QByteArray& bytes) override;
    bool CreateExclusive(const QString& path, const QByteArray& bytes) override;
    bool Rename(const QString& from, const QString& to) override;
    void Remove(const QString& path) override;
    void MakeFolder(const QString& path) override;
    QByteArray Run(const QStringList& command, const QString& workingFolder,
                   int& exitCode) override;
    QByteArray ReadStamped(const QString& path, Stamp& stamp) override;
    bool WriteUnchanged(const QString& path, const QByteArray& bytes, const Stamp& expected,
                        Stamp& written) override;
    std::vector<FileInfo> StatAll(const QStringList& paths) override;
    std::unique_ptr<PipeProcess> Start(const QStringList& command,
                                       const QString& workingFolder) override;

    // One word for a POSIX shell: the text exactly, whatever characters it holds.
    static QString Quote(const QString& word);
    // The ssh command line (program first) that runs `remote` on the host.
    QStringList SshCommand(const QString& remote) const;

private:
    struct Outcome {
        QByteArray Out;
        QByteArray Err;
        int ExitCode = -1;
    };
    // Runs `script` under sh on the host with the arguments; raises on a failed connection.
    // A `repeatable` script (one that changes nothing) is run again once on a fresh session
    // when a session that had worked turns out to be gone.
    Outcome script(const QString& script, const QStringList& args, const QByteArray& input = {},
                   int timeout = 60000, bool repeatable = false);
    // The same through an ssh run of its own, for a call while the session is busy.
    Outcome oneShot(const QString& remote, const QByteArray& input, int timeout);
    // Raises the connection's error for a run that ended with ssh's own failure.
    [[noreturn]] void connectionFailed(const Outcome& outcome) const;
    QStringList sshArguments() const;
    bool write(const QString& path, const QByteArray& bytes, const Stamp& expected, Stamp& written);
    [[noreturn]] void fail(int32_t number, const QString& what, const QString& path,
                           const Outcome& outcome) const;
    QString controlPath() const;

public:
    // The shared connection's socket, "%C" standing for ssh's hash of the destination.
    QString ControlPath() const { return controlPath_; }

private:
    Target target_;
    QString controlPath_;
    std::mutex sessionMutex_;
    std::unique_ptr<SshSession> session_;
};
