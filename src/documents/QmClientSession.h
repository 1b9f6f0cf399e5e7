#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>

class HostTransport;
class PipeProcess;

// One QM process of an account, started in QM's client mode (`qm -Q`) with its input and
// output as the channel, spoken to in QM's client packets: a request is a type and its data,
// an answer a server status, QM's STATUS() and data. The process is a QM user like any
// other: the record locks it takes are seen by every QM program, and go when it ends, which
// it does when its input closes. Not safe for two threads at once.
class QmClientSession {
public:
    // Server status of an answer.
    enum Outcome : int16_t { Ok = 0, OnError = 1, Else = 2, Error = 3, Locked = 4, Prompt = 5 };
    struct Reply {
        int16_t Outcome = Error;
        int32_t Status = 0;
        QByteArray Data;
    };

    // Starts `qmCommand` (the program that runs qm, with its options) through the transport
    // and enters the account in `accountFolder`. Raises when any of it fails.
    QmClientSession(HostTransport& transport, QStringList qmCommand, const QString& accountFolder,
                    int timeoutMs);
    ~QmClientSession();
    QmClientSession(const QmClientSession&) = delete;
    QmClientSession& operator=(const QmClientSession&) = delete;

    // False once the process has gone or stopped answering; a dead session raises on use.
    bool Alive() const { return process_ != nullptr; }
    // The QM user number of this process: what STATUS() gives a program refused its lock.
    int UserNumber() const { return userNumber_; }

    // The file by its VOC name, opened once and read and written byte for byte (a directory
    // file's items as their OS files hold them).
    int16_t File(const QByteArray& name);
    Reply ReadU(int16_t file, const QByteArray& id);
    Reply Read(int16_t file, const QByteArray& id);
    // Keeps the lock when `keepLock`, as WRITEU does.
    Reply Write(int16_t file, const QByteArray& id, const QByteArray& record, bool keepLock);
    Reply Release(int16_t file, const QByteArray& id);
    // A TCL command; its output with QM's field marks between lines. A command that asks for
    // input (the account's LOGIN paragraph may) is ended there: nobody is there to answer.
    Reply Execute(const QByteArray& command);

private:
    Reply call(int16_t type, const QByteArray& data);
    [[noreturn]] void broken(const QString& why);

    std::unique_ptr<PipeProcess> process_;
    QString account_;
    int timeout_;
    int userNumber_ = 0;
    QMap<QByteArray, int16_t> files_;
};
