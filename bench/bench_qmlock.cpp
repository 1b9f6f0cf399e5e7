// Opening an item under a real QM record lock (Locks=qm) on a real QM host: the lock taken
// by the account's QM session, the checks of an open, the text read through QM and the lock
// let go again, with the session already running. Beside it, the QM session's own part
// (lock, read, release) over ssh; the checks of an open over ssh are ssh_open_item's.
#include "BenchSupport.h"
#include "QmHostFixture.h"
#include "SshServerFixture.h"

#include "documents/ConnectionProfiles.h"
#include "documents/QmLockKeeper.h"
#include "documents/mvConnection.h"
#include "documents/mvHost.h"
#include "documents/mvResource.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <cstdio>

namespace {

// The median of 20 warm opens of the item through the profile; negative when one failed.
double openLocked(const QString& path) {
    mvConnection& connection = mvConnection::Instance();
    std::vector<double> opens;
    for (int run = 0; run < 21; ++run) {
        Bench::Stopwatch open;
        auto item = connection.GetResource(path, false, true);
        const bool ok =
            item->IsItem() && item->Exists() && item->Locked() && !item->ReadText().isEmpty();
        item->Release();
        if (!ok)
            return -1;
        // The first starts the session.
        if (run > 0)
            opens.push_back(open.Ms());
    }
    return Bench::Median(opens);
}

// The same lock, read and release through the QM session alone.
double sessionOnly(const std::shared_ptr<mvHost>& host, const QString& account) {
    const QmLockKeeper::Item item{host->AccountFolder(account), QStringLiteral("BP"),
                                  QStringLiteral("MAIN"), QStringLiteral("MAIN")};
    std::vector<double> runs;
    for (int run = 0; run < 21; ++run) {
        Bench::Stopwatch once;
        host->LockKeeper()->Lock(item);
        const bool ok = !host->LockKeeper()->Read(item).isEmpty();
        host->LockKeeper()->Unlock(item);
        if (!ok)
            return -1;
        if (run > 0)
            runs.push_back(once.Ms());
    }
    return Bench::Median(runs);
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QmHostFixture host;
    SshServerFixture server;
    if (!host.Ready() || !server.Started()) {
        std::fprintf(stderr, "no QM host or sshd: %s%s\n", qPrintable(host.Error()),
                     qPrintable(server.Error()));
        return 1;
    }
    // A program of about 50 KB.
    host.WriteItem(
        QStringLiteral("BP"), QStringLiteral("MAIN"),
        Bench::Program(1000).replace(QStringLiteral("\r\n"), QStringLiteral("\n")).toLatin1());
    QByteArray ssh = host.Profile(QStringLiteral("qmssh")) + "Locks=qm\n";
    ssh.replace("Transport=local", QStringLiteral("Transport=ssh\nHost=127.0.0.1\nPort=%1\n"
                                                  "SshConfig=%2")
                                       .arg(server.Port())
                                       .arg(server.ClientConfig())
                                       .toUtf8());
    QDir().mkpath(QFileInfo(ConnectionProfiles::DefaultFile()).path());
    QFile file(ConnectionProfiles::DefaultFile());
    if (!file.open(QIODevice::WriteOnly))
        return 1;
    file.write("[General]\nDefault=qm\n\n" + host.Profile(QStringLiteral("qm")) + "Locks=qm\n\n" +
               ssh);
    file.close();
    mvConnection::Instance().LoadProfiles(ConnectionProfiles::DefaultFile());

    auto path = [&](const char* server) {
        return mvConnection::Instance().MakePath(QStringLiteral("mvdb"), QLatin1String(server),
                                                 host.Account(), QStringLiteral("BP"),
                                                 QStringLiteral("MAIN"));
    };
    const double local = openLocked(path("qm"));
    const double remote = sessionOnly(
        mvConnection::Instance().HostFor(QStringLiteral("qmssh"), host.Account()), host.Account());
    if (local < 0 || remote < 0)
        return 1;
    Bench::Report("qm_lock_open_item", local, "ms");
    Bench::Report("qm_lock_session_ssh", remote, "ms");
    // Sessions end before the host does.
    mvConnection::Instance().LoadProfiles(ConnectionProfiles::DefaultFile());
    return 0;
}
