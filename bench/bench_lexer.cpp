// Timings of the BASIC lexer on the 1,000,000-line program of about 53 MB.
#include "BenchSupport.h"

#include "language/LexClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"

#include <QApplication>
#include <QtTest>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QString program = Bench::Program();
    const double megabytes = static_cast<double>(program.toUtf8().size()) / 1e6;

    SourceView view;
    view.resize(800, 600);
    auto lex = std::make_shared<LexClass>();
    view.Buffer().SetLex(lex);
    view.show();
    (void)QTest::qWaitForWindowExposed(&view);
    ScintillaBuffer& buffer = view.Buffer();
    buffer.SetAllText(program);
    QCoreApplication::processEvents();

    // Every line scanned and its flags stored, as a format pass needs them. Each round
    // starts from cleared flags, so that every store is a change.
    const int32_t lines = buffer.NumLines();
    std::vector<double> rates;
    for (int round = 0; round < 5; ++round) {
        for (int32_t line = 0; line < lines; ++line)
            buffer.SetLineData(line, 1, 0);
        int32_t scanTo = lines - 1;
        Bench::Stopwatch scan;
        buffer.UpdateLines(0, lines - 1, scanTo);
        rates.push_back(megabytes / (scan.Ms() / 1000.0));
    }
    Bench::Report("lex_all_53mb", Bench::Median(rates), "MB/s");

    Bench::Report("type_char_53mb_lexed", Bench::TypeKeys(view, 500000, 10), "us");
    return 0;
}
