#include "DocumentSession.h"
#include "FileTestSupport.h"
#include "TestEnv.h"

#include "app/CommandLine.h"
#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "shell/frmMain.h"
#include "support/MsgBoxEx.h"

// The walk over the command line on a real account and real local files with blanks in
// their names; and the arguments of a Linux start turned back into that line.
class tst_CommandLine : public QObject {
    Q_OBJECT
    DocumentSession session;

    // "ITEM", with " ro" for read only, per open document in order.
    static QStringList opened() {
        QStringList out;
        for (const auto& document : ProcessState::Instance().Documents->Snapshot())
            out << document->ItemID() + (document->ReadOnly() ? QStringLiteral(" ro") : QString());
        return out;
    }

    static QString hostContext() {
        const HostContext& host = ProcessState::Instance().Host;
        return QStringList{host.Provider, host.ServerName, host.Database, host.Folder}.join(
            QLatin1Char('|'));
    }

public:
    tst_CommandLine() { HostAccountFixture::RunChildIfAsked(); }

private Q_SLOTS:
    void initTestCase() { session.StartCase(); }
    void cleanupTestCase() { session.EndCase(); }
    void init() { session.StartTest(); }
    void cleanup() { session.EndTest(true); }

    void joinArguments_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("line");
        QTest::newRow("name with a blank")
            << QStringList{"my dir/my file.bas"} << "\"my dir/my file.bas\"";
        // Taken from "/": an absolute path is no switch.
        QTest::newRow("absolute paths") << QStringList{"/tmp/a.bas", "/tmp/my file.bas", "/Q"}
                                        << "tmp/a.bas \"tmp/my file.bas\" /Q";
        QTest::newRow("switch value with a blank")
            << QStringList{"/F=MY FILE", "/I=X"} << "/F=\"MY FILE\" /I=X";
    }
    void joinArguments() {
        QFETCH(QStringList, arguments);
        QFETCH(QString, line);
        const QString before = QDir::currentPath();
        QDir::setCurrent(QStringLiteral("/"));
        const QString joined = CommandLine::JoinArguments(arguments);
        QDir::setCurrent(before);
        QCOMPARE(joined, line);
    }

    // Each line is walked from the local folder, where a.txt and b.txt lie.
    void walk_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QList<int32_t>>("answers");
        QTest::addColumn<QStringList>("documents");
        QTest::addColumn<QString>("host");

        // Every local file opened moves the host context to its folder.
        const QString local = QStringLiteral("file|||LOCAL");
        const QList<int32_t> none;
        QTest::newRow("quoted name with blanks")
            << "\"with blank/c d.txt\" b.txt" << none << QStringList{"c d.txt", "b.txt"} << local;
        QTest::newRow("/L protects what follows")
            << "a.txt /L b.txt" << none << QStringList{"a.txt", "b.txt ro"} << local;
        QTest::newRow("/LX and other switches are ignored")
            << "/LX /Q=1 /l a.txt" << none << QStringList{"a.txt ro"} << local;
        QTest::newRow("host alone connects for its account")
            << "/h=test" << none << QStringList() << "mvdb|test|DEMO|";
        QTest::newRow("switches apply left to right")
            << "/A=DEMO /F=BP /I=HELLO /f=LIB /I=OTHER" << none << QStringList{"HELLO", "OTHER"}
            << "mvdb|*|DEMO|LIB";
        QTest::newRow("failed open is closed, the walk goes on")
            << "missing.txt b.txt" << QList<int32_t>{MsgBox::No} << QStringList{"b.txt"} << local;
        // A quoted item keeps its opening quote and swallows the fields after it.
        QTest::newRow("quoted item swallows the next field")
            << "/A=DEMO /F=BP /I=\"HELLO\" b.txt" << QList<int32_t>{MsgBox::No} << QStringList()
            << "mvdb|*|DEMO|BP";
    }
    void walk() {
        QFETCH(QString, line);
        QFETCH(QList<int32_t>, answers);
        QFETCH(QStringList, documents);
        QFETCH(QString, host);
        HostAccountFixture& account = *session.Account;
        const QString local = account.LocalFolder();
        FileTestSupport::WriteFile(local + QStringLiteral("/a.txt"), "A\n");
        FileTestSupport::WriteFile(local + QStringLiteral("/b.txt"), "B\n");
        FileTestSupport::WriteFile(local + QStringLiteral("/with blank/c d.txt"), "CD\n");
        const QString before = QDir::currentPath();
        QDir::setCurrent(local);
        session.Answers->Push(answers);

        CommandLine::Process(line);

        QDir::setCurrent(before);
        QCOMPARE(opened(), documents);
        QCOMPARE(hostContext(), QString(host).replace(QLatin1String("LOCAL"), local));
        QCOMPARE(session.Answers->Left(), 0);
        if (!documents.isEmpty())
            QCOMPARE(session.Frame->ActiveDocument(), ProcessState::Instance().Documents->At(0));
    }
};

BRIX_TEST_MAIN(tst_CommandLine)
#include "tst_CommandLine.moc"
