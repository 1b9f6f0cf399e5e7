// Timings of the BASIC lexer on the 1,000,000-line program of about 53 MB.
#include "BenchSupport.h"

#include "language/LexClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"

#include <QApplication>
#include <QKeyEvent>
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

    // Typing in the middle of the coloured document, one key at a time, painted each time.
    view.SetCursor(10, 500000);
    QCoreApplication::processEvents();
    std::vector<double> times;
    times.reserve(1000);
    for (int i = 0; i < 1000; ++i) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        Bench::Stopwatch key;
        QCoreApplication::sendEvent(&view, &press);
        QCoreApplication::sendEvent(&view, &release);
        view.viewport()->repaint();
        QCoreApplication::processEvents();
        times.push_back(key.Us());
    }
    Bench::Report("type_char_53mb_lexed", Bench::Median(times), "us");
    return 0;
}
