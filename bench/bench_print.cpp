// Time of printing the largest real program of the corpus to PDF: its colours, the copy
// with the line prefixes, and Scintilla's pages with their headers.
#include "BenchSupport.h"

#include "language/LexClass.h"
#include "language/PrintClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourcePrinter.h"
#include "language/SourceView.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QFile file(QStringLiteral(BRIX_SHARED) +
               QStringLiteral("/corpus/scarletdme/qmsys__GPL.BP__BCOMP"));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "bench_print: no %s\n", qPrintable(file.fileName()));
        return 1;
    }
    const QString text = QString::fromLatin1(file.readAll());
    QTemporaryDir dir;
    std::vector<double> times;
    for (int round = 0; round < 5; ++round) {
        // A fresh view each round, so that the colours are made again.
        SourceView view;
        view.Buffer().SetLex(std::make_shared<LexClass>());
        view.Buffer().SetAllText(text);
        PrintClass hook;
        hook.FileName = QStringLiteral("BP");
        hook.ItemName = QStringLiteral("BCOMP");
        SourcePrinter printer;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath(QStringLiteral("bcomp.pdf")));
        Bench::Stopwatch watch;
        if (!printer.PrintLines(view, hook, true)) {
            std::fprintf(stderr, "bench_print: printing failed\n");
            return 1;
        }
        times.push_back(watch.Ms());
    }
    Bench::Report("print_pdf_bcomp", Bench::Median(times), "ms");
    return 0;
}
