#include "FileTestSupport.h"
#include "SettingsSandbox.h"
#include "TestEnv.h"

#include "settings/IniProfile.h"
#include "settings/SettingsStore.h"

#include <QDir>
#include <QSettings>

namespace {

using FileTestSupport::ReadFile;
using FileTestSupport::WriteFile;

const QString Section = QStringLiteral("Software\\Tolvek\\MultiValue Editor\\Settings\\");

QString read(const QString& key, const QString& defaultValue = QStringLiteral("<default>")) {
    return SettingsStore::ReadSetting(Section, key, defaultValue);
}

void write(const QString& key, const QString& value) {
    SettingsStore::WriteSetting(Section, key, value);
}

} // namespace

class tst_SettingsStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void selectionFilePicksTheMode_data() {
        QTest::addColumn<QByteArray>("selection"); // "<none>": no file at all
        QTest::addColumn<int>("mode");
        QTest::newRow("no file") << QByteArray("<none>") << 1;
        QTest::newRow("state file") << QByteArray("[Isolation]\nPersistSettings=2\n") << 2;
        QTest::newRow("nowhere") << QByteArray("[Isolation]\nPersistSettings=0\n") << 0;
    }

    void selectionFilePicksTheMode() {
        QFETCH(QByteArray, selection);
        QFETCH(int, mode);
        SettingsSandbox sandbox(-1);
        if (selection != "<none>")
            WriteFile(sandbox.ExecutableFolder() + QStringLiteral("/norvane70.ini"), selection);
        QCOMPARE(SettingsStore::PersistSettings(), mode);
    }

    void userStoreMode() {
        SettingsSandbox sandbox(-1);
        write(QString(), QStringLiteral("7"));
        QCOMPARE(SettingsSandbox::ReadUserStore(QStringLiteral("Default")), QStringLiteral("7"));
        QVERIFY(!QFileInfo::exists(SettingsStore::StateFile()));

        // An empty value stays stored, and reads as the default.
        write(QStringLiteral("FontSize"), QString());
        QVERIFY(QSettings(SettingsSandbox::UserStoreFile(), QSettings::IniFormat)
                    .contains(QStringLiteral("Settings/FontSize")));
        QCOMPARE(read(QStringLiteral("FontSize")), QStringLiteral("<default>"));

        // A non-empty default keeps values equal to it out of the store.
        SettingsStore::WriteSetting(Section, QStringLiteral("A"), QStringLiteral("x"),
                                    QStringLiteral("x"));
        QCOMPARE(SettingsSandbox::ReadUserStore(QStringLiteral("A")), QString());
        SettingsStore::WriteSetting(Section, QStringLiteral("A"), QStringLiteral("y"),
                                    QStringLiteral("x"));
        QCOMPARE(read(QStringLiteral("A")), QStringLiteral("y"));

        // Values too long for the reader read as missing.
        write(QStringLiteral("Long"), QString(4096, QLatin1Char('x')));
        QCOMPARE(read(QStringLiteral("Long")), QStringLiteral("<default>"));
        write(QStringLiteral("Long"), QString(4095, QLatin1Char('x')));
        QCOMPARE(read(QStringLiteral("Long")).size(), 4095);
    }

    void stateFileMode() {
        qputenv("BRIX_TEST_DATA", QDir::toNativeSeparators(TestEnv::Home()).toUtf8());
        const QString folder = TestEnv::Home() + QStringLiteral("/first/second");
        QDir(folder).removeRecursively();
        SettingsSandbox sandbox(2, QStringLiteral("%BRIX_TEST_DATA%\\first\\second"));
        QCOMPARE(SettingsStore::AppDataDirectory(), folder + QLatin1Char('/'));

        write(QString(), QStringLiteral("7"));
        const QByteArray bytes = ReadFile(folder + QStringLiteral("/appstate.ini"));
        QVERIFY(bytes.startsWith("\xFF\xFE"));
        QCOMPARE(IniProfile::FromBytes(bytes).Value(QStringLiteral("MultiValueEditor_Settings_"),
                                                    QStringLiteral("@")),
                 QStringLiteral("7"));
        QCOMPARE(read(QString()), QStringLiteral("7"));
        QVERIFY(!QFileInfo::exists(SettingsSandbox::UserStoreFile()));
    }

    void stateFileValues_data() {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("line"); // as it stands in the file; empty: no line
        QTest::addColumn<QString>("readBack");
        const auto row = [](const char* name, const char* value, const char* line,
                            const char* readBack) {
            QTest::newRow(name) << value << line << readBack;
        };
        row("blanks at the ends", "  padded ", "K=\"  padded \"", "  padded ");
        row("quoted", "\"q\"", "K=\"\"q\"\"", "\"q\"");
        row("empty deletes", "", "", "<default>");
    }

    void stateFileValues() {
        QFETCH(QString, value);
        QFETCH(QString, line);
        QFETCH(QString, readBack);
        SettingsSandbox sandbox(2);
        write(QStringLiteral("K"), QStringLiteral("old"));
        write(QStringLiteral("K"), value);
        const QStringList lines = sandbox.StateFileText().split(QLatin1Char('\n'));
        if (line.isEmpty())
            QVERIFY(!sandbox.StateFileText().contains(QLatin1String("K=")));
        else
            QVERIFY2(lines.contains(line), qPrintable(sandbox.StateFileText()));
        QCOMPARE(read(QStringLiteral("K")), readBack);
    }

    // Held writes are seen by reads and reach the file when the outermost batch ends.
    void batchWritesOnce_data() {
        QTest::addColumn<int>("mode");
        QTest::newRow("per-user store") << 1;
        QTest::newRow("state file") << 2;
    }

    void batchWritesOnce() {
        QFETCH(int, mode);
        SettingsSandbox sandbox(mode);
        const QString file = mode == 1 ? SettingsSandbox::UserStoreFile() : sandbox.StateFile();
        write(QStringLiteral("A"), QStringLiteral("1"));
        const QByteArray before = ReadFile(file);
        {
            const SettingsStore::Batch outer;
            {
                const SettingsStore::Batch inner;
                write(QStringLiteral("A"), QStringLiteral("2"));
                write(QStringLiteral("B"), QStringLiteral(" b "));
            }
            write(QStringLiteral("A"), QString());
            QCOMPARE(read(QStringLiteral("B")), QStringLiteral(" b "));
            QCOMPARE(ReadFile(file), before);
        }
        QCOMPARE(read(QStringLiteral("B")), QStringLiteral(" b "));
        if (mode == 2)
            QVERIFY(sandbox.StateFileText().contains(QLatin1String("B=\" b \"")));
    }

    void unreadableStateFile() {
        SettingsSandbox sandbox(2);
        QVERIFY(QDir().mkpath(sandbox.StateFile()));
        write(QStringLiteral("K"), QStringLiteral("v"));
        QCOMPARE(read(QStringLiteral("K")), QStringLiteral("<default>"));
        QVERIFY(QFileInfo(sandbox.StateFile()).isDir());
    }

    // The per-user store rewrites the whole file; a damaged one is copied aside first.
    void damagedUserStoreIsKept() {
        SettingsSandbox sandbox(-1);
        const QString file = SettingsSandbox::UserStoreFile();
        QDir().mkpath(QFileInfo(file).path());
        const QByteArray damaged =
            Bytes("[Settings]\nTabSize=5\n\x00\xFF\xFE junk\nno equals here\n");
        WriteFile(file, damaged);
        QCOMPARE(read(QStringLiteral("TabSize")), QStringLiteral("5"));
        write(QStringLiteral("Margin"), QStringLiteral("2"));
        QCOMPARE(ReadFile(file + QStringLiteral(".damaged")), damaged);
        // Once per run: the rewritten file is not copied again.
        write(QStringLiteral("Margin"), QStringLiteral("3"));
        QVERIFY(!QFileInfo::exists(file + QStringLiteral(".damaged-2")));
    }
};

BRIX_TEST_MAIN(tst_SettingsStore)
#include "tst_SettingsStore.moc"
