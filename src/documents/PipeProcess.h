#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <sys/types.h>

// A program kept running for a conversation: its input and output are one socket of ours,
// its errors a pipe kept for messages. Blocking reads and writes with a time limit, callable
// from any thread (one at a time). No other child of this process inherits the socket, so
// when this process ends, even killed, the program sees its input end.
class PipeProcess {
public:
    // Raises ConnectionErrors::CommandFailed when the program can't be started.
    PipeProcess(const QStringList& command, const QString& workingFolder);
    // Ends the input, gives the program a moment to go, then stops its process group.
    ~PipeProcess();
    PipeProcess(const PipeProcess&) = delete;
    PipeProcess& operator=(const PipeProcess&) = delete;

    // False when the program is gone or the time ran out; Failure() then says why.
    bool Write(const QByteArray& bytes, int timeoutMs);
    // Exactly `size` bytes, or false as for Write.
    bool Read(char* into, qsizetype size, int timeoutMs);
    // Why the last Read or Write failed, with what the program wrote to its errors.
    QString Failure() const { return failure_; }
    bool TimedOut() const { return timedOut_; }
    // The last of what the program wrote to its errors so far.
    QByteArray Errors();
    // True while the program runs and has said nothing that wasn't asked for: between two
    // exchanges, anything to read, or the end, means it is gone.
    bool Quiet();

private:
    bool wait(short events, int timeoutMs);
    void drainErrors();
    void fail(const QString& why);

    pid_t pid_ = -1;
    int socket_ = -1;
    int errors_ = -1;
    QByteArray errorText_;
    QString failure_;
    bool timedOut_ = false;
    QString program_;
};
