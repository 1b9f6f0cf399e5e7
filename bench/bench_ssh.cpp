// Opening and saving an item over ssh against a local sshd: the first (cold) connection,
// then calls over the shared one.
#include "BenchSupport.h"
#include "SshServerFixture.h"

#include "documents/HostResource.h"
#include "documents/mvHost.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    SshServerFixture server;
    if (!server.Started()) {
        std::fprintf(stderr, "%s\n", qPrintable(server.Error()));
        return 1;
    }
    QTemporaryDir tmp;
    QDir().mkpath(tmp.path() + QStringLiteral("/ACC/BP"));
    auto profile = std::make_shared<HostProfile>();
    profile->Name = QStringLiteral("bench");
    profile->Transport = QStringLiteral("ssh");
    profile->AccountsFolder = tmp.path();
    auto transport = std::make_shared<SshTransport>(server.Target());
    auto host = std::make_shared<mvHost>(profile, transport, QStringLiteral("ACC"));

    Bench::Stopwatch connect;
    transport->Stat(tmp.path());
    Bench::Report("ssh_connect", connect.Ms(), "ms");

    // A program of about 50 KB, as the document hands it over.
    const QString text = Bench::Program(1000);
    std::vector<double> opens, saves;
    for (int run = 0; run < 20; ++run) {
        HostResource item(host, QStringLiteral("bench"), QStringLiteral("ACC"),
                          QStringLiteral("BP"), QStringLiteral("MAIN"));
        Bench::Stopwatch save;
        item.WriteText(text);
        saves.push_back(save.Ms());
        HostResource again(host, QStringLiteral("bench"), QStringLiteral("ACC"),
                           QStringLiteral("BP"), QStringLiteral("MAIN"));
        Bench::Stopwatch open;
        const bool exists = again.Exists();
        const QString back = again.ReadText();
        opens.push_back(open.Ms());
        if (!exists || back.isEmpty())
            return 1;
    }
    Bench::Report("ssh_open_item", Bench::Median(opens), "ms");
    Bench::Report("ssh_save_item", Bench::Median(saves), "ms");
    return 0;
}
