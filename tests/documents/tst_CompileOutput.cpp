#include "TestEnv.h"

#include "documents/CompileOutput.h"

// The compile command as the host reads it, and the compiler's output as the results
// window gets it.
class tst_CompileOutput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void command_data() {
        QTest::addColumn<QString>("compiler");
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("command");
        QTest::newRow("default keeps the last blank") << "BASIC"
                                                      << ""
                                                      << "BASIC BP MAIN ";
        QTest::newRow("options") << "BASIC"
                                 << "-X"
                                 << "BASIC BP MAIN -X";
        QTest::newRow("no quoting") << "COMPILE"
                                    << "\"A B\""
                                    << "COMPILE BP MAIN \"A B\"";
    }
    void command() {
        QFETCH(QString, compiler);
        QFETCH(QString, options);
        QFETCH(QString, command);
        QCOMPARE(
            CompileOutput::Command(compiler, QStringLiteral("BP"), QStringLiteral("MAIN"), options),
            command);
    }

    void clean_data() {
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("text");
        QTest::newRow("blank lines go") << "\r\nCompiling\r\n   \r\n\r\n0 errors\r\n"
                                        << "Compiling\r\n0 errors";
        QTest::newRow("punctuation rules go, after each other")
            << "***\r\n---\r\n  ==  \r\n::x\r\n@@\r\n//\r\nok"
            << "ok";
        QTest::newRow("letters, digits and codes from 65 stay")
            << "__\r\n~~\r\nAA\r\n00\r\n[[\r\n*-*\r\n*"
            << "__\r\n~~\r\nAA\r\n00\r\n[[\r\n*-*\r\n*";
        QTest::newRow("kept lines keep their blanks") << "  12: bad  \r\n"
                                                      << "  12: bad  ";
        QTest::newRow("nothing left is one line break") << "\r\n====\r\n \r\n"
                                                        << "\r\n";
        QTest::newRow("empty") << ""
                               << "\r\n";
    }
    void clean() {
        QFETCH(QString, output);
        QFETCH(QString, text);
        QCOMPARE(CompileOutput::Clean(output), text);
    }
};

BRIX_TEST_MAIN(tst_CompileOutput)
#include "tst_CompileOutput.moc"
