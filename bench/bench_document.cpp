// A 53 MB program opened and saved through the document, as File Open and File Save do:
// from the path to the text in the editor with its first screen coloured, and back.
#include "BenchSupport.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/clsDocView.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <cstdio>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    ProcessState& state = ProcessState::Instance();
    state.Settings = std::make_unique<Moriox>();
    state.Settings->RecordLocking = false;
    state.Documents = std::make_unique<DocumentCollection>();
    QTemporaryDir tmp;
    const QString file = tmp.filePath(QStringLiteral("BIG"));

    // A local source file as MultiValue code keeps it: LF lines, raw mark bytes.
    QByteArray bytes = Bench::Program().toUtf8();
    bytes.replace("\r\n", "\n");
    bytes.replace('\x1d', '\xfd');
    bytes.replace('\x1c', '\xfc');
    {
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size())
            return 1;
    }
    const QString path = mvConnection::Instance().MakeFilePath({}, {}, file);

    std::vector<double> opens, saves;
    for (int run = 0; run < 3; ++run) {
        auto document = mvDocument::Create();
        Bench::Stopwatch open;
        if (!document->FileOpen(path, false))
            return 1;
        SourceView* editor = document->Editor();
        editor->resize(800, 600);
        editor->repaint();
        opens.push_back(open.Ms());

        // One line changed, then saved.
        editor->SetCursor(0, 500000);
        document->SetSelText(QStringLiteral("X"));
        Bench::Stopwatch save;
        if (!document->FileSave())
            return 1;
        saves.push_back(save.Ms());
        editor->Buffer().Undo();
        document->FileSave();
        document->FileClose(false);
        QCoreApplication::processEvents();
    }
    Bench::Report("open_53mb", Bench::Median(opens), "ms");
    Bench::Report("save_53mb", Bench::Median(saves), "ms");
    QFile back(file);
    if (!back.open(QIODevice::ReadOnly) || back.readAll() != bytes) {
        std::fprintf(stderr, "the file did not come back as it was\n");
        return 1;
    }
    return 0;
}
