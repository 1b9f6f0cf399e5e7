#include "TestEnv.h"

#include "language/ISourceLex4.h"
#include "language/ISourceOp.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"

#include <QKeyEvent>
#include <QRandomGenerator>
#include <QScrollBar>
#include <functional>
#include <numeric>

namespace {

// Deletes `count` characters at the start of every line in a range, keeping what it took.
class OpDeletePrefix final : public ISourceOp {
public:
    OpDeletePrefix(int first, int last, int count) : first_(first), last_(last), count_(count) {}
    void ISourceOp_DoOp(SourceBuffer& b) override {
        taken_.clear();
        for (int line = first_; line <= last_; ++line) {
            const QString text = b.GetLine(line);
            taken_.push_back(text.left(count_));
            b.DeleteText(0, line, std::min<int>(count_, text.size()), line);
        }
        int scanTo = last_;
        b.UpdateLines(first_, last_, scanTo);
        b.RefreshLines(70, first_, last_, 0, first_);
    }
    void ISourceOp_UndoOp(SourceBuffer& b) override {
        int endColumn = 0;
        int endLine = 0;
        for (int line = first_; line <= last_; ++line)
            b.InsertText(0, line, taken_[static_cast<size_t>(line - first_)], 0, endColumn,
                         endLine);
        b.RefreshLines(70, first_, last_, 0, first_);
    }

private:
    int first_, last_, count_;
    std::vector<QString> taken_;
};

// Stores each line's length plus 1000 as its flags and counts the lines it saw.
class CountingLex final : public ISourceLex4 {
public:
    int linesSeen = 0;
    void ISourceLex4_BeginLineScan(SourceBuffer&, int32_t line, QStringView text,
                                   int32_t) override {
        line_ = line;
        length_ = static_cast<int32_t>(text.size());
        index_ = 0;
        ++linesSeen;
    }
    void ISourceLex4_EndLineScan(SourceBuffer& b, bool& result) override {
        b.SetLineData(line_, 1, 1000 + length_);
        result = false;
    }
    QString ISourceLex4_GetDesiredCase(const QString&) override { return {}; }
    void ISourceLex4_GetLineIndex(int32_t& i) override { i = index_; }
    int32_t ISourceLex4_GetProperties(int32_t& p) override { return p = 0; }
    void ISourceLex4_ScanToken(SourceToken& t) override {
        t.Start = index_;
        t.Length = length_ - index_;
        t.Kind = t.Length > 0 ? TokenKind::Normal : TokenKind::End;
        index_ = length_;
    }
    void ISourceLex4_SetLineIndex(int32_t i) override { index_ = i; }

private:
    int32_t line_ = 0, length_ = 0, index_ = 0;
};

// An operation whose body is given by the test.
class OpScript final : public ISourceOp {
public:
    std::function<void(SourceBuffer&)> Do;
    std::function<void(SourceBuffer&)> Undo;
    void ISourceOp_DoOp(SourceBuffer& b) override { Do(b); }
    void ISourceOp_UndoOp(SourceBuffer& b) override { Undo(b); }
};

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

    void emptyBufferHasOneLine() {
        ScintillaBuffer& b = view->Buffer();
        QCOMPARE(b.NumLines(), 1);
        QCOMPARE(b.GetLine(0), QString());
        QCOMPARE(b.GetLineLength(0), 0);
        QCOMPARE(b.GetLine(5), QString());
    }

