#include "AutomationBus.h"
#include "FileTestSupport.h"
#include "TestEnv.h"

// The editor as an automation server, driven from outside by python3-dbus and gdbus on a
// private bus that starts it by activation.
class tst_Automation : public QObject {
    Q_OBJECT

    static QStringList lines(const QByteArray& out) {
        return QString::fromUtf8(out).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

private Q_SLOTS:
    // Open, read, change, save and close a local file whose name holds a blank; the
    // client hears DocumentClose once and the closed document's path is gone.
    void roundTripOfALocalFile() {
        AutomationBus bus;
        QVERIFY(bus.Up());
        const QString file = bus.Path(QStringLiteral("my prog.bas"));
        FileTestSupport::WriteFile(file, "CRT 'hi'\nEND\n");
        QByteArray out;
        QCOMPARE(bus.Client({QStringLiteral("roundtrip"), file}, &out), 0);
        QCOMPARE(lines(out), (QStringList{
                                 QStringLiteral("new True NewItem1"),
                                 QStringLiteral("open True True False"),
                                 QStringLiteral("text \"CRT 'hi'\\r\\nEND\\r\\n\""),
                                 QStringLiteral("local True my prog.bas"),
                                 QStringLiteral("dirty True"),
                                 QStringLiteral("save True False"),
                                 QStringLiteral("heard dirty [True, False]"),
                                 QStringLiteral("heard provider ['file']"),
                                 QStringLiteral("close True"),
                                 QStringLiteral("closed 1"),
                                 QStringLiteral("after org.freedesktop.DBus.Error.UnknownObject"),
                                 QStringLiteral("count 0"),
                             }));
        QCOMPARE(FileTestSupport::ReadFile(file), QByteArray("CRT 'changed'\nEND\n"));
    }

    // Item by position against Item by DocumentNumber, and the errors of a bad index.
    void itemsByPositionAndByNumber() {
        AutomationBus bus;
        QVERIFY(bus.Up());
        QByteArray out;
        QCOMPARE(bus.Client({QStringLiteral("items")}, &out), 0);
        QCOMPARE(lines(out),
                 (QStringList{
                     QStringLiteral("by position True"),
                     QStringLiteral("by number True"),
                     QStringLiteral("closed number com.tolvek.Brix70.Error.E5 | 5: Invalid "
                                    "procedure call or argument"),
                     QStringLiteral("past end com.tolvek.Brix70.Error.E9 | 9: Subscript out of "
                                    "range"),
                     QStringLiteral("boolean com.tolvek.Brix70.Error.E13 | 13: Type mismatch"),
                     QStringLiteral("enum True"),
                     QStringLiteral("app /Application /Documents"),
                     QStringLiteral("duplicate tool com.tolvek.Brix70.Error.E457 | 457: Key is "
                                    "not unique in collection"),
                     QStringLiteral("close [True, True] 0"),
                 }));
    }

    // An empty write is ignored; Folder never changes by a write. Visible shows the window.
    void hostContextProperties() {
        AutomationBus bus;
        QVERIFY(bus.Up());
        QByteArray out;
        QCOMPARE(bus.Client({QStringLiteral("host_context")}, &out), 0);
        QCOMPARE(lines(out), (QStringList{
                                 QStringLiteral("ServerName '*'"),
                                 QStringLiteral("ServerName 'PROD'"),
                                 QStringLiteral("Provider 'mvdb'"),
                                 QStringLiteral("Database 'SALES'"),
                                 QStringLiteral("Folder ''"),
                                 QStringLiteral("Folder ''"),
                                 QStringLiteral("Visible False True"),
                             }));
    }

    // Wrong types, unknown and closed paths get D-Bus errors, and the editor goes on.
    void malformedCallsGetErrors() {
        AutomationBus bus;
        QVERIFY(bus.Up());
        QByteArray out;
        QCOMPARE(bus.Client({QStringLiteral("malformed")}, &out), 0);
        QCOMPARE(lines(out),
                 (QStringList{
                     QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"),
                     QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"),
                     QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"),
                     // Qt's own answer to a property value it can't convert.
                     QStringLiteral("org.qtproject.QtDBus.Error.InternalError"),
                     QStringLiteral("org.freedesktop.DBus.Error.UnknownObject"),
                     QStringLiteral("org.freedesktop.DBus.Error.UnknownObject"),
                     QStringLiteral("com.tolvek.Brix70.Error.E32767 | 32767: Target label not "
                                    "found!"),
                     QStringLiteral("org.freedesktop.DBus.Error.UnknownObject"),
                     QStringLiteral("org.freedesktop.DBus.Error.UnknownObject"),
                     QStringLiteral("still up 0"),
                 }));
    }

    // The last client letting go with no document open ends the editor; ending it by
    // hand tells the clients Quit once the settings are written.
    void lifetimeFollowsTheClients_data() {
        QTest::addColumn<QString>("scenario");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("attach and detach")
            << QStringLiteral("lifetime") << QStringList{QStringLiteral("ended True")};
        QTest::newRow("closed by hand")
            << QStringLiteral("quits")
            << QStringList{QStringLiteral("quit [True]"), QStringLiteral("ended True")};
    }
    void lifetimeFollowsTheClients() {
        QFETCH(QString, scenario);
        QFETCH(QStringList, expected);
        AutomationBus bus;
        QVERIFY(bus.Up());
        QByteArray out;
        QCOMPARE(bus.Client({scenario,
                             bus.Home() + QStringLiteral("/.config/Tolvek/MultiValue Editor.conf")},
                            &out),
                 0);
        QCOMPARE(lines(out), expected);
    }

    // gdbus alone: activation, a document made new and read back, then closed.
    void gdbusDrivesTheEditor() {
        AutomationBus bus;
        QVERIFY(bus.Up());
        QByteArray out;
        QCOMPARE(bus.Gdbus(QStringLiteral("/Documents"),
                           QStringLiteral("com.tolvek.Brix70.mvDocuments.AddNew"), {}, &out),
                 0);
        const QString path = QString::fromUtf8(out).section(QLatin1Char('\''), 1, 1);
        QVERIFY2(path.startsWith(QLatin1String("/Documents/")), out.constData());
        QCOMPARE(bus.Gdbus(path, QStringLiteral("org.freedesktop.DBus.Properties.Set"),
                           {QStringLiteral("com.tolvek.Brix70.mvDocument"),
                            QStringLiteral("SelText"), QStringLiteral("<'END'>")},
                           &out),
                 0);
        QCOMPARE(bus.Gdbus(path, QStringLiteral("org.freedesktop.DBus.Properties.Get"),
                           {QStringLiteral("com.tolvek.Brix70.mvDocument"), QStringLiteral("Text")},
                           &out),
                 0);
        QCOMPARE(out.trimmed(), QByteArray("(<'END'>,)"));
        QCOMPARE(bus.Gdbus(path, QStringLiteral("com.tolvek.Brix70.mvDocument.FileClose"),
                           {QStringLiteral("false")}, &out),
                 0);
        QCOMPARE(out.trimmed(), QByteArray("(true,)"));
    }

    // A user start: the arguments of the process, names with blanks among them, become
    // the command line; relative names are taken from the current folder, and an absolute
    // path is a file name, not a switch.
    void commandLineOfAUserStart() {
        AutomationBus bus;
        QVERIFY(bus.Up());
        QDir().mkpath(bus.Path(QStringLiteral("work/sub dir")));
        FileTestSupport::WriteFile(bus.Path(QStringLiteral("work/sub dir/my prog.bas")), "END\n");
        FileTestSupport::WriteFile(bus.Path(QStringLiteral("work/b.bas")), "END\n");
        QProcess editor;
        editor.setProcessEnvironment(bus.EditorEnvironment());
        editor.setWorkingDirectory(bus.Path(QStringLiteral("work")));
        editor.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        editor.start(qEnvironmentVariable("BRIX_BUILD_DIR") + QStringLiteral("/brix"),
                     {QStringLiteral("sub dir/my prog.bas"), QStringLiteral("/L"),
                      bus.Path(QStringLiteral("work/b.bas"))});
        QVERIFY(editor.waitForStarted(10000));
        QByteArray out;
        QCOMPARE(bus.Client({QStringLiteral("opened")}, &out), 0);
        QCOMPARE(lines(out),
                 (QStringList{QStringLiteral("my prog.bas False"), QStringLiteral("b.bas True")}));
        editor.terminate();
        QVERIFY(editor.waitForFinished(30000));
    }

    // What a client sees of the interfaces: members in order, argument types and ids.
    void introspectionMatchesTheObjectModel() {
        AutomationBus bus;
        QVERIFY(bus.Up());
        QByteArray out;
        QCOMPARE(bus.Client({QStringLiteral("introspect")}, &out), 0);
        QFile expected(QStringLiteral(BRIX_TESTS_DIR "/app/automation_interfaces.txt"));
        QVERIFY(expected.open(QIODevice::ReadOnly));
        QCOMPARE(lines(out), lines(expected.readAll()));
    }
};

BRIX_TEST_MAIN(tst_Automation)
#include "tst_Automation.moc"
