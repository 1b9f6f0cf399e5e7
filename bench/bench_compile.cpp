// A compile of the 13,325-line BCOMP of QM on a real QM host, from the document to its
// output in the results window: the whole round trip, the host's part alone, and Brix's
// own share. Outside QM's system account BCOMP's system-only directives fail, so the
// output carries a few dozen error lines as well: the results window gets real work.
#include "BenchSupport.h"
#include "QmHostFixture.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"
#include "shell/frmResults.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTextEdit>
#include <algorithm>
#include <cstdio>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    ProcessState& state = ProcessState::Instance();
    state.Settings = std::make_unique<Moriox>();
    state.Settings->RecordLocking = false;
    state.Documents = std::make_unique<DocumentCollection>();

    QmHostFixture host;
    if (!host.Ready()) {
        std::fprintf(stderr, "no QM host: %s\n", qPrintable(host.Error()));
        return 1;
    }
    host.UseProfile();
    // BCOMP's include records come from the host's own system source file.
    const QDir system(host.Folder() + QStringLiteral("/qmsys/GPL.BP"));
    const QString bp = host.AccountFolder() + QStringLiteral("/BP/");
    for (const QString& name : system.entryList({QStringLiteral("*.H")}, QDir::Files))
        QFile::copy(system.filePath(name), bp + name);
    QFile source(QStringLiteral(BRIX_SHARED "/corpus/scarletdme/qmsys__GPL.BP__BCOMP"));
    if (!source.open(QIODevice::ReadOnly))
        return 1;
    host.WriteItem(QStringLiteral("BP"), QStringLiteral("BCOMP"), source.readAll());

    auto frame = std::make_unique<frmMain>();
    state.MainWindow = frame.get();
    frame->Load();
    frame->show();
    auto document = mvDocument::Create();
    if (!document->FileOpen(host.ItemPath(QStringLiteral("BP"), QStringLiteral("BCOMP")), false))
        return 1;

    std::vector<double> totals, hosts;
    for (int run = 0; run < 3; ++run) {
        Bench::Stopwatch hostOnly;
        host.Run(QStringLiteral("BASIC BP BCOMP "));
        hosts.push_back(hostOnly.Ms());
        Bench::Stopwatch total;
        document->Compile();
        QApplication::processEvents();
        totals.push_back(total.Ms());
    }
    auto* results = qobject_cast<frmResults*>(state.ResultsWindow.data());
    if (!results || !results->Results()->toPlainText().contains(QLatin1String("BCOMP"))) {
        std::fprintf(stderr, "no compiler output in the results window\n");
        return 1;
    }
    const double total = Bench::Median(totals);
    const double hostMs = Bench::Median(hosts);
    Bench::Report("compile_roundtrip_qm", total, "ms");
    Bench::Report("compile_roundtrip_qm_host", hostMs, "ms");
    Bench::Report("compile_roundtrip_qm_brix", std::max(0.0, total - hostMs), "ms");
    document->FileClose(false);
    frame.reset();
    return 0;
}
