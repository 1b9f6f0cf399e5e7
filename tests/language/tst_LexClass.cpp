#include "TestEnv.h"

#include "language/LexClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "language/clsKeywords.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

// Golden files: <name>.bas.tokens beside each fixtures/language/<name>.bas (nohighlight*.bas
// with Highlight off). BRIX_REGEN_GOLDEN=1 rewrites them; read every change before committing.

namespace {

QString escaped(QStringView text) {
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        // Half of a pair alone is no text a file can hold.
        const bool paired = c.isHighSurrogate()
                                ? i + 1 < text.size() && text[i + 1].isLowSurrogate()
                                : i > 0 && c.isLowSurrogate() && text[i - 1].isHighSurrogate();
        if (c == u'\t' || c.unicode() == 28 || c.unicode() == 29)
            out += c == u'\t'          ? QLatin1String("<TAB>")
                   : c.unicode() == 29 ? QLatin1String("<VM>")
                                       : QLatin1String("<SVM>");
        else if (c.isSurrogate() && !paired)
            out += QStringLiteral("<U+%1>").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            out += c;
    }
    return out;
}

// Passes every call on to a LexClass and counts the lines it is asked to scan.
class CountingLex final : public ISourceLex4 {
public:
    LexClass inner;
    int lines = 0;
    void ISourceLex4_BeginLineScan(SourceBuffer& b, int32_t line, QStringView text,
                                   int32_t r) override {
        ++lines;
        inner.ISourceLex4_BeginLineScan(b, line, text, r);
    }
    void ISourceLex4_EndLineScan(SourceBuffer& b, bool& result) override {
        inner.ISourceLex4_EndLineScan(b, result);
    }
    QString ISourceLex4_GetDesiredCase(const QString& t) override {
        return inner.ISourceLex4_GetDesiredCase(t);
    }
    void ISourceLex4_GetLineIndex(int32_t& i) override { inner.ISourceLex4_GetLineIndex(i); }
    int32_t ISourceLex4_GetProperties(int32_t& p) override {
        return inner.ISourceLex4_GetProperties(p);
    }
    void ISourceLex4_ScanToken(SourceToken& t) override { inner.ISourceLex4_ScanToken(t); }
    void ISourceLex4_SetLineIndex(int32_t i) override { inner.ISourceLex4_SetLineIndex(i); }
};

} // namespace

class tst_LexClass : public QObject {
    Q_OBJECT
    std::unique_ptr<SourceView> view;
    std::shared_ptr<LexClass> lex;

    // Whether the colours of a line are those of its tokens.
    bool styledAsTokens(int32_t line) {
        ScintillaBuffer& b = view->Buffer();
        for (const SourceToken& t : b.ScanLine(line))
            for (int32_t c = t.Start; c < t.Start + t.Length; ++c)
                if (view->SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT,
                                        static_cast<unsigned long>(b.PositionOf(c, line))) !=
                    ScintillaBuffer::StyleOfKind(t.Kind))
                    return false;
        return true;
    }

    // Each line's flags and tokens as text; colours unlike the tokens fail the comparison.
    QString lexWhole(const QString& text) {
        ScintillaBuffer& b = view->Buffer();
        b.SetAllText(text);
        const int32_t count = b.NumLines();
        for (int32_t i = 0; i < count; ++i)
            b.SetLineData(i, 1, -1);
        int32_t scanTo = count - 1;
        b.UpdateLines(0, count - 1, scanTo);
        QString out;
        for (int32_t i = 0; i < count; ++i) {
            const QString line = b.GetLine(i);
            out += QStringLiteral("line %1 flags 0x%2 |%3|\n")
                       .arg(i)
                       .arg(static_cast<uint32_t>(b.GetLineData(i, 1)), 8, 16, QLatin1Char('0'))
                       .arg(escaped(line));
            for (const SourceToken& t : b.ScanLine(i))
                out += QStringLiteral("  %1 %2 %3 |%4|\n")
                           .arg(t.Kind)
                           .arg(t.Start)
                           .arg(t.Length)
                           .arg(escaped(QStringView(line).mid(t.Start, t.Length)));
        }
        b.StyleLines(0, count - 1);
        for (int32_t i = 0; i < count; ++i)
            if (!styledAsTokens(i))
                return QStringLiteral("line %1: the colours are not those of the tokens").arg(i);
        return out;
    }

    std::vector<SourceToken> tokensOf(const QString& line) {
        view->Buffer().SetAllText(line);
        return view->Buffer().ScanLine(0);
    }

