#include "FileTestSupport.h"
#include "SettingsSandbox.h"
#include "TestEnv.h"

#include "settings/IniProfile.h"
#include "settings/SettingsStore.h"
#include "support/BrixError.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStringEncoder>

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
        QTest::newRow("no key") << QByteArray("[Isolation]\nAppDataDirectory=.\n") << 1;
        QTest::newRow("state file") << QByteArray("[Isolation]\nPersistSettings=2\n") << 2;
        QTest::newRow("any case") << QByteArray("[ISOLATION]\npersistsettings=2\n") << 2;
        QTest::newRow("nowhere") << QByteArray("[Isolation]\nPersistSettings=0\n") << 0;
        QTest::newRow("not a number") << QByteArray("[Isolation]\nPersistSettings=two\n") << 0;
        QTest::newRow("utf-16") << QByteArray("\xFF\xFE") +
                                       QByteArray(QStringEncoder(QStringEncoder::Utf16LE)(
                                           u"[Isolation]\r\nPersistSettings=2"))
                                << 2;
        QTest::newRow("binary") << Bytes("\x00\xFF\x01[Isolation\n\x80") << 1;
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
        row("plain", "BASIC", "K=BASIC", "BASIC");
        row("blanks at the ends", "  padded ", "K=\"  padded \"", "  padded ");
        row("quoted", "\"q\"", "K=\"\"q\"\"", "\"q\"");
        row("apostrophe first", "'x", "K=\"'x\"", "'x");
        row("apostrophe inside", "it's", "K=it's", "it's");
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

    void iniAddress_data() {
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& section, const char* expected) {
            QTest::newRow(name) << section << expected;
        };
        row("settings", Section, "MultiValueEditor_Settings_");
        row("blanks go", "Software\\Tolvek\\A B\\C D", "AB_CD");
        row("too short stays", "Software\\Tolvek", "Software\\Tolvek");
    }

    void iniAddress() {
        QFETCH(QString, section);
        QFETCH(QString, expected);
        QCOMPARE(SettingsStore::IniSection(section), expected);
        QCOMPARE(SettingsStore::IniKey(QString()), QStringLiteral("@"));
    }

    void normalisePath_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const char* path, const char* expected) {
            QTest::newRow(name) << path << expected;
        };
        row("parent", "../data", "/opt/brix/data");
        row("backslashes", "..\\data\\x", "/opt/brix/data/x");
        row("stops at the root", "../../../../../../x", "/x");
        row("double slashes", "//server/share", "/server/share");
        row("inner dot kept", "/a/./b", "/a/./b");
        row("first piece stays", "x/../../y", "x/y");
        row("drive stays", "C:\\x\\..\\..\\y", "C:/y");
    }

    void normalisePath() {
        QFETCH(QString, path);
        QFETCH(QString, expected);
        QCOMPARE(SettingsStore::NormalisePath(path, QStringLiteral("/opt/brix/bin")), expected);
    }

    void ensureFolder() {
        SettingsSandbox sandbox(-1);
        const QString base = sandbox.ExecutableFolder();
        QCOMPARE(SettingsStore::EnsureFolder(QString()), base + QLatin1Char('/'));
        QCOMPARE(SettingsStore::EnsureFolder(QStringLiteral("./a/b/c")),
                 base + QStringLiteral("/a/b/c/"));
        // A level that is a file can't be made: the executable's folder instead.
        WriteFile(base + QStringLiteral("/file"), "x");
        QCOMPARE(SettingsStore::EnsureFolder(QStringLiteral("./file/sub")),
                 base + QLatin1Char('/'));
        qputenv("BRIX_TEST_SUB", "made");
        QCOMPARE(SettingsStore::EnsureFolder(QStringLiteral("./%BRIX_TEST_SUB%")),
                 base + QStringLiteral("/made/"));
    }

    void expandEnvironment_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const char* text, const char* expected) {
            QTest::newRow(name) << text << expected;
        };
        row("name", "%BRIX_TEST_A%/x", "alpha/x");
        row("unset", "a%BRIX_TEST_UNSET%b", "ab");
        row("lone percent", "50% off", "50% off");
        row("lone after pair", "%BRIX_TEST_A% 5%", "alpha 5%");
    }

    void expandEnvironment() {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        qputenv("BRIX_TEST_A", "alpha");
        qunsetenv("BRIX_TEST_UNSET");
        QCOMPARE(SettingsStore::ExpandEnvironment(text), expected);
    }

    void writeTextFile_data() {
        QTest::addColumn<int>("encoding");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("utf-8 with mark") << 2 << QByteArray("\xEF\xBB\xBF\xC3\xA4h");
        QTest::newRow("utf-16 with mark") << 3 << Bytes("\xFF\xFE\xE4\x00h\x00");
        QTest::newRow("16-bit units") << -1 << Bytes("\xE4\x00h\x00");
    }

    void writeTextFile() {
        QFETCH(int, encoding);
        QFETCH(QByteArray, expected);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("t.txt"));
        WriteFile(path, "an older and longer text");
        QVERIFY(SettingsStore::WriteTextFile(path, QStringLiteral("äh"), encoding, false));
        QCOMPARE(ReadFile(path), expected);
    }

    void writeTextFileFailures() {
        QTemporaryDir dir;
        QVERIFY_THROWS_EXCEPTION(
            BrixError, SettingsStore::WriteTextFile(dir.filePath(QStringLiteral("e")), QString(),
                                                    SettingsStore::Utf8Bom, false));
        const QString bad = dir.filePath(QStringLiteral("missing/t.txt"));
        QVERIFY(!SettingsStore::WriteTextFile(bad, QStringLiteral("x"), 3, false));
        QVERIFY_THROWS_EXCEPTION(BrixError,
                                 SettingsStore::WriteTextFile(bad, QStringLiteral("x"), 3, true));
        QVERIFY(!SettingsStore::FileExists(dir.path()));
        QVERIFY(SettingsStore::DirectoryExists(dir.path()));
        QVERIFY(!SettingsStore::FileExists(QString()));
    }
};

BRIX_TEST_MAIN(tst_SettingsStore)
#include "tst_SettingsStore.moc"
