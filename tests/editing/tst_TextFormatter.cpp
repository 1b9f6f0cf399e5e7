#include "FileTestSupport.h"
#include "TestEnv.h"

#include "editing/TextFormatter.h"
#include "language/clsKeywords.h"
#include "settings/Moriox.h"

#include <QDirIterator>
#include <QProcess>
#include <sys/stat.h>

namespace {

QString tool() {
    const QString dir = qEnvironmentVariable("BRIX_BUILD_DIR");
    return (dir.isEmpty() ? QCoreApplication::applicationDirPath() + QStringLiteral("/..") : dir) +
           QStringLiteral("/brix-format");
}

struct Result {
    int Code = -1;
    QByteArray Out;
    QByteArray Err;
};

Result runTool(const QStringList& arguments, const QByteArray& input = QByteArray()) {
    QProcess p;
    p.start(tool(), arguments);
    Result r;
    if (!p.waitForStarted(30000))
        return r;
    p.write(input);
    p.closeWriteChannel();
    p.waitForFinished(120000);
    r.Code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.Out = p.readAllStandardOutput();
    r.Err = p.readAllStandardError();
    return r;
}

QString userSettingsFile() {
    return qEnvironmentVariable("XDG_CONFIG_HOME") +
           QStringLiteral("/Tolvek/MultiValue Editor.conf");
}

// Only spaces changed, and only at the start of a line, at its end, or behind its label:
// what remains between the first and last character is the same, apart from the gap that
// follows a label.
bool onlyLayoutDiffers(const QByteArray& original, const QByteArray& formatted) {
    const auto strip = [](const QByteArray& s) {
        qsizetype from = 0, to = s.size();
        while (from < to && s[from] == ' ')
            ++from;
        while (to > from && s[to - 1] == ' ')
            --to;
        return s.mid(from, to - from);
    };
    const QByteArray x = strip(original);
    const QByteArray y = strip(formatted);
    if (formatted.endsWith(' '))
        return false;
    if (x == y)
        return true;
    // A label, then the statement behind it with another gap.
    const qsizetype space = y.indexOf(' ');
    if (space <= 0)
        return false;
    const QByteArray label = y.left(space);
    return x.startsWith(label) && strip(x.mid(label.size())) == strip(y.mid(space));
}

// The lines of a file with their ends, so that the ends can be compared too.
QList<QByteArray> linesWithEnds(const QByteArray& bytes) {
    QList<QByteArray> out;
    qsizetype from = 0;
    while (from < bytes.size()) {
        const qsizetype lf = bytes.indexOf('\n', from);
        const qsizetype to = lf < 0 ? bytes.size() : lf + 1;
        out << bytes.mid(from, to - from);
        from = to;
    }
    return out;
}

QByteArray endOf(const QByteArray& line) {
    if (line.endsWith("\r\n"))
        return "\r\n";
    return line.endsWith('\n') ? "\n" : "";
}

} // namespace

