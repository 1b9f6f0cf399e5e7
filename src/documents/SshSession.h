#pragma once

#include <QByteArray>
#include <QStringList>
#include <memory>

class PipeProcess;

// One long-lived shell on the host, reached through an ssh client that this object starts
// and owns, that runs script after script. A new ssh session costs the host a login shell,
// whose start-up files may take a good part of a second; this pays it once. Each call hands
// over a script and its input, counted in bytes, and gets back the script's output, its
// error output and its exit code, counted likewise, so no byte of either is interpreted.
// Any thread may call, one at a time.
class SshSession {
public:
    struct Reply {
        QByteArray Out;
        QByteArray Err;
        int ExitCode = -1;
    };
    enum class Result { Done, Broken, TimedOut };

    // `sshCommand` is the ssh command line, program first, without the remote command.
    explicit SshSession(QStringList sshCommand);
    ~SshSession();
    SshSession(const SshSession&) = delete;
    SshSession& operator=(const SshSession&) = delete;

    // Runs `script` under sh on the host, its input `input`. Broken: the session could not
    // start or ended; Diagnostics() then says what ssh said. A session that broke or timed
    // out is over for good.
    Result Call(const QByteArray& script, const QByteArray& input, int timeout, Reply& reply);
    bool Over() const { return over_; }
    // Whether a call has completed on this session.
    bool Proven() const { return proven_; }
    // What the ssh client wrote to its error output.
    QByteArray Diagnostics() const { return diagnostics_; }

private:
    Result fail();

    QStringList command_;
    std::unique_ptr<PipeProcess> process_;
    bool over_ = false;
    bool proven_ = false;
    QByteArray diagnostics_;
};