private Q_SLOTS:
    void init() {
        view = std::make_unique<SourceView>();
        view->resize(600, 300);
        lex = std::make_shared<LexClass>();
        view->Buffer().SetLex(lex);
    }
    void cleanup() {
        view.reset();
        lex.reset();
    }

    void golden_data() {
        QTest::addColumn<QString>("name");
        const QDir dir(TestEnv::Fixture(QStringLiteral("language")));
        const QStringList names = dir.entryList({QStringLiteral("*.bas")}, QDir::Files, QDir::Name);
        for (const QString& name : names)
            QTest::newRow(qPrintable(name)) << name;
    }
    void golden() {
        QFETCH(QString, name);
        const QString path = TestEnv::Fixture(QStringLiteral("language/") + name);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        lex->Highlight = !name.startsWith(QLatin1String("nohighlight"));
        const QString actual = lexWhole(QString::fromUtf8(file.readAll()));
        const QString expectedPath = path + QStringLiteral(".tokens");
        if (qEnvironmentVariableIsSet("BRIX_REGEN_GOLDEN")) {
            QFile out(expectedPath);
            QVERIFY(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
            out.write(actual.toUtf8());
        }
        QFile expectedFile(expectedPath);
        QVERIFY2(expectedFile.open(QIODevice::ReadOnly), qPrintable(expectedPath));
        const QStringList expected =
            QString::fromUtf8(expectedFile.readAll()).split(QLatin1Char('\n'));
        QCOMPARE(actual.split(QLatin1Char('\n')), expected);
    }

    // Lines that need a table other than the default one. Tokens as kind:start:length.
    void withKeywordTable_data() {
        QTest::addColumn<QString>("user");
        QTest::addColumn<bool>("caseSensitive");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("tokens");
        QTest::addColumn<int>("flags");
        const auto row = [](const char* name, const char* user, bool caseSensitive,
                            const char* line, const char* tokens, int flags) {
            QTest::newRow(name) << QString::fromLatin1(user) << caseSensitive
                                << QString::fromLatin1(line) << QString::fromLatin1(tokens)
                                << flags;
        };
        row("user word", "DEBUG", false, "DEBUG X", "4:0:5 1:5:1 8:6:1", 0);
        row("dollar first char", "$FOO", false, "$FOO = 1", "4:0:4 1:4:1 8:5:1 1:6:1 8:7:1", 0);
        row("dollar word not listed", "$FOO", false, "$BAR", "8:0:1 8:1:3", 0);
        row("next char from list", "A-B", false, "A-B", "4:0:3", 0);
        row("open if last, last", "OPENS]", false, "X = OPENS", "8:0:1 1:1:1 8:2:1 1:3:1 4:4:5",
            0x8000);
        row("open if last, not last", "OPENS]", false, "OPENS X", "4:0:5 1:5:1 8:6:1", 0);
        row("open if first, behind ;", "BLK[", false, "X ; BLK", "8:0:1 1:1:1 5:2:1 1:3:1 4:4:3",
            0x4000);
        row("open if first, not first", "BLK[", false, "IF X THEN BLK",
            "10:0:2 1:2:1 8:3:1 1:4:1 10:5:4 1:9:1 4:10:3", 0);
        row("open anywhere", "OPN+", false, "X OPN Y", "8:0:1 1:1:1 4:2:3 1:5:1 8:6:1", 0x800);
        row("case-sensitive lower goto", "", true, "goto X", "8:0:4 1:4:1 8:5:1", 0);
    }
    void withKeywordTable() {
        QFETCH(QString, user);
        QFETCH(bool, caseSensitive);
        QFETCH(QString, line);
        QFETCH(QString, tokens);
        QFETCH(int, flags);
        lex->Keywords->SetCaseSensitive(caseSensitive);
        lex->Keywords->SetKeywordList(4, QStringLiteral(" "), user);
        QStringList got;
        for (const SourceToken& t : tokensOf(line))
            got << QStringLiteral("%1:%2:%3").arg(t.Kind).arg(t.Start).arg(t.Length);
        QCOMPARE(got.join(QLatin1Char(' ')), tokens);
        QCOMPARE(view->Buffer().GetLineData(0, 1), flags);
    }

    // Far in a long program only the lines in view are coloured; those between wait.
    void farLinesAreStyledWhenShown() {
        QStringList lines;
        for (int i = 0; i < 3 * ScintillaBuffer::LazyStyleLines; ++i)
            lines << QStringLiteral("%1 PRINT 'A' ; * note %1").arg(i);
        ScintillaBuffer& b = view->Buffer();
        b.SetAllText(lines.join(QLatin1Char('\n')));
        (void)view->grab();
        const int32_t far = 2 * ScintillaBuffer::LazyStyleLines + 500;
        const int32_t between = ScintillaBuffer::LazyStyleLines;
        view->SetCursor(0, far);
        (void)view->grab();
        QVERIFY(styledAsTokens(far));
        QCOMPARE(view->SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT,
                                     static_cast<unsigned long>(b.PositionOf(0, between))),
                 long(ScintillaBuffer::PendingStyle));
        view->SetCursor(0, between);
        (void)view->grab();
        QVERIFY(styledAsTokens(between));
    }

    // Over real programs nobody here wrote, the tokens cover every line exactly.
    void corpusTokensCoverEveryLine() {
        QDirIterator it(TestEnv::Shared(QStringLiteral("corpus")), QDir::Files,
                        QDirIterator::Subdirectories);
        int programs = 0;
        ScintillaBuffer& b = view->Buffer();
        while (it.hasNext()) {
            const QString path = it.next();
            if (path.endsWith(QLatin1String(".md")))
                continue;
            ++programs;
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadOnly));
            b.SetAllText(QString::fromLatin1(file.readAll().replace("\r\n", "\n")));
            int32_t scanTo = b.NumLines() - 1;
            b.UpdateLines(0, scanTo, scanTo);
            for (int32_t i = 0; i < b.NumLines(); ++i) {
                int32_t at = 0;
                for (const SourceToken& t : b.ScanLine(i)) {
                    QVERIFY2(t.Start == at && t.Length > 0,
                             qPrintable(QStringLiteral("%1:%2").arg(path).arg(i + 1)));
                    at += t.Length;
                }
                QCOMPARE(at, b.GetLineLength(i));
            }
        }
        QVERIFY(programs > 150);
    }

    // A key typed in a long program scans the line it changed and no other; a new line,
    // the two it touches.
    void typingScansOnlyTheChangedLine() {
        auto counting = std::make_shared<CountingLex>();
        view->Buffer().SetLex(counting);
        QString text;
        for (int i = 0; i < 400; ++i)
            text += QStringLiteral("   IF X%1 THEN GOSUB 100 ; * note\n").arg(i);
        view->Buffer().SetAllText(text);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
        view->SetCursor(3, 5);
        view->repaint();
        QCoreApplication::processEvents();
        for (const Qt::Key key : {Qt::Key_A, Qt::Key_B, Qt::Key_Return}) {
            counting->lines = 0;
            QTest::keyClick(view.get(), key);
            view->repaint();
            QCoreApplication::processEvents();
            QCOMPARE(counting->lines, key == Qt::Key_Return ? 2 : 1);
        }
        QVERIFY(styledAsTokens(5));
    }

    // A new line keeps the indentation of the one above.
    void newLineKeepsTheIndentation() {
        view->Buffer().SetAllText(QStringLiteral("   IF X THEN GOSUB 100\nEND"));
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
        view->SetCursor(22, 0);
        QTest::keyClick(view.get(), Qt::Key_Return);
        QTest::keyClicks(view.get(), QStringLiteral("X"));
        QCOMPARE(view->Buffer().GetLine(1), QStringLiteral("   X"));
    }

    // Whatever the keys did, the colours kept from before them equal a fresh colouring.
    void typedColoursMatchAFullColouring_data() {
        QTest::addColumn<int>("line");
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("selectToLine");
        QTest::addColumn<QString>("keys");
        QTest::newRow("quote opens a string") << 2 << 3 << -1 << "\"";
        QTest::newRow("over lines with a new line") << 1 << 2 << 4 << "\n\n*";
    }
    void typedColoursMatchAFullColouring() {
        QFETCH(int, line);
        QFETCH(int, column);
        QFETCH(int, selectToLine);
        QFETCH(QString, keys);
        QString text;
        for (int i = 0; i < 60; ++i)
            text += QStringLiteral("L%1: IF X THEN GOSUB 100 ; * note 'q' \"s\x1d"
                                   "t\"\n")
                        .arg(i);
        ScintillaBuffer& b = view->Buffer();
        b.SetAllText(text);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
        view->repaint();
        if (selectToLine >= 0)
            view->SetSelection(column, line, 1, selectToLine);
        else
            view->SetCursor(column, line);
        for (QChar key : keys) {
            if (key == u'\n')
                QTest::keyClick(view.get(), Qt::Key_Return);
            else
                QTest::keyClicks(view.get(), QString(key));
            view->repaint();
        }
        const int rows = view->VisibleRows();
        const auto end = static_cast<qsizetype>(b.PositionOf(0, std::min(rows, b.NumLines() - 1)));
        const auto styles = [&] {
            QByteArray out;
            for (qsizetype at = 0; at < end; ++at)
                out += static_cast<char>(view->SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT,
                                                             static_cast<unsigned long>(at)));
            return out;
        };
        const QByteArray typed = styles();
        b.InvalidateStyles(0);
        view->repaint();
        QCOMPARE(styles(), typed);
    }
};

BRIX_TEST_MAIN(tst_LexClass)
#include "tst_LexClass.moc"