class tst_TextFormatter : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

    QString file(const QString& name, const QByteArray& bytes) {
        const QString path = dir.filePath(name);
        FileTestSupport::WriteFile(path, bytes);
        return path;
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(dir.isValid());
        QVERIFY2(QFileInfo(tool()).isExecutable(), qPrintable(tool()));
    }

    // Bytes that aren't UTF-8, raw marks, every line end: only spaces change.
    void keepsEveryByte_data() {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("expected");
        const auto row = [](const char* name, const QByteArray& input, const QByteArray& expected) {
            QTest::newRow(name) << input << expected;
        };
        row("mixed line ends", QByteArray("FOR I=1 TO 2\r\nX=1  \nNEXT I\r\n"),
            QByteArray("FOR I=1 TO 2\r\n   X=1\nNEXT I\r\n"));
        row("no final line end", QByteArray("LOOP\nX=1"), QByteArray("LOOP\n   X=1"));
        row("empty", QByteArray(), QByteArray());
        row("raw value mark is a mark", QByteArray("IF X THEN\xFD\nY=1\nEND"),
            QByteArray("IF X THEN\xFD\n   Y=1\nEND"));
        row("raw subvalue mark is a mark", QByteArray("IF X THEN \xFC \nY=1\nEND"),
            QByteArray("IF X THEN \xFC\n   Y=1\nEND"));
        row("latin-1 comment", QByteArray("* caf\xE9  \n  X=1"), QByteArray("* caf\xE9\nX=1"));
        row("editor marks beside raw bytes", QByteArray("  X = '\x1D\xFD\x1C\xFC\xFB'   \n"),
            QByteArray("X = '\x1D\xFD\x1C\xFC\xFB'\n"));
        row("utf-8", QByteArray("  * \xC3\xA9t\xC3\xA9  \n"), QByteArray("* \xC3\xA9t\xC3\xA9\n"));
        row("overlong utf-8", QByteArray("X = '\xC0\xAF'  "), QByteArray("X = '\xC0\xAF'"));
        row("byte order mark", QByteArray("\xEF\xBB\xBFX=1  \n"), QByteArray("\xEF\xBB\xBFX=1\n"));
        row("bare CR stays inside its line", QByteArray(" X=1 \rY=2  \n"),
            QByteArray("X=1 \rY=2\n"));
        row("tab", QByteArray("LOOP\n\tX=1\nREPEAT"), QByteArray("LOOP\n   \tX=1\nREPEAT"));
    }
    void keepsEveryByte() {
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, expected);
        Moriox settings;
        settings.TabSize = 3;
        settings.Margin = 0;
        const TextFormatter formatter(settings);
        QCOMPARE(formatter.Format(input), expected);
        QCOMPARE(formatter.Format(expected), expected);
    }

    void keywordsComeFromTheSettings() {
        Moriox settings;
        settings.Margin = 0;
        settings.Keywords->SetKeywordList(4, QStringLiteral(" "),
                                          QStringLiteral("Open.It+ Shut.It-"));
        settings.Keywords->SetCaseSensitive(true);
        const QByteArray program("Open.It\nX=1\nShut.It\nopen.it\nY=1\n");
        QCOMPARE(TextFormatter(settings).Format(program),
                 QByteArray("Open.It\n   X=1\nShut.It\nopen.it\nY=1\n"));
        settings.Keywords->SetCaseSensitive(false);
        QCOMPARE(TextFormatter(settings).Format(program),
                 QByteArray("Open.It\n   X=1\nShut.It\nopen.it\n   Y=1\n"));
    }

    // Standard output, --check and -i agree; -i keeps the file's mode and rewrites the
    // file a link points at.
    void writesInPlaceAsItPrints() {
        const QByteArray program("LOOP\nX = 1   \nREPEAT\n");
        const QString path = file(QStringLiteral("PROG"), program);
        QVERIFY(::chmod(QFile::encodeName(path).constData(), 0640) == 0);
        const QString link = dir.filePath(QStringLiteral("LINK"));
        QVERIFY(QFile::link(path, link));

        const Result printed = runTool({QStringLiteral("--margin"), QStringLiteral("0"), path});
        QCOMPARE(printed.Code, 0);
        QCOMPARE(printed.Out, QByteArray("LOOP\n   X = 1\nREPEAT\n"));
        const Result check =
            runTool({QStringLiteral("--check"), QStringLiteral("--margin=0"), link});
        QCOMPARE(check.Code, 1);
        QVERIFY(check.Out.isEmpty());
        QVERIFY(QString::fromLocal8Bit(check.Err).contains(link));
        QCOMPARE(FileTestSupport::ReadFile(path), program);

        const Result inPlace = runTool({QStringLiteral("-i"), QStringLiteral("--margin=0"), link});
        QCOMPARE(inPlace.Code, 0);
        QVERIFY(inPlace.Out.isEmpty());
        QCOMPARE(FileTestSupport::ReadFile(path), printed.Out);
        QVERIFY(QFileInfo(link).isSymLink());
        struct stat st {};
        QVERIFY(::stat(QFile::encodeName(path).constData(), &st) == 0);
        QCOMPARE(st.st_mode & 0777, 0640u);
        QCOMPARE(runTool({QStringLiteral("--check"), QStringLiteral("--margin=0"), path}).Code, 0);

        const Result piped = runTool({QStringLiteral("--margin=0"), QStringLiteral("-")}, program);
        QCOMPARE(piped.Code, 0);
        QCOMPARE(piped.Out, printed.Out);
        const Result pipedCheck =
            runTool({QStringLiteral("--check"), QStringLiteral("-")}, printed.Out);
        QCOMPARE(pipedCheck.Code, 1);
        QVERIFY(pipedCheck.Err.contains("<stdin>"));
    }

    void refusesWhatItCantDo_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* name, const QStringList& arguments, const char* message) {
            QTest::newRow(name) << arguments << message;
        };
        row("tab size not a number", QStringList{"--tab-size", "x", "-"}, "--tab-size");
        row("indent star out of range", QStringList{"--indent-star=3", "-"}, "--indent-star");
        row("unknown option", QStringList{"--bogus", "-"}, "bogus");
        row("in place and check", QStringList{"-i", "--check", "-"}, "--check");
        row("standard input in place", QStringList{"-i", "-"}, "standard input");
        row("no file", QStringList{}, "No file");
        row("a folder", QStringList{"."}, "\".\"");
    }
    void refusesWhatItCantDo() {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const Result r = runTool(arguments, "X = 1\n");
        QCOMPARE(r.Code, 2);
        QVERIFY(r.Out.isEmpty());
        QVERIFY2(QString::fromLocal8Bit(r.Err).contains(message), r.Err.constData());
    }

    // A file that fails doesn't stop the others, and the exit status still says so.
    void goesOnPastAFailure() {
        const QString good = file(QStringLiteral("GOOD"), "LOOP\nX=1\nREPEAT\n");
        const QByteArray binary("X = 1  \n\0\x01\x02", 10);
        const QString odd = file(QStringLiteral("BINARY"), binary);
        const Result r = runTool({QStringLiteral("-i"), QStringLiteral("--margin=0"),
                                  dir.filePath(QStringLiteral("MISSING")), odd, good});
        QCOMPARE(r.Code, 2);
        QVERIFY(r.Err.contains("MISSING"));
        QVERIFY(r.Err.contains("BINARY"));
        QCOMPARE(FileTestSupport::ReadFile(good), QByteArray("LOOP\n   X=1\nREPEAT\n"));
        QCOMPARE(FileTestSupport::ReadFile(odd), binary);
    }

    // The user's settings are read, the options win over them, and nothing is written: not
    // even on a machine that has no settings yet.
    void readsButNeverWritesSettings() {
        const QString store = userSettingsFile();
        QFile::remove(store);
        const QByteArray program("LOOP\nX=1\nREPEAT\nOpen.It\nY=1\n");
        Result r = runTool({QStringLiteral("-")}, program);
        QCOMPARE(r.Code, 0);
        QCOMPARE(r.Out,
                 QByteArray("      LOOP\n         X=1\n      REPEAT\n      Open.It\n      Y=1\n"));
        QVERIFY(!QFileInfo::exists(store));

        FileTestSupport::WriteFile(store, "[Settings]\nDefault=7\nTabSize=2\nMargin=1\n"
                                          "UserKeywords=Open.It+\n");
        const QByteArray stored = FileTestSupport::ReadFile(store);
        r = runTool({QStringLiteral("-")}, program);
        QCOMPARE(r.Out, QByteArray(" LOOP\n   X=1\n REPEAT\n Open.It\n   Y=1\n"));
        r = runTool(
            {QStringLiteral("--tab-size=4"), QStringLiteral("--margin=0"), QStringLiteral("-")},
            program);
        QCOMPARE(r.Out, QByteArray("LOOP\n    X=1\nREPEAT\nOpen.It\n    Y=1\n"));
        QCOMPARE(FileTestSupport::ReadFile(store), stored);
        QFile::remove(store);
    }

    // Over every real program: the result formats to itself, nothing but layout changes,
    // line ends stay, and -i writes what the standard output shows.
    void corpusPrograms_data() {
        QTest::addColumn<QString>("folder");
        QTest::newRow("scarletdme") << "scarletdme";
        QTest::newRow("tcl-utilities") << "tcl-utilities";
    }
    void corpusPrograms() {
        QFETCH(QString, folder);
        const QStringList options{QStringLiteral("--tab-size=3"), QStringLiteral("--margin=0")};
        const QString source = TestEnv::Shared(QStringLiteral("corpus/") + folder);
        QTemporaryDir work;
        QStringList copies;
        QStringList formattedCopies;
        QDirIterator it(source, QDir::Files);
        QStringList programs;
        while (it.hasNext())
            programs << it.next();
        programs.sort();
        QVERIFY(programs.size() > 10);
        for (const QString& program : programs) {
            const QByteArray original = FileTestSupport::ReadFile(program);
            const Result printed = runTool(options + QStringList{program});
            QVERIFY2(printed.Code == 0, qPrintable(program));
            const QList<QByteArray> before = linesWithEnds(original);
            const QList<QByteArray> after = linesWithEnds(printed.Out);
            QCOMPARE(after.size(), before.size());
            for (qsizetype i = 0; i < before.size(); ++i) {
                QCOMPARE(endOf(after[i]), endOf(before[i]));
                const QByteArray x = before[i].chopped(endOf(before[i]).size());
                const QByteArray y = after[i].chopped(endOf(after[i]).size());
                QVERIFY2(onlyLayoutDiffers(x, y), qPrintable(QStringLiteral("%1:%2: %3")
                                                                 .arg(program)
                                                                 .arg(i + 1)
                                                                 .arg(QString::fromLatin1(y))));
            }
            const QString name = QFileInfo(program).fileName();
            copies << work.filePath(name);
            FileTestSupport::WriteFile(copies.last(), original);
            formattedCopies << work.filePath(name + QStringLiteral(".out"));
            FileTestSupport::WriteFile(formattedCopies.last(), printed.Out);
        }
        // Formatting again changes nothing; -i writes what was printed.
        const Result again =
            runTool(options + QStringList{QStringLiteral("--check")} + formattedCopies);
        QVERIFY2(again.Code == 0, again.Err.constData());
        QCOMPARE(runTool(options + QStringList{QStringLiteral("-i")} + copies).Code, 0);
        for (qsizetype i = 0; i < copies.size(); ++i)
            QVERIFY2(FileTestSupport::ReadFile(copies[i]) ==
                         FileTestSupport::ReadFile(formattedCopies[i]),
                     qPrintable(copies[i]));
    }
};

BRIX_TEST_MAIN(tst_TextFormatter)
#include "tst_TextFormatter.moc"
