#include "TestEnv.h"

#include "documents/CompileOutput.h"

// The compile command as the host reads it, and the compiler's output as the results
// window gets it.
class tst_CompileOutput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void clean_data() {
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("text");
        QTest::newRow("blank lines go, kept lines keep their blanks")
            << "\r\nCompiling\r\n   \r\n\r\n  12: bad  \r\n"
            << "Compiling\r\n  12: bad  ";
        QTest::newRow("punctuation rules go, after each other")
            << "***\r\n---\r\n  ==  \r\n::x\r\n@@\r\n//\r\nok"
            << "ok";
        QTest::newRow("letters, digits and codes from 65 stay")
            << "__\r\n~~\r\nAA\r\n00\r\n[[\r\n*-*\r\n*"
            << "__\r\n~~\r\nAA\r\n00\r\n[[\r\n*-*\r\n*";
        QTest::newRow("nothing left is one line break") << "\r\n====\r\n \r\n"
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
