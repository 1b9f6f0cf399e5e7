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
    // Scenarios of automation_client.py and each fact it printed; a second word names a file
    // under the bus's folder. Malformed calls get D-Bus errors and the editor goes on.
    void scenarios_data() {
        QTest::addColumn<QStringList>("scenario");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QByteArray>("fileAfter"); // of "my prog.bas"
        const QByteArray untouched("CRT 'hi'\nEND\n");
        QTest::newRow("round trip") << QStringList{"roundtrip", "my prog.bas"}
                                    << QStringList{"new True NewItem1",
                                                   "open True True False",
                                                   "text \"CRT 'hi'\\r\\nEND\\r\\n\"",
                                                   "local True my prog.bas",
                                                   "dirty True",
                                                   "save True False",
                                                   "heard dirty [True, False]",
                                                   "heard provider ['file']",
                                                   "close True",
                                                   "closed 1",
                                                   "after org.freedesktop.DBus.Error.UnknownObject",
                                                   "count 0"}
                                    << QByteArray("CRT 'changed'\nEND\n");
        QTest::newRow("items")
            << QStringList{"items"}
            << QStringList{"by position True",
                           "by number True",
                           "closed number com.tolvek.Brix70.Error.E5 | 5: Invalid "
                           "procedure call or argument",
                           "past end com.tolvek.Brix70.Error.E9 | 9: Subscript out of "
                           "range",
                           "boolean com.tolvek.Brix70.Error.E13 | 13: Type mismatch",
                           "enum True",
                           "app /Application /Documents",
                           "duplicate tool com.tolvek.Brix70.Error.E457 | 457: Key is "
                           "not unique in collection",
                           "close [True, True] 0"}
            << untouched;
        QTest::newRow("host context")
            << QStringList{"host_context"}
            << QStringList{"ServerName '*'",    "ServerName 'PROD'", "Provider 'mvdb'",
                           "Database 'SALES'",  "Folder ''",         "Folder ''",
                           "Visible False True"}
            << untouched;
        const QString unknownObject = QStringLiteral("org.freedesktop.DBus.Error.UnknownObject");
        QTest::newRow("malformed")
            << QStringList{"malformed"}
            << QStringList{"org.freedesktop.DBus.Error.InvalidArgs",
                           "org.freedesktop.DBus.Error.UnknownMethod",
                           "org.freedesktop.DBus.Error.UnknownMethod",
                           // Qt's own answer to a property value it can't convert.
                           "org.qtproject.QtDBus.Error.InternalError", unknownObject, unknownObject,
                           "com.tolvek.Brix70.Error.E32767 | 32767: Target label not found!",
                           unknownObject, unknownObject, "still up 0"}
            << untouched;
        const QString settings = QStringLiteral("home/.config/Tolvek/MultiValue Editor.conf");
        QTest::newRow("attach and detach")
            << QStringList{"lifetime", settings} << QStringList{"ended True"} << untouched;
        QTest::newRow("closed by hand") << QStringList{"quits", settings}
                                        << QStringList{"quit [True]", "ended True"} << untouched;
        QFile interfaces(QStringLiteral(BRIX_TESTS_DIR "/app/automation_interfaces.txt"));
        QVERIFY(interfaces.open(QIODevice::ReadOnly));
        QTest::newRow("introspection")
            << QStringList{"introspect"} << lines(interfaces.readAll()) << untouched;
    }
    void scenarios() {
        QFETCH(QStringList, scenario);
        QFETCH(QStringList, expected);
        QFETCH(QByteArray, fileAfter);
        AutomationBus bus;
        QVERIFY(bus.Up());
        const QString file = bus.Path(QStringLiteral("my prog.bas"));
        FileTestSupport::WriteFile(file, "CRT 'hi'\nEND\n");
        if (scenario.size() > 1)
            scenario[1] = bus.Path(scenario[1]);
        QByteArray out;
        QCOMPARE(bus.Client(scenario, &out), 0);
        QCOMPARE(lines(out), expected);
        QCOMPARE(FileTestSupport::ReadFile(file), fileAfter);
    }
};

BRIX_TEST_MAIN(tst_Automation)
#include "tst_Automation.moc"
