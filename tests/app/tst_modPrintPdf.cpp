#include "FileTestSupport.h"
#include "TestEnv.h"

#include <QFileInfo>
#include <QProcess>

// `brix --print-pdf OUT FILE` run as a user would run it: the exit status, the message on
// a bad file, and the pages written.
class tst_modPrintPdf : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

    static QString brix() {
        return qEnvironmentVariable("BRIX_BUILD_DIR") + QStringLiteral("/brix");
    }

private Q_SLOTS:
    void statusAndMessage_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message");
        QTest::newRow("prints") << QStringList{"OUT", "prog.bp"} << 0 << QString();
        QTest::newRow("missing file")
            << QStringList{"OUT", "none.bp"} << 2 << "none.bp: no such file";
        QTest::newRow("output can't be written")
            << QStringList{"no/such/folder/x.pdf", "prog.bp"} << 2 << "could not be written";
        QTest::newRow("no file named") << QStringList{"OUT"} << 2 << "usage: brix --print-pdf";
    }
    void statusAndMessage() {
        QFETCH(QStringList, args);
        QFETCH(int, status);
        QFETCH(QString, message);
        FileTestSupport::WriteFile(dir.filePath("prog.bp"), "PRINT 1\nEND\n");
        const QString pdf = dir.filePath("out.pdf");
        QFile::remove(pdf);
        args.replaceInStrings(QStringLiteral("OUT"), pdf);
        QProcess p;
        p.setWorkingDirectory(dir.path());
        p.start(brix(), QStringList{QStringLiteral("--print-pdf")} + args);
        QVERIFY(p.waitForFinished(120000));
        const QString errors = QString::fromUtf8(p.readAllStandardError());
        QCOMPARE(p.exitStatus(), QProcess::NormalExit);
        QVERIFY2(p.exitCode() == status, qPrintable(errors));
        QVERIFY2(errors.contains(message), qPrintable(errors));
        // What the pages hold is the document printer's test; here only that they exist.
        QCOMPARE(QFileInfo(pdf).size() > 0, status == 0);
    }
};

BRIX_TEST_MAIN(tst_modPrintPdf)
#include "tst_modPrintPdf.moc"
