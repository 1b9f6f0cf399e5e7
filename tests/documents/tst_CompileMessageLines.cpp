#include "TestEnv.h"

#include "documents/CompileMessageLines.h"

// The program lines that compilers' outputs name, and what is said about each.
class tst_CompileMessageLines : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parse_data() {
        QTest::addColumn<QString>("output");
        QTest::addColumn<QList<int>>("lines");
        QTest::addColumn<QStringList>("messages");
        QTest::newRow("QM, with the lines around it")
            << "Compiling BP X\r\n7: LOOP is never closed\r\n   12: Bad  \r\n2 error(s)"
            << QList<int>{7, 12} << QStringList{"LOOP is never closed", "Bad"};
        QTest::newRow("an include names the line of its include statement")
            << "5.12: Unexpected token\r\n5.3.9: Deeper" << QList<int>{5, 5}
            << QStringList{"In the record included here, line 12: Unexpected token",
                           "In the record included here, line 3.9: Deeper"};
        QTest::newRow("Line N, anywhere and in any case")
            << "Line 12 syntax error\r\n[B100] in line 3 of BP X" << QList<int>{12, 3}
            << QStringList{"Line 12 syntax error", "[B100] in line 3 of BP X"};
        QTest::newRow("zero-padded, the complaint below the caret")
            << "0003    X = = 1\r\n          ^\r\n\"=\" unexpected\r\n000012 Missing END"
            << QList<int>{3, 12} << QStringList{"X = = 1\n\"=\" unexpected", "Missing END"};
        QTest::newRow("lines that name nothing")
            << "Compiled 1 program(s) with no errors\r\n12:30:01 started\r\n0 errors\r\n"
               "Line of code\r\n0: nothing\r\n1 Errors detected\r\n0012345x"
            << QList<int>{} << QStringList{};
    }
    void parse() {
        QFETCH(QString, output);
        QFETCH(QList<int>, lines);
        QFETCH(QStringList, messages);
        QList<int> gotLines;
        QStringList gotMessages;
        for (const auto& entry : CompileMessageLines::Parse(output)) {
            gotLines << entry.Line;
            gotMessages << entry.Message;
        }
        QCOMPARE(gotLines, lines);
        QCOMPARE(gotMessages, messages);
    }
};

BRIX_TEST_MAIN(tst_CompileMessageLines)
#include "tst_CompileMessageLines.moc"
