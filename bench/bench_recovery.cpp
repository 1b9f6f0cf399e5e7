// One auto-recover pass with the 53 MB program changed.
#include "BenchSupport.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "language/ScintillaBuffer.h"
#include "recovery/modAutoRecover.h"

#include <QApplication>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cstdlib>

int main(int argc, char** argv) {
    // The copies go to a throwaway data folder, never the user's.
    QTemporaryDir home;
    ::setenv("XDG_DATA_HOME", QFile::encodeName(home.path()).constData(), 1);
    QStandardPaths::setTestModeEnabled(true);
    QApplication app(argc, argv);
    ProcessState::Instance().Documents = std::make_unique<DocumentCollection>();

    const auto document = mvDocument::Create();
    document->FileNew();
    document->Buffer()->SetAllText(Bench::Program());
    document->Buffer()->SetModified(true);

    std::vector<double> passes;
    for (int round = 0; round < 5; ++round) {
        Bench::Stopwatch pass;
        if (!modAutoRecover::SaveCopies())
            return 1;
        passes.push_back(pass.Ms());
    }
    Bench::Report("recovery_pass_53mb", Bench::Median(passes), "ms");
    modAutoRecover::CleanExit();
    document->SetDirty(false);
    document->FileClose(false);
    return 0;
}
