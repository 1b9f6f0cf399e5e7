// Find and Replace All on the 1,000,000-line program (53 MB) through the document, as the
// find dialog runs them.
#include "BenchSupport.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/SearchScope.h"
#include "documents/mvDocument.h"
#include "language/LexClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"

#include <QApplication>
#include <QtTest>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    ProcessState& state = ProcessState::Instance();
    state.Documents = std::make_unique<DocumentCollection>();
    state.Settings = std::make_unique<Moriox>();
    auto document = mvDocument::Create();
    document->FileNew();
    SourceView& view = *document->Editor();
    view.resize(800, 600);
    ScintillaBuffer& buffer = view.Buffer();
    buffer.SetAllText(Bench::Program());
    QCoreApplication::processEvents();

    // The label of the last line, looked for from the first, without regard to case.
    const QString last = QStringLiteral("L50000:");
    std::vector<double> finds;
    for (int round = 0; round < 11; ++round) {
        view.SetCursor(0, 0);
        Bench::Stopwatch watch;
        const bool found = document->Find(last, false, false, false, -1, -1, SearchScope());
        finds.push_back(watch.Ms());
        if (!found || view.CursorLine() != buffer.NumLines() - 2) {
            std::fprintf(stderr, "bench_find: the last line was not found\n");
            return 1;
        }
    }
    Bench::Report("find_next_53mb", Bench::Median(finds), "ms");

    // "zone" stands twice in every block of 20 lines: 100,000 matches.
    std::vector<double> replaces;
    std::vector<double> undos;
    for (int round = 0; round < 3; ++round) {
        view.SetCursor(0, 0);
        Bench::Stopwatch watch;
        const int32_t count = document->ReplaceAll(QStringLiteral("zone"), QStringLiteral("area"),
                                                   false, false, SearchScope());
        replaces.push_back(watch.Ms());
        if (count != 100000) {
            std::fprintf(stderr, "bench_find: %d matches replaced\n", count);
            return 1;
        }
        QCoreApplication::processEvents();
        Bench::Stopwatch undo;
        buffer.Undo();
        undos.push_back(undo.Ms());
        QCoreApplication::processEvents();
    }
    Bench::Report("replace_all_100k", Bench::Median(replaces), "ms");
    Bench::Report("replace_all_100k_undo", Bench::Median(undos), "ms");
    document->FileClose(false);
    return 0;
}
