#include "TestEnv.h"

#include "language/ISourceOp.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"

#include <QRandomGenerator>
#include <QScrollBar>
#include <functional>

namespace {

// An operation whose body is given by the test.
class OpScript final : public ISourceOp {
public:
    std::function<void(SourceBuffer&)> Do;
    std::function<void(SourceBuffer&)> Undo;
    void ISourceOp_DoOp(SourceBuffer& b) override { Do(b); }
    void ISourceOp_UndoOp(SourceBuffer& b) override { Undo(b); }
};

// Deletes `count` characters at the start of lines 0 to `last`, and puts them back.
std::unique_ptr<ISourceOp> deletePrefix(int last, int count) {
    auto op = std::make_unique<OpScript>();
    auto taken = std::make_shared<QStringList>();
    op->Do = [=](SourceBuffer& b) {
        taken->clear();
        for (int line = 0; line <= last; ++line) {
            *taken << b.GetLine(line).left(count);
            b.DeleteText(0, line, static_cast<int>(taken->back().size()), line);
        }
    };
    op->Undo = [=](SourceBuffer& b) {
        for (int line = 0; line <= last; ++line) {
            int c = 0, l = 0;
            b.InsertText(0, line, taken->at(line), 0, c, l);
        }
    };
    return op;
}

QStringList allLines(const SourceBuffer& b) {
    QStringList out;
    for (int i = 0; i < b.NumLines(); ++i)
        out << b.GetLine(i);
    return out;
}

void typeText(SourceView& view, const QString& text) {
    for (QChar c : text)
        QTest::keyClick(&view, c.toLatin1());
}

} // namespace

class tst_ScintillaBuffer : public QObject {
    Q_OBJECT
    std::unique_ptr<SourceView> view;

private Q_SLOTS:
    void init() {
        view = std::make_unique<SourceView>();
        view->resize(600, 400);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    }
    void cleanup() { view.reset(); }

