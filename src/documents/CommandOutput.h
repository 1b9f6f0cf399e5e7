#pragma once

#include "documents/ItemTextCodec.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

// What a host command needs around it to run without a terminal, and its output made fit
// to read: lines that end in CR LF whatever the host wrote, and no terminal control
// sequences (cursor moves, screen clears).
class CommandOutput {
public:
    // The program line that runs `commandLine` with `command` as its last argument, set up
    // for no terminal: a terminal type without control sequences and pages deep enough
    // that a host that pages its output never stops to ask for a key.
    static QStringList Prepare(const QStringList& commandLine, const QString& command);
    static QString Clean(const QByteArray& output, ItemTextCodec::Charset charset);
};
