#include "FileTestSupport.h"
#include "RunTool.h"
#include "TestEnv.h"

#include "editing/StructureCheck.h"
#include "language/clsKeywords.h"

#include <QDirIterator>

namespace {

QByteArray findingsOf(const StructureCheck& check, const QByteArray& program) {
    QByteArray out;
    for (const auto& finding : check.Check(program))
        out += StructureCheck::Format(finding).toUtf8() + '\n';
    return out;
}

using Result = ToolResult;

Result runTool(const QStringList& arguments, const QByteArray& input = QByteArray()) {
    return RunTool(QStringLiteral("brix-check"), arguments, input);
}

} // namespace

class tst_StructureCheck : public QObject {
    Q_OBJECT

private slots:
    void findings_data() {
        QTest::addColumn<QByteArray>("program");
        QTest::addColumn<QByteArray>("expected");
        const auto row = [](const char* name, const char* program, const char* expected) {
            QTest::newRow(name) << QByteArray(program) << QByteArray(expected);
        };
        row("clean blocks",
            "IF X THEN\n   Y=1\nEND ELSE\n   Y=2\nEND\nFOR I=1 TO 3 ; NEXT I\n"
            "LOOP WHILE X DO REPEAT\nBEGIN CASE\nCASE 1\n   Y=1\nEND CASE\nEND\n",
            "");
        row("for open", "FOR I = 1 TO 3\nX = I\n", "1: FOR I is never closed by NEXT\n");
        row("next alone", "X=1\nNEXT I\n", "2: NEXT I without FOR\n");
        row("next of another", "FOR I = 1 TO 2\nNEXT J\n",
            "2: NEXT J doesn't match FOR I of line 1\n");
        row("case outside", "CASE X\n", "1: CASE outside BEGIN CASE\n");
        row("then open", "IF X THEN\nY=1\n", "1: THEN is never closed by END\n");
        row("labels",
            "GOSUB 100\nON X GOSUB A, B\ngo to done\nSTOP\n100 RETURN\nA: RETURN\nDONE:\n",
            "2: Label B is not defined\n");
        row("label twice", "10 X=1\n10 Y=2\n", "2: Label 10 is already defined on line 1\n");
        row("conditional branches",
            "$IFDEF X\nIF A THEN\n$ELSE\nIF B THEN\nGOSUB 9\n9 X=1\n$ENDIF\n"
            "END\nGOSUB 9\n",
            "");
        // An END left of its block's line belongs to an outer block.
        row("inner end lost", "IF A THEN\n   IF B THEN\n      X=1\nEND\n",
            "2: THEN is never closed by END\n");
        // A statement outside an indented block, then the program's END in line with it.
        row("top end lost",
            "   IF A THEN\n      X = 1\n   Y = 2\n   IF B THEN\n      Z = 1\n"
            "   END\n   END\n",
            "1: THEN is never closed by END\n");
    }
    void findings() {
        QFETCH(QByteArray, program);
        QFETCH(QByteArray, expected);
        const StructureCheck check(std::make_shared<clsKeywords>());
        QCOMPARE(findingsOf(check, program), expected);
        // Line ends don't matter.
        QCOMPARE(findingsOf(check, QByteArray(program).replace("\n", "\r\n")), expected);
    }

    // The user's lists decide what opens and closes, and the case rule what is a keyword.
    void userKeywords() {
        auto table = std::make_shared<clsKeywords>();
        table->SetKeywordList(clsKeyword::TypeUser, QStringLiteral(" "),
                              QStringLiteral("DEFINE+ ENDDEF- WITH]"));
        const StructureCheck check(table);
        QCOMPARE(findingsOf(check, "DEFINE X\nENDDEF\n"), QByteArray());
        QCOMPARE(findingsOf(check, "ENDDEF\n"), QByteArray("1: ENDDEF with nothing open\n"));
        QCOMPARE(findingsOf(check, "X WITH\n"),
                 QByteArray("1: WITH is never closed by its closing word\n"));
        table->SetCaseSensitive(true);
        QCOMPARE(findingsOf(check, "for i = 1 to 2\nX WITH\nENDDEF\n"), QByteArray());
    }

    // Programs that compile on their hosts get no findings: no false alarms on real code.
    void corpusIsClean() {
        const StructureCheck check(std::make_shared<clsKeywords>());
        int programs = 0;
        QByteArray reports;
        QDirIterator it(TestEnv::Shared(QStringLiteral("corpus")), QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            if (path.endsWith(QLatin1String(".md")))
                continue;
            ++programs;
            const QByteArray found = findingsOf(check, FileTestSupport::ReadFile(path));
            if (!found.isEmpty())
                reports += path.toUtf8() + '\n' + found;
        }
        QVERIFY(programs > 150);
        QVERIFY2(reports.isEmpty(), reports.constData());
    }

    void tool() {
        const QString dir = TestEnv::Home();
        const QString bad = dir + QStringLiteral("/BAD");
        const QString good = dir + QStringLiteral("/GOOD");
        FileTestSupport::WriteFile(bad, "GOSUB NOWHERE\nLOOP\n");
        FileTestSupport::WriteFile(good, "X = 1\n");
        Result r = runTool({good, bad});
        QCOMPARE(r.Code, 1);
        QCOMPARE(r.Out, (bad + ": 1: Label NOWHERE is not defined\n" + bad +
                         ": 2: LOOP is never closed by REPEAT\n")
                            .toUtf8());
        QCOMPARE(runTool({QStringLiteral("--bogus"), good}).Code, 2);
        QCOMPARE(runTool({QStringLiteral("-")}, QByteArray("X\0Y", 3)).Code, 2);

        // The user's keyword lists are read as brix-format reads them.
        const QString store = qEnvironmentVariable("XDG_CONFIG_HOME") +
                              QStringLiteral("/Tolvek/MultiValue Editor.conf");
        FileTestSupport::WriteFile(store, "[Settings]\nDefault=7\nUserKeywords=Open.It+\n");
        QCOMPARE(runTool({QStringLiteral("-")}, "Open.It\n").Out,
                 QByteArray("1: Open.It is never closed by its closing word\n"));
        QFile::remove(store);
    }
};

BRIX_TEST_MAIN(tst_StructureCheck)
#include "tst_StructureCheck.moc"
