// Timings of Format on the 1,000,000-line program in the editor, of its undo, and of the
// whole brix-format process on the largest real program of the corpus.
#include "BenchSupport.h"

#include "editing/OpFormat.h"
#include "language/LexClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "language/SourceViewControl.h"
#include "settings/Moriox.h"

#include <QApplication>
#include <QFileInfo>
#include <QProcess>
#include <QtTest>

namespace {

// Format as the document runs it: fresh flags on every line, then the operation. Gives the
// whole time and that of the operation alone.
double formatOnce(SourceView& view, const Moriox& settings, double& operation) {
    ScintillaBuffer& buffer = view.Buffer();
    Bench::Stopwatch watch;
    int32_t last = buffer.NumLines() - 1;
    buffer.UpdateLines(0, last, last);
    auto op = std::make_unique<OpFormat>();
    op->Ctl = std::make_shared<SourceViewControl>(&view);
    op->Options = &settings;
    Bench::Stopwatch run;
    buffer.ExecuteOp(std::move(op));
    operation = run.Ms();
    return watch.Ms();
}

void benchEditor() {
    SourceView view;
    view.resize(800, 600);
    view.Buffer().SetLex(std::make_shared<LexClass>());
    view.show();
    (void)QTest::qWaitForWindowExposed(&view);
    ScintillaBuffer& buffer = view.Buffer();
    buffer.SetAllText(Bench::Program());
    view.SetCursor(10, 500000);
    QCoreApplication::processEvents();

    // The program stands at column 3; the default margin of 6 moves nearly every line.
    Moriox settings;
    std::vector<double> formats;
    std::vector<double> operations;
    std::vector<double> undos;
    for (int round = 0; round < 3; ++round) {
        double operation = 0;
        formats.push_back(formatOnce(view, settings, operation));
        operations.push_back(operation);
        QCoreApplication::processEvents();
        Bench::Stopwatch undo;
        buffer.Undo();
        undos.push_back(undo.Ms());
        QCoreApplication::processEvents();
    }
    Bench::Report("format_1m_lines", Bench::Median(formats), "ms");
    Bench::Report("format_op_1m_lines", Bench::Median(operations), "ms");
    Bench::Report("format_undo_1m_lines", Bench::Median(undos), "ms");
}

void benchTool() {
    const QString tool = QCoreApplication::applicationDirPath() + QStringLiteral("/../brix-format");
    const QString program =
        QStringLiteral(BRIX_SHARED) + QStringLiteral("/corpus/scarletdme/qmsys__GPL.BP__BCOMP");
    if (!QFileInfo(tool).isExecutable() || !QFileInfo::exists(program)) {
        std::fprintf(stderr, "bench_format: no %s or %s\n", qPrintable(tool), qPrintable(program));
        return;
    }
    std::vector<double> times;
    for (int round = 0; round < 11; ++round) {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        Bench::Stopwatch watch;
        process.start(tool, {program});
        process.waitForFinished(60000);
        times.push_back(watch.Ms());
        if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
            std::fprintf(stderr, "bench_format: brix-format failed\n");
            return;
        }
    }
    Bench::Report("brix_format_bcomp", Bench::Median(times), "ms");
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    benchTool();
    benchEditor();
    return 0;
}
