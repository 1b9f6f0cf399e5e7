// From "brix FILE" to the window showing the file's first screen coloured, for a program of
// about 53 MB: start-up, the command-line walk, the load and the colouring of what shows.
#include "BenchSupport.h"

#include "app/CommandLine.h"
#include "app/ProcessState.h"
#include "app/modMain.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "language/SourceView.h"

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// One start in this process: prints the milliseconds.
int oneRound(QApplication& app, const QString& file) {
    ProcessState& state = ProcessState::Instance();
    state.CommandLine = CommandLine::JoinArguments({file});
    Bench::Stopwatch clock;
    if (!Main(app))
        return 1;
    const auto document = state.Documents->At(0);
    SourceView* editor = document ? document->Editor() : nullptr;
    if (!editor)
        return 1;
    // Coloured up to the end of the screen: Scintilla's styled end is past its last line.
    auto shownColoured = [editor] {
        const long last = editor->SendScintilla(QsciScintillaBase::SCI_GETFIRSTVISIBLELINE) +
                          editor->SendScintilla(QsciScintillaBase::SCI_LINESONSCREEN);
        return editor->isVisible() &&
               editor->SendScintilla(QsciScintillaBase::SCI_GETENDSTYLED) >=
                   editor->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, last);
    };
    while (!shownColoured())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    std::printf("%.3f\n", clock.Ms());
    Shutdown();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 3 && args.at(1) == QLatin1String("--round"))
        return oneRound(app, args.at(2));

    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("big program.bas"));
    {
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly))
            return 1;
        out.write(Bench::Program().toUtf8());
    }
    // Each start in a process and a home of its own.
    std::vector<double> times;
    for (int round = 0; round < 3; ++round) {
        QTemporaryDir home;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("HOME"), home.path());
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path() + QStringLiteral("/.config"));
        env.insert(QStringLiteral("XDG_DATA_HOME"), home.path() + QStringLiteral("/.local/share"));
        QProcess child;
        child.setProcessEnvironment(env);
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--round"), file});
        if (!child.waitForFinished(300000) || child.exitCode() != 0)
            return 1;
        times.push_back(child.readAllStandardOutput().trimmed().toDouble());
    }
    Bench::Report("open_53mb_cli", Bench::Median(times), "ms");
    return 0;
}
