#pragma once

#include "documents/SshTransport.h"

#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <memory>

// Debian's sshd on 127.0.0.1 and a free high port, with throwaway host and client keys in a
// temporary folder, for the user running the test. It ends with the fixture, and with the
// test process should that crash. Started() is false (and Error() says why) when it can't run.
class SshServerFixture {
public:
    SshServerFixture();
    ~SshServerFixture();
    SshServerFixture(const SshServerFixture&) = delete;
    SshServerFixture& operator=(const SshServerFixture&) = delete;

    bool Started() const { return started_; }
    QString Error() const { return error_; }
    int Port() const { return port_; }
    // A client configuration that knows the server's host key, or (trusted false) knows none.
    QString ClientConfig(bool trusted = true) const;
    // Where a transport made by Target() reaches this server.
    SshTransport::Target Target(bool trusted = true) const;
    // The lines of a connection profile that reach this server.
    QByteArray ProfileLines() const;
    // Ends the server at once, and any session it runs.
    void Kill();

private:
    bool run(const QStringList& command);

    std::unique_ptr<QTemporaryDir> dir_;
    QProcess sshd_;
    int port_ = 0;
    bool started_ = false;
    QString error_;
};
