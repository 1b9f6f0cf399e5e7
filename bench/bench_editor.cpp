// Timings of the source editor on a 1,000,000-line program of about 53 MB.
#include "BenchSupport.h"

#include "language/ISourceOp.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"

#include <QApplication>
#include <QtTest>

namespace {

// Deletes three characters at the start of every line, keeping them for its undo.
class OpDeleteThree final : public ISourceOp {
public:
    void ISourceOp_DoOp(SourceBuffer& b) override {
        const int lines = b.NumLines();
        taken_.resize(static_cast<size_t>(lines));
        for (int line = 0; line < lines; ++line) {
            QString text = b.GetLine(line);
            taken_[static_cast<size_t>(line)] = text.left(3);
            b.DeleteText(0, line, std::min<int>(3, text.size()), line);
        }
        b.RefreshLines(70, 0, lines - 1, 0, 0);
    }
    void ISourceOp_UndoOp(SourceBuffer& b) override {
        int c = 0, l = 0;
        for (int line = 0; line < static_cast<int>(taken_.size()); ++line)
            b.InsertText(0, line, taken_[static_cast<size_t>(line)], 0, c, l);
        b.RefreshLines(70, 0, static_cast<int>(taken_.size()) - 1, 0, 0);
    }

private:
    std::vector<QString> taken_;
};

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QString program = Bench::Program();

    SourceView view;
    view.resize(800, 600);
    view.show();
    (void)QTest::qWaitForWindowExposed(&view);
    ScintillaBuffer& buffer = view.Buffer();

    // Three rounds; the median of each figure.
    std::vector<double> loads, edits, undos;
    for (int round = 0; round < 3; ++round) {
        Bench::Stopwatch load;
        buffer.SetAllText(program);
        loads.push_back(load.Ms());
        QCoreApplication::processEvents();

        Bench::Stopwatch edit;
        buffer.ExecuteOp(std::make_unique<OpDeleteThree>());
        edits.push_back(edit.Ms());
        QCoreApplication::processEvents();

        Bench::Stopwatch undo;
        buffer.Undo();
        undos.push_back(undo.Ms());
        QCoreApplication::processEvents();
    }
    Bench::Report("load_53mb", Bench::Median(loads), "ms");
    Bench::Report("op_edit_every_line", Bench::Median(edits), "ms");
    Bench::Report("op_undo_every_line", Bench::Median(undos), "ms");

    Bench::Report("type_char_53mb", Bench::TypeKeys(view, 500000, 10), "us");
    return 0;
}
