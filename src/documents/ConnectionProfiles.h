#pragma once

#include "documents/HostProfile.h"

#include <QString>
#include <QStringList>
#include <vector>

// The connection profiles of this user: those of the connections file, and the demo
// profile that reaches the demo account shipped with the program. The connections file
// is an INI file (see README.md, "Host connections").
class ConnectionProfiles {
public:
    // ~/.config/Tolvek/Brix/connections.conf, or the test-mode counterpart.
    static QString DefaultFile();
    // The demo account's folder: beside the executable, in its share folder, or in the
    // source tree it was built from; empty if none is found.
    // The user's own copy of the demo account; empty when the program ships none.
    static QString DemoAccountFolder();
    // Makes that copy from the shipped account the first time it is used.
    static bool EnsureDemoAccount();
    // The demo account as the program ships it; never written.
    static QString ShippedDemoFolder();
    static HostProfile Demo();
    // The brix-check program the demo profile compiles with; empty when there is none.
    static QString StructureChecker();

    // Reads the file; a missing file leaves the demo profile alone, and the default.
    void Load(const QString& file);
    // By name without regard to case; "*" and "" give the default. Null if unknown.
    const HostProfile* Find(const QString& server) const;
    QStringList Names() const;
    QString DefaultName() const { return defaultName_; }
    // Problems found in the file, one readable sentence each.
    QStringList Warnings;

private:
    std::vector<HostProfile> profiles_;
    QString defaultName_;
};
