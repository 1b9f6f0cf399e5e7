#include "FileTestSupport.h"
#include "RunTool.h"
#include "TestEnv.h"

#include "editing/TextFormatter.h"
#include "settings/Moriox.h"

#include <QDirIterator>
#include <sys/stat.h>

namespace {

using Result = ToolResult;

Result runTool(const QStringList& arguments, const QByteArray& input = QByteArray()) {
    return RunTool(QStringLiteral("brix-format"), arguments, input);
}

// Only spaces changed: the characters in between are the same.
bool onlyLayoutDiffers(QByteArray original, QByteArray formatted) {
    return !formatted.endsWith(' ') && original.replace(' ', "") == formatted.replace(' ', "");
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
        QVERIFY(QFileInfo(ToolPath(QStringLiteral("brix-format"))).isExecutable());
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
        row("raw value mark is a mark", QByteArray("IF X THEN\xFD\nY=1\nEND"),
            QByteArray("IF X THEN\xFD\n   Y=1\nEND"));
        row("latin-1 comment", QByteArray("* caf\xE9  \n  X=1"), QByteArray("* caf\xE9\nX=1"));
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

    // Standard output, --check and -i agree; -i keeps the mode and writes through a link.
    void writesInPlaceAsItPrints() {
        const QByteArray program("LOOP\nX = 1   \nREPEAT\n");
        const QString path = file(QStringLiteral("PROG"), program);
        QVERIFY(::chmod(QFile::encodeName(path).constData(), 0640) == 0);
        const QString link = dir.filePath(QStringLiteral("LINK"));
        QVERIFY(QFile::link(path, link));

        const Result printed = runTool({QStringLiteral("--margin"), QStringLiteral("0"), path});
        QCOMPARE(printed.Out, QByteArray("LOOP\n   X = 1\nREPEAT\n"));
        const Result check =
            runTool({QStringLiteral("--check"), QStringLiteral("--margin=0"), link});
        QCOMPARE(check.Code, 1);
        QCOMPARE(FileTestSupport::ReadFile(path), program);

        QCOMPARE(runTool({QStringLiteral("-i"), QStringLiteral("--margin=0"), link}).Code, 0);
        QCOMPARE(FileTestSupport::ReadFile(path), printed.Out);
        QVERIFY(QFileInfo(link).isSymLink());
        struct stat st {};
        QVERIFY(::stat(QFile::encodeName(path).constData(), &st) == 0);
        QCOMPARE(st.st_mode & 0777, 0640u);
    }

    void refusesWhatItCantDo_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* name, const QStringList& arguments, const char* message) {
            QTest::newRow(name) << arguments << message;
        };
        row("tab size not a number", QStringList{"--tab-size", "x", "-"}, "--tab-size");
        row("unknown option", QStringList{"--bogus", "-"}, "bogus");
        row("standard input in place", QStringList{"-i", "-"}, "standard input");
        row("no file", QStringList{}, "No file");
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
        const QString store = qEnvironmentVariable("XDG_CONFIG_HOME") +
                              QStringLiteral("/Tolvek/MultiValue Editor.conf");
        QFile::remove(store);
        const QByteArray program("LOOP\nX=1\nREPEAT\nOpen.It\nY=1\n");
        QCOMPARE(runTool({QStringLiteral("-")}, program).Out,
                 QByteArray("      LOOP\n         X=1\n      REPEAT\n      Open.It\n      Y=1\n"));
        QVERIFY(!QFileInfo::exists(store));

        FileTestSupport::WriteFile(store, "[Settings]\nDefault=7\nTabSize=2\nMargin=1\n"
                                          "UserKeywords=Open.It+\n");
        const QByteArray stored = FileTestSupport::ReadFile(store);
        QCOMPARE(runTool({QStringLiteral("-")}, program).Out,
                 QByteArray(" LOOP\n   X=1\n REPEAT\n Open.It\n   Y=1\n"));
        QCOMPARE(runTool({QStringLiteral("--tab-size=4"), QStringLiteral("--margin=0"),
                          QStringLiteral("-")},
                         program)
                     .Out,
                 QByteArray("LOOP\n    X=1\nREPEAT\nOpen.It\n    Y=1\n"));
        QCOMPARE(FileTestSupport::ReadFile(store), stored);
        QFile::remove(store);
    }

    // Over every real program: nothing but layout changes, line ends stay, and the result
    // formats to itself.
    void corpusPrograms() {
        QDirIterator it(TestEnv::Shared(QStringLiteral("corpus")), QDir::Files,
                        QDirIterator::Subdirectories);
        Moriox settings;
        settings.TabSize = 3;
        settings.Margin = 0;
        const TextFormatter formatter(settings);
        int programs = 0;
        while (it.hasNext()) {
            const QString program = it.next();
            if (program.endsWith(QLatin1String(".md")))
                continue;
            ++programs;
            const QByteArray source = FileTestSupport::ReadFile(program);
            const QByteArray printed = formatter.Format(source);
            const QList<QByteArray> before = source.split('\n');
            const QList<QByteArray> after = printed.split('\n');
            QCOMPARE(after.size(), before.size());
            for (qsizetype i = 0; i < before.size(); ++i) {
                const qsizetype cr = before[i].endsWith('\r') ? 1 : 0;
                QCOMPARE(after[i].endsWith('\r'), cr == 1);
                QVERIFY2(onlyLayoutDiffers(before[i].chopped(cr), after[i].chopped(cr)),
                         qPrintable(QStringLiteral("%1:%2").arg(program).arg(i + 1)));
            }
            QVERIFY2(formatter.Format(printed) == printed, qPrintable(program));
        }
        QVERIFY(programs > 150);
    }
};

BRIX_TEST_MAIN(tst_TextFormatter)
#include "tst_TextFormatter.moc"
