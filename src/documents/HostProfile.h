#pragma once

#include "documents/ItemIdCodec.h"
#include "documents/ItemTextCodec.h"

#include <QList>
#include <QPair>
#include <QString>

// One connection profile: how to reach a host's accounts and how its files hold items.
// An "mvdb" path names it by its name as the server; "*" is the default profile.
struct HostProfile {
    QString Name;
    // Shown in titles ("BP MAIN on PROD"); empty gives none.
    QString Label;
    // "local" (this machine) or "ssh" (the system's OpenSSH client).
    QString Transport = QStringLiteral("local");
    // For "ssh": where to; empty values leave them to the user's ssh configuration.
    QString SshHost;
    int SshPort = 0;
    QString SshUser;
    QString SshIdentityFile;
    // An ssh configuration file used instead of ~/.ssh/config.
    QString SshConfigFile;
    // Every folder inside is an account of that name.
    QString AccountsFolder;
    // Accounts elsewhere, by name.
    QList<QPair<QString, QString>> Accounts;
    QString DefaultAccount;
    // The program and its arguments that run one TCL command, given as the last argument.
    QString CommandLine;
    bool AllowCommands = false;
    // A command still running after this many seconds is stopped.
    int CommandTimeout = 300;
    bool RawMarks = true;
    ItemTextCodec::Charset Charset = ItemTextCodec::Charset::Latin1;
    ItemIdCodec::Mode ItemNames = ItemIdCodec::Mode::Plain;
    // Inside each account.
    QString LockFolder = QStringLiteral(".brix-locks");
    // Real record locks held by a QM process of the account (Locks=qm), instead of the
    // advisory lock files; reads and writes then go through QM too.
    bool QmLocks = false;
};