    void insertTextMakesLines_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("lines");
        QTest::addColumn<int>("endColumn");
        QTest::addColumn<int>("endLine");
        QTest::newRow("plain") << "abc" << 1 << 5 << 0;
        QTest::newRow("crlf") << "ab\r\ncd" << 2 << 2 << 1;
        QTest::newRow("lf") << "ab\ncd" << 2 << 2 << 1;
        QTest::newRow("bare cr") << "ab\rcd" << 2 << 2 << 1;
        QTest::newRow("blank line") << "a\r\n\r\nb" << 3 << 1 << 2;
        QTest::newRow("trailing crlf") << "a\r\n" << 2 << 0 << 1;
        QTest::newRow("non-bmp") << QString::fromUtf8("x\xF0\x9F\x98\x80y") << 1 << 6 << 0;
    }
    void insertTextMakesLines() {
        QFETCH(QString, text);
        QFETCH(int, lines);
        QFETCH(int, endColumn);
        QFETCH(int, endLine);
        ScintillaBuffer& b = view->Buffer();
        int ec = 0, el = 0;
        b.InsertText(0, 0, QStringLiteral("12"), 0, ec, el);
        b.InsertText(2, 0, text, 0, ec, el);
        QCOMPARE(b.NumLines(), lines);
        QCOMPARE(ec, endColumn);
        QCOMPARE(el, endLine);
        QVERIFY(!b.GetLine(0).contains(QLatin1Char('\r')));
    }

    // Columns count 16-bit code units on every kind of line.
    void columnsInCodeUnits_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("insert");
        QTest::addColumn<QString>("expected");
        const QString e = QString::fromUtf8("\xC3\xA9");             // é, 2 bytes
        const QString euro = QString::fromUtf8("\xE2\x82\xAC");      // €, 3 bytes
        const QString smile = QString::fromUtf8("\xF0\x9F\x98\x80"); // surrogate pair
        QTest::newRow("ascii") << "abcd" << 2 << "X"
                               << "abXcd";
        QTest::newRow("two-byte") << (e + e + "z") << 2 << "X" << (e + e + "Xz");
        QTest::newRow("three-byte") << (euro + "a") << 1 << "X" << (euro + "Xa");
        QTest::newRow("after pair") << ("a" + smile + "b") << 3 << "X" << ("a" + smile + "Xb");
        QTest::newRow("past end") << "ab" << 40 << "X"
                                  << "abX";
        QTest::newRow("mark") << QString("a\x1d"
                                         "b")
                              << 2 << "X" << QString("a\x1dXb");
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

    void selectionKeepsItsDirection_data() {
        QTest::addColumn<int>("sc");
        QTest::addColumn<int>("sl");
        QTest::addColumn<int>("ec");
        QTest::addColumn<int>("el");
        QTest::newRow("forward") << 1 << 0 << 2 << 1;
        QTest::newRow("backward") << 2 << 1 << 1 << 0;
    }
    void selectionKeepsItsDirection() {
        QFETCH(int, sc);
        QFETCH(int, sl);
        QFETCH(int, ec);
        QFETCH(int, el);
        view->Buffer().SetAllText(QStringLiteral("abcd\r\nefgh"));
        view->SetSelection(sc, sl, ec, el);
        int a = -1, b = -1, d = -1, e = -1;
        view->GetSelection(a, b, d, e);
        QCOMPARE(QList<int>({a, b, d, e}), QList<int>({sc, sl, ec, el}));
        QCOMPARE(view->CursorCol(), ec);
        QCOMPARE(view->CursorLine(), el);
        QVERIFY(view->HasSelection());
        view->SetSelection(0, 0, 32767, 1); // whole lines: the end column means the line's end
        view->GetSelection(a, b, d, e);
        QCOMPARE(d, 4);
    }

    // Operations and typing share one stack, in the order they happened.
    void operationsInterleaveWithTyping() {
        ScintillaBuffer& b = view->Buffer();
        b.SetAllText(QStringLiteral("abcdef\r\nghijkl\r\nmnopqr"));
        const QString original = b.AllText();

        view->SetCursor(6, 2);
        typeText(*view, QStringLiteral("XY"));
        const QString typed = b.AllText();
        QCOMPARE(typed, QStringLiteral("abcdef\nghijkl\nmnopqrXY"));

        b.ExecuteOp(std::make_unique<OpDeletePrefix>(0, 2, 3));
        const QString afterOp = b.AllText();
        QCOMPARE(afterOp, QStringLiteral("def\njkl\npqrXY"));

        view->SetCursor(0, 0);
        typeText(*view, QStringLiteral("Z"));
        QCOMPARE(b.AllText(), QStringLiteral("Zdef\njkl\npqrXY"));

        b.Undo();
        QCOMPARE(b.AllText(), afterOp);
        b.Undo();
        QCOMPARE(b.AllText(), typed);
        b.Undo();
        QCOMPARE(b.AllText(), original);
        QVERIFY(!b.CanUndo());

        // Redo runs DoOp on the buffer as it was before the first run.
        b.Redo();
        QCOMPARE(b.AllText(), typed);
        b.Redo();
        QCOMPARE(b.AllText(), afterOp);
        b.Redo();
        QCOMPARE(b.AllText(), QStringLiteral("Zdef\njkl\npqrXY"));
        QVERIFY(!b.CanRedo());

        // And once more down and up, to see the same object serve any number of times.
        b.Undo();
        b.Undo();
        b.Redo();
        QCOMPARE(b.AllText(), afterOp);
    }

    // The keys of the control reach the operations too.
    void undoKeysRunOperations() {
        ScintillaBuffer& b = view->Buffer();
        b.SetAllText(QStringLiteral("abcd\r\nefgh"));
        b.ExecuteOp(std::make_unique<OpDeletePrefix>(0, 1, 2));
        QCOMPARE(b.AllText(), QStringLiteral("cd\ngh"));
        QTest::keyClick(view.get(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(b.AllText(), QStringLiteral("abcd\nefgh"));
        QTest::keyClick(view.get(), Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(b.AllText(), QStringLiteral("cd\ngh"));
        QTest::keyClick(view.get(), Qt::Key_Backspace, Qt::AltModifier);
        QCOMPARE(b.AllText(), QStringLiteral("abcd\nefgh"));
    }

    void modifiedFollowsTheSavePoint() {
        ScintillaBuffer& b = view->Buffer();
        QVERIFY(!b.Modified());
        typeText(*view, QStringLiteral("ab"));
        QVERIFY(b.Modified());
        b.SetModified(false);
        QVERIFY(!b.Modified());
        b.ExecuteOp(std::make_unique<OpDeletePrefix>(0, 0, 1));
        QVERIFY(b.Modified());
        b.Undo();
        QVERIFY(!b.Modified()); // back at the save point
        b.Undo();
        QVERIFY(b.Modified()); // behind it
        b.Redo();
        QVERIFY(!b.Modified());
        b.SetModified(true);
        QVERIFY(b.Modified());
        b.ClearUndoStack();
        QVERIFY(b.Modified()); // forgetting records does not change the state
    }

    void lineDataMovesWithItsLine() {
        ScintillaBuffer& b = view->Buffer();
        int c = 0, l = 0;
        b.InsertText(0, 0, QStringLiteral("a\r\nb\r\nc"), 0, c, l);
        b.SetLineData(0, 1, 11);
        b.SetLineData(1, 1, 22);
        b.SetLineData(2, 1, 33);
        b.InsertText(1, 0, QStringLiteral("xyz"), 0, c, l); // an edit of another line
        QCOMPARE(b.GetLineData(1, 1), 22);
        b.InsertText(0, 1, QStringLiteral("new\r\n"), 0, c, l); // a line pushed in front of line 1
        QCOMPARE(b.GetLineData(0, 1), 11);
        QCOMPARE(b.GetLineData(2, 1), 22);
        QCOMPARE(b.GetLineData(3, 1), 33);
        b.DeleteText(0, 0, 0, 1); // line 0 goes
        QCOMPARE(b.GetLineData(2, 1), 33);
        QCOMPARE(b.GetLineData(0, 2), 0); // the component keeps word 1 only
    }

    void updateLinesScansEveryNamedLine() {
        ScintillaBuffer& b = view->Buffer();
        auto lex = std::make_shared<CountingLex>();
        b.SetLex(lex);
        b.SetAllText(QStringLiteral("a\r\nbb\r\nccc\r\ndddd"));
        lex->linesSeen = 0;
        int scanTo = 2;
        b.UpdateLines(1, 2, scanTo);
        QCOMPARE(lex->linesSeen, 2);
        QCOMPARE(scanTo, 2);
        QCOMPARE(b.GetLineData(1, 1), 1002);
        QCOMPARE(b.GetLineData(2, 1), 1003);
        scanTo = 99;
        b.UpdateLines(0, 99, scanTo);
        QCOMPARE(scanTo, 3);
        QCOMPARE(b.GetLineData(3, 1), 1004);
        const auto tokens = b.ScanLine(3);
        QCOMPARE(tokens.size(), size_t(1));
        QCOMPARE(tokens[0].Length, 4);
    }

    void bookmarksByKeys() {
        ScintillaBuffer& b = view->Buffer();
        b.SetAllText(QStringLiteral("0\r\n1\r\n2\r\n3\r\n4"));
        view->SetCursor(0, 1);
        QTest::keyClick(view.get(), Qt::Key_F2, Qt::ControlModifier);
        view->SetCursor(0, 3);
        QTest::keyClick(view.get(), Qt::Key_F2, Qt::ControlModifier);
        QVERIFY(view->HasBookmark(1) && view->HasBookmark(3));
        view->SetCursor(0, 0);
        QTest::keyClick(view.get(), Qt::Key_F2);
        QCOMPARE(view->CursorLine(), 1);
        QTest::keyClick(view.get(), Qt::Key_F2);
        QCOMPARE(view->CursorLine(), 3);
        QTest::keyClick(view.get(), Qt::Key_F2); // wraps around
        QCOMPARE(view->CursorLine(), 1);
        QTest::keyClick(view.get(), Qt::Key_F2, Qt::ShiftModifier);
        QCOMPARE(view->CursorLine(), 3);
        QTest::keyClick(view.get(), Qt::Key_F2, Qt::ControlModifier); // toggles off
        QVERIFY(!view->HasBookmark(3));
        b.ClearAllBookmarks();
        QVERIFY(!view->HasBookmark(1));
    }

    void marksStayInTheText() {
        ScintillaBuffer& b = view->Buffer();
        const QString marked = QStringLiteral("A\x1d"
                                              "B\x1c"
                                              "C");
        int c = 0, l = 0;
        b.InsertText(0, 0, marked, 0, c, l);
        QCOMPARE(b.GetLine(0), marked);
        QCOMPARE(b.GetLineLength(0), 5);
        char shown[8] = {};
        view->SendScintilla(QsciScintillaBase::SCI_GETREPRESENTATION,
                            reinterpret_cast<uintptr_t>("\x1d"), shown);
        QCOMPARE(QByteArray(shown), QByteArray("]"));
    }

    // Edits inside an operation give the same lines as the same edits outside one, also
    // read back while the operation runs; the lines keep their data words and bookmarks,
    // and the selection stays on its lines.
    void editsInsideAnOperation_data() {
        QTest::addColumn<QList<int>>("order");
        QList<int> every(40);
        std::iota(every.begin(), every.end(), 0);
        QTest::newRow("every line") << every;
        QTest::newRow("far apart") << QList<int>{2, 12, 22, 32};
        QTest::newRow("bottom up") << QList<int>(every.rbegin(), every.rend());
        QTest::newRow("back and forth") << QList<int>{5, 6, 5, 30, 7, 31, 0, 39, 38};
    }
    void editsInsideAnOperation() {
        QFETCH(QList<int>, order);
        QStringList start;
        for (int i = 0; i < 40; ++i)
            start << QStringLiteral("%1 line \u00e9 \U0001D11E \x1d end").arg(i);
        // Each line: a prefix, a suffix past its end, two characters out, and an insert
        // between the halves of a surrogate pair, which lands in front of the pair.
        QStringList seen;
        const auto script = [&](SourceBuffer& b) {
            for (int line : order) {
                int c = 0, l = 0;
                b.InsertText(0, line, QStringLiteral("> "), 0, c, l);
                seen << QStringLiteral("%1,%2").arg(c).arg(l);
                b.InsertText(999, line, QStringLiteral(" <"), 0, c, l);
                seen << QStringLiteral("%1,%2").arg(c).arg(l);
                b.DeleteText(6, line, 4, line);
                const int pair = static_cast<int>(b.GetLine(line).indexOf(QChar(0xD834)));
                b.InsertText(pair + 1, line, QStringLiteral("|"), 0, c, l);
                seen << b.GetLine(line) << QString::number(b.GetLineLength(line));
            }
        };
        SourceView plain;
        plain.Buffer().SetAllText(start.join(QLatin1Char('\n')));
        script(plain.Buffer());
        const QStringList expected = allLines(plain.Buffer());
        const QStringList expectedSeen = seen;
        seen.clear();

        ScintillaBuffer& b = view->Buffer();
        b.SetAllText(start.join(QLatin1Char('\n')));
        for (int i = 0; i < 40; ++i)
            b.SetLineData(i, 1, 1000 + i);
        const QList<int> bookmarks{3, 4, 17, 39};
        for (int line : bookmarks)
            view->SendScintilla(QsciScintillaBase::SCI_MARKERADD, line,
                                ScintillaBuffer::BookmarkMarker);
        view->SetSelection(3, 22, 1, 21);
        const auto keeps = [&] {
            for (int i = 0; i < 40; ++i) {
                QCOMPARE(b.GetLineData(i, 1), 1000 + i);
                QCOMPARE(view->HasBookmark(i), bookmarks.contains(i));
            }
            int anchorColumn = 0, anchorLine = 0, caretColumn = 0, caretLine = 0;
            view->GetSelection(anchorColumn, anchorLine, caretColumn, caretLine);
            QCOMPARE(anchorLine, 22);
            QCOMPARE(caretLine, 21);
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
        QCOMPARE(seen, expectedSeen);
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
        QTest::newRow("at the start") << 0;
    }
    void scrollBarsAfterAnOperation() {
        QFETCH(int, top);
        ScintillaBuffer& b = view->Buffer();
        QStringList start;
        for (int i = 0; i < 400; ++i)
            start << QStringLiteral("line %1").arg(i);
        b.SetAllText(start.join(QLatin1Char('\n')));
        QScrollBar* bar = view->verticalScrollBar();
        bar->setValue(top < 0 ? bar->maximum() : top);
        QCoreApplication::processEvents();
        const auto firstVisible = [&] {
            return static_cast<int>(
                view->SendScintilla(QsciScintillaBase::SCI_GETFIRSTVISIBLELINE));
        };
        const int shown = firstVisible();
        const int maximum = bar->maximum();
        const QString tail(200, QLatin1Char('x'));
        auto op = std::make_unique<OpScript>();
        op->Do = [&](SourceBuffer& buffer) {
            for (int line = 16; line < 400; line += 20) {
                int c = 0, l = 0;
                buffer.InsertText(999, line, tail, 0, c, l);
                buffer.InsertText(999, line + 1, tail, 0, c, l);
            }
        };
        op->Undo = [](SourceBuffer&) {};
        b.ExecuteOp(std::move(op));
        QCoreApplication::processEvents();
        QCOMPARE(firstVisible(), shown);
        QCOMPARE(bar->value(), shown);
        QCOMPARE(bar->maximum(), maximum);
        QCOMPARE(view->horizontalScrollBar()->value(),
                 static_cast<int>(view->SendScintilla(QsciScintillaBase::SCI_GETXOFFSET)));
    }

    // Random edits, most within a line and walking down, some making or joining lines, read
    // back after each step: inside one operation the same as outside.
    void randomEditsInsideAnOperation_data() {
        QTest::addColumn<quint32>("run");
        for (quint32 run : {3u, 17u, 2024u})
            QTest::addRow("run %u", run) << run;
    }
    void randomEditsInsideAnOperation() {
        QFETCH(quint32, run);
        QRandomGenerator random(run);
        struct Step {
            int kind, column, line, endColumn, endLine, readLine;
            QString text;
        };
        std::vector<Step> steps;
        int line = 0;
        for (int i = 0; i < 300; ++i) {
            Step step{};
            step.kind = static_cast<int>(random.bounded(10));
            line = random.bounded(5) == 0 ? static_cast<int>(random.bounded(30))
                                          : line + static_cast<int>(random.bounded(3));
            step.line = line % 30;
            step.column = static_cast<int>(random.bounded(12));
            step.endColumn = static_cast<int>(random.bounded(12));
            step.endLine = step.line + (step.kind == 9 ? 1 : 0);
            step.text = step.kind == 8 ? QStringLiteral("a\nb") : QStringLiteral("xy\u00e9");
            step.readLine = static_cast<int>(random.bounded(32));
            steps.push_back(step);
        }
        const auto replay = [&](SourceBuffer& b) {
            QStringList read;
            int previous = 0;
            for (const Step& step : steps) {
                int c = 0, l = 0;
                if (step.kind < 5 || step.kind == 8)
                    b.InsertText(step.column, step.line, step.text, 0, c, l);
                else
                    b.DeleteText(step.column, step.line, step.endColumn, step.endLine);
                // The line read last time first: a stale read of it would show.
                read << b.GetLine(previous);
                read << QStringLiteral("%1,%2 %3 [%4] %5")
                            .arg(c)
                            .arg(l)
                            .arg(b.NumLines())
                            .arg(b.GetLine(step.readLine))
                            .arg(b.GetLineLength(step.line));
                previous = step.readLine;
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
        for (int i = 0; i < static_cast<int>(steps.size()); ++i)
            QVERIFY2(
                read[i] == expected[i],
                qPrintable(QStringLiteral("step %1: %2 vs %3").arg(i).arg(read[i], expected[i])));
        QCOMPARE(allLines(b), allLines(plain.Buffer()));
    }

    void setAllTextReplacesAndForgetsRecords() {
        ScintillaBuffer& b = view->Buffer();
        typeText(*view, QStringLiteral("old"));
        b.SetAllText(QStringLiteral("one\r\ntwo\rthree"));
        QCOMPARE(b.NumLines(), 3);
        QCOMPARE(b.AllText(), QStringLiteral("one\ntwo\nthree"));
        QVERIFY(!b.CanUndo());
    }
};

BRIX_TEST_MAIN(tst_ScintillaBuffer)
#include "tst_ScintillaBuffer.moc"