    // Columns count 16-bit code units on every kind of line.
    void columnsInCodeUnits_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("insert");
        QTest::addColumn<QString>("expected");
        const QString euro = QString::fromUtf8("\xE2\x82\xAC");      // €, 3 bytes
        const QString smile = QString::fromUtf8("\xF0\x9F\x98\x80"); // surrogate pair
        QTest::newRow("three-byte") << (euro + "a") << 1 << "X" << (euro + "Xa");
        QTest::newRow("after pair") << ("a" + smile + "b") << 3 << "X" << ("a" + smile + "Xb");
        QTest::newRow("past end") << "ab" << 40 << "X"
                                  << "abX";
    }
    void columnsInCodeUnits() {
        QFETCH(QString, line);
        QFETCH(int, column);
        QFETCH(QString, insert);
        QFETCH(QString, expected);
        ScintillaBuffer& b = view->Buffer();
        int ec = 0, el = 0;
        b.InsertText(0, 0, line, 0, ec, el);
        QCOMPARE(b.GetLineLength(0), line.size());
        b.InsertText(column, 0, insert, 0, ec, el);
        QCOMPARE(b.GetLine(0), expected);
        const int at = expected.indexOf(insert);
        QCOMPARE(ec, at + insert.size());
        b.DeleteText(at, 0, at + insert.size(), 0);
        QCOMPARE(b.GetLine(0), line);
        view->SetCursor(at, 0);
        QCOMPARE(view->CursorCol(), at);
    }

    // Operations and typing share one stack, in the order they happened, and the control's
    // undo keys reach the operations too. Redo runs DoOp on the text as it was before.
    void operationsInterleaveWithTyping() {
        ScintillaBuffer& b = view->Buffer();
        b.SetAllText(QStringLiteral("abcdef\r\nghijkl\r\nmnopqr"));
        const QString original = b.AllText();
        view->SetCursor(6, 2);
        typeText(*view, QStringLiteral("XY"));
        const QString typed = b.AllText();
        b.ExecuteOp(deletePrefix(2, 3));
        const QString afterOp = b.AllText();
        QCOMPARE(afterOp, QStringLiteral("def\njkl\npqrXY"));
        view->SetCursor(0, 0);
        typeText(*view, QStringLiteral("Z"));
        const QString last = b.AllText();
        b.Undo();
        QCOMPARE(b.AllText(), afterOp);
        QTest::keyClick(view.get(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(b.AllText(), typed);
        b.Undo();
        QCOMPARE(b.AllText(), original);
        QVERIFY(!b.CanUndo());
        b.Redo();
        QTest::keyClick(view.get(), Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(b.AllText(), afterOp);
        QTest::keyClick(view.get(), Qt::Key_Backspace, Qt::AltModifier);
        QCOMPARE(b.AllText(), typed);
        b.Redo();
        b.Redo();
        QCOMPARE(b.AllText(), last);
    }

    void modifiedFollowsTheSavePoint() {
        ScintillaBuffer& b = view->Buffer();
        QVERIFY(!b.Modified());
        typeText(*view, QStringLiteral("ab"));
        QVERIFY(b.Modified());
        b.SetModified(false);
        QVERIFY(!b.Modified());
        b.ExecuteOp(deletePrefix(0, 1));
        QVERIFY(b.Modified());
        b.Undo();
        QVERIFY(!b.Modified());
        b.Undo();
        QVERIFY(b.Modified());
        b.ClearUndoStack();
        QVERIFY(b.Modified());
    }

    void bookmarksByKeys() {
        view->Buffer().SetAllText(QStringLiteral("0\r\n1\r\n2\r\n3\r\n4"));
        view->SetCursor(0, 1);
        QTest::keyClick(view.get(), Qt::Key_F2, Qt::ControlModifier);
        view->SetCursor(0, 3);
        QTest::keyClick(view.get(), Qt::Key_F2, Qt::ControlModifier);
        QVERIFY(view->HasBookmark(1) && view->HasBookmark(3));
        view->SetCursor(0, 2);
        QTest::keyClick(view.get(), Qt::Key_F2);
        QCOMPARE(view->CursorLine(), 3);
        QTest::keyClick(view.get(), Qt::Key_F2); // wraps around
        QCOMPARE(view->CursorLine(), 1);
        QTest::keyClick(view.get(), Qt::Key_F2, Qt::ShiftModifier);
        QCOMPARE(view->CursorLine(), 3);
        QTest::keyClick(view.get(), Qt::Key_F2, Qt::ControlModifier); // toggles off
        QVERIFY(!view->HasBookmark(3));
    }

    // Edits inside an operation give the lines the same edits give outside one; the lines
    // keep their data words and bookmarks, and the selection its lines, through undo and redo.
    void editsInsideAnOperation_data() {
        QTest::addColumn<QList<int>>("order");
        QTest::newRow("back and forth") << QList<int>{5, 6, 5, 30, 7, 31, 0, 39, 38};
    }
    void editsInsideAnOperation() {
        QFETCH(QList<int>, order);
        QStringList start;
        for (int i = 0; i < 40; ++i)
            start << QStringLiteral("%1 line \u00e9 \U0001D11E \x1d end").arg(i);
        // A prefix, a suffix past the end, two characters out, and an insert between the
        // halves of a surrogate pair, which lands in front of the pair.
        const auto script = [&](SourceBuffer& b) {
            for (int line : order) {
                int c = 0, l = 0;
                b.InsertText(0, line, QStringLiteral("> "), 0, c, l);
                b.InsertText(999, line, QStringLiteral(" <"), 0, c, l);
                b.DeleteText(6, line, 4, line);
                const int pair = static_cast<int>(b.GetLine(line).indexOf(QChar(0xD834)));
                b.InsertText(pair + 1, line, QStringLiteral("|"), 0, c, l);
            }
        };
        SourceView plain;
        plain.Buffer().SetAllText(start.join(QLatin1Char('\n')));
        script(plain.Buffer());
        const QStringList expected = allLines(plain.Buffer());

        ScintillaBuffer& b = view->Buffer();
        b.SetAllText(start.join(QLatin1Char('\n')));
        const QList<int> bookmarks{3, 4, 17, 39};
        for (int i = 0; i < 40; ++i)
            b.SetLineData(i, 1, 1000 + i);
        for (int line : bookmarks)
            view->SendScintilla(QsciScintillaBase::SCI_MARKERADD, line,
                                ScintillaBuffer::BookmarkMarker);
        view->SetSelection(3, 22, 1, 21);
        const auto keeps = [&] {
            for (int i = 0; i < 40; ++i) {
                QCOMPARE(b.GetLineData(i, 1), 1000 + i);
                QCOMPARE(view->HasBookmark(i), bookmarks.contains(i));
            }
            int ac = 0, al = 0, cc = 0, cl = 0;
            view->GetSelection(ac, al, cc, cl);
            QCOMPARE(QList<int>({al, cl}), QList<int>({22, 21}));
        };
        auto op = std::make_unique<OpScript>();
        op->Do = script;
        op->Undo = [&](SourceBuffer& buffer) {
            for (int line = 39; line >= 0; --line) {
                int c = 0, l = 0;
                buffer.DeleteText(0, line, buffer.GetLineLength(line), line);
                buffer.InsertText(0, line, start[line], 0, c, l);
            }
        };
        b.ExecuteOp(std::move(op));
        QCOMPARE(allLines(b), expected);
        keeps();
        b.Undo();
        QCOMPARE(allLines(b), start);
        keeps();
        b.Redo();
        QCOMPARE(allLines(b), expected);
        keeps();
    }

    // An operation over runs of neighbouring lines leaves the view where it was, its scroll
    // bars showing what Scintilla shows.
    void scrollBarsAfterAnOperation_data() {
        QTest::addColumn<int>("top");
        QTest::newRow("at the end") << -1;
        QTest::newRow("in the middle") << 150;
    }
    void scrollBarsAfterAnOperation() {
        QFETCH(int, top);
        QStringList start;
        for (int i = 0; i < 400; ++i)
            start << QStringLiteral("line %1").arg(i);
        view->Buffer().SetAllText(start.join(QLatin1Char('\n')));
        QScrollBar* bar = view->verticalScrollBar();
        bar->setValue(top < 0 ? bar->maximum() : top);
        QCoreApplication::processEvents();
        const long shown = view->SendScintilla(QsciScintillaBase::SCI_GETFIRSTVISIBLELINE);
        const int maximum = bar->maximum();
        auto op = std::make_unique<OpScript>();
        op->Do = [&](SourceBuffer& buffer) {
            for (int line = 16; line < 400; line += 20) {
                int c = 0, l = 0;
                buffer.InsertText(999, line, QString(200, u'x'), 0, c, l);
                buffer.InsertText(999, line + 1, QString(200, u'x'), 0, c, l);
            }
        };
        op->Undo = [](SourceBuffer&) {};
        view->Buffer().ExecuteOp(std::move(op));
        QCoreApplication::processEvents();
        QCOMPARE(view->SendScintilla(QsciScintillaBase::SCI_GETFIRSTVISIBLELINE), shown);
        QCOMPARE(QList<int>({bar->value(), bar->maximum()}), QList<int>({int(shown), maximum}));
        QCOMPARE(view->horizontalScrollBar()->value(),
                 static_cast<int>(view->SendScintilla(QsciScintillaBase::SCI_GETXOFFSET)));
    }

    // Random edits, most within a line and walking down, some making or joining lines, read
    // back after each step: inside one operation the same as outside.
    void randomEditsInsideAnOperation_data() {
        QTest::addColumn<quint32>("run");
        QTest::addRow("run 2024") << 2024u;
    }
    void randomEditsInsideAnOperation() {
        QFETCH(quint32, run);
        // The same edits from the seed, with what was read after each one.
        const auto replay = [run](SourceBuffer& b) {
            QRandomGenerator random(run);
            QStringList read;
            int line = 0, previous = 0;
            for (int i = 0; i < 300; ++i) {
                const int kind = static_cast<int>(random.bounded(10));
                line = random.bounded(5) == 0 ? static_cast<int>(random.bounded(30))
                                              : line + static_cast<int>(random.bounded(3));
                const int at = line % 30;
                const int column = static_cast<int>(random.bounded(12));
                const int endColumn = static_cast<int>(random.bounded(12));
                const int readLine = static_cast<int>(random.bounded(32));
                int c = 0, l = 0;
                if (kind < 5 || kind == 8)
                    b.InsertText(column, at,
                                 kind == 8 ? QStringLiteral("a\nb") : QStringLiteral("xy\u00e9"), 0,
                                 c, l);
                else
                    b.DeleteText(column, at, endColumn, at + (kind == 9 ? 1 : 0));
                // The line read last time first: a stale read of it would show.
                read << b.GetLine(previous) << b.GetLine(readLine)
                     << QStringLiteral("%1,%2 %3").arg(c).arg(l).arg(b.NumLines());
                previous = readLine;
            }
            return read;
        };
        QStringList start;
        for (int i = 0; i < 30; ++i)
            start << QStringLiteral("line %1 of the text").arg(i);
        SourceView plain;
        plain.Buffer().SetAllText(start.join(QLatin1Char('\n')));
        const QStringList expected = replay(plain.Buffer());

        ScintillaBuffer& b = view->Buffer();
        b.SetAllText(start.join(QLatin1Char('\n')));
        QStringList read;
        auto op = std::make_unique<OpScript>();
        op->Do = [&](SourceBuffer& buffer) { read = replay(buffer); };
        op->Undo = [](SourceBuffer&) {};
        b.ExecuteOp(std::move(op));
        QCOMPARE(read, expected);
        QCOMPARE(allLines(b), allLines(plain.Buffer()));
    }

    void setAllTextReplacesAndForgetsRecords() {
        ScintillaBuffer& b = view->Buffer();
        typeText(*view, QStringLiteral("old"));
        b.SetAllText(QStringLiteral("one\r\n\r\ntwo\rthree"));
        QCOMPARE(b.AllText(), QStringLiteral("one\n\ntwo\nthree"));
        QVERIFY(!b.CanUndo());
    }
};

BRIX_TEST_MAIN(tst_ScintillaBuffer)
#include "tst_ScintillaBuffer.moc"
