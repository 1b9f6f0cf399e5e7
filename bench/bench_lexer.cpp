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

    // Every line scanned and its flags stored, as a format pass needs them.
    const int32_t lines = buffer.NumLines();
    int32_t scanTo = lines - 1;
    Bench::Stopwatch scan;
    buffer.UpdateLines(0, lines - 1, scanTo);
    Bench::Report("lex_all_53mb", megabytes / (scan.Ms() / 1000.0), "MB/s");

    Bench::Report("type_char_53mb_lexed", Bench::TypeKeys(view, 500000, 10), "us");
    return 0;
}
