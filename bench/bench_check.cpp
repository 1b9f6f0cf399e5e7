// Time of the whole brix-check process on the largest real program of the corpus, and of the
// check alone in this process.
#include "BenchSupport.h"

#include "editing/StructureCheck.h"
#include "language/clsKeywords.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <cstdio>

namespace {

const QString kProgram =
    QStringLiteral(BRIX_SHARED) + QStringLiteral("/corpus/scarletdme/qmsys__GPL.BP__BCOMP");

void benchTool() {
    const QString tool = QCoreApplication::applicationDirPath() + QStringLiteral("/../brix-check");
    if (!QFileInfo(tool).isExecutable() || !QFileInfo::exists(kProgram)) {
        std::fprintf(stderr, "bench_check: no %s or %s\n", qPrintable(tool), qPrintable(kProgram));
        return;
    }
    std::vector<double> times;
    for (int round = 0; round < 11; ++round) {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        Bench::Stopwatch watch;
        process.start(tool, {kProgram});
        process.waitForFinished(60000);
        times.push_back(watch.Ms());
        if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
            std::fprintf(stderr, "bench_check: brix-check failed or reported\n");
            return;
        }
    }
    Bench::Report("brix_check_bcomp", Bench::Median(times), "ms");
}

void benchCheck() {
    QFile file(kProgram);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    const StructureCheck check(std::make_shared<clsKeywords>());
    std::vector<double> times;
    for (int round = 0; round < 11; ++round) {
        Bench::Stopwatch watch;
        const auto findings = check.Check(bytes);
        times.push_back(watch.Ms());
        if (!findings.empty())
            std::fprintf(stderr, "bench_check: %zu findings\n", findings.size());
    }
    Bench::Report("check_bcomp", Bench::Median(times), "ms");
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchTool();
    benchCheck();
    return 0;
}
