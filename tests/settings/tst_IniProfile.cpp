#include "FileTestSupport.h"
#include "SettingsSandbox.h"
#include "TestEnv.h"

#include "settings/IniProfile.h"

#include <QFile>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <unistd.h>

namespace {

using FileTestSupport::ReadFile;
using FileTestSupport::WriteFile;

// With its byte order mark.
QByteArray utf16le(const QString& text) {
    return QByteArray("\xFF\xFE") + QByteArray(QStringEncoder(QStringEncoder::Utf16LE)(text));
}
QByteArray utf16be(const QString& text) {
    return QByteArray("\xFE\xFF") + QByteArray(QStringEncoder(QStringEncoder::Utf16BE)(text));
}

} // namespace

class tst_IniProfile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readRules_data() {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected"); // "<none>" for a missing key
        struct Row {
            const char* name;
            QByteArray file;
            const char *section, *key, *expected;
        };
        const QByteArray basic = "[Main]\nName=Value\n";
        const Row rows[] = {
            {"plain", basic, "Main", "Name", "Value"},
            {"section case", basic, "MAIN", "Name", "Value"},
            {"missing key", basic, "Main", "Other", "<none>"},
            {"missing section", basic, "Other", "Name", "<none>"},
            {"blanks trimmed", "[Main]\n  Name  =   a b  \n", "Main", "Name", "a b"},
            {"double quotes stripped", "[Main]\nName=\"  padded \"\n", "Main", "Name", "  padded "},
            {"single quotes stripped", "[Main]\nName='x'\n", "Main", "Name", "x"},
            {"one pair only", "[Main]\nName=\"\"x\"\"\n", "Main", "Name", "\"x\""},
            {"unmatched quote kept", "[Main]\nName=\"x'\n", "Main", "Name", "\"x'"},
            {"first duplicate wins", "[Main]\nName=1\nName=2\n[Main]\nName=3\n", "Main", "Name",
             "1"},
            {"keys before a section belong to none", "Name=0\n[Main]\n", "Main", "Name", "<none>"},
            {"comment ignored", "[Main]\n;Name=1\n", "Main", "Name", "<none>"},
            {"key without equals is empty", "[Main]\nName\n", "Main", "Name", ""},
            {"blanks in brackets", "[ Main ]\nName=1", "Main", "Name", "1"},
            {"utf-16le", utf16le("[Main]\r\nName=Grüße\r\n"), "Main", "Name", "Grüße"},
            {"utf-16be", utf16be("[Main]\nName=Grüße\n"), "Main", "Name", "Grüße"},
            {"utf-8 bom", "\xEF\xBB\xBF[Main]\nName=Grüße\n", "Main", "Name", "Grüße"},
            {"lone bom", "\xFF\xFE", "Main", "Name", "<none>"},
        };
        for (const Row& row : rows)
            QTest::newRow(row.name)
                << row.file << row.section << row.key << QString::fromUtf8(row.expected);
    }

    void readRules() {
        QFETCH(QByteArray, file);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, expected);
        const QString value = IniProfile::FromBytes(file).Value(section, key);
        if (expected == QLatin1String("<none>"))
            QVERIFY(value.isNull());
        else
            QCOMPARE(value, expected);
    }

    void writeRules_data() {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value"); // "<delete>" removes the key
        QTest::addColumn<QByteArray>("after");
        struct Row {
            const char* name;
            QByteArray before;
            const char *section, *key;
            QString value;
            QByteArray after;
        };
        const Row rows[] = {
            {"new file", "", "S", "K", "v", "[S]\nK=v\n"},
            {"replace keeps the rest", "; note\n[S]\nA=1\nK=old\nB=2\n", "S", "k", "new",
             "; note\n[S]\nA=1\nk=new\nB=2\n"},
            {"add after last key, before blank lines", "[S]\nA=1\n\n[T]\nX=1\n", "s", "K", "v",
             "[S]\nA=1\nK=v\n\n[T]\nX=1\n"},
            {"add section at the end", "[T]\nX=1", "S", "K", "v", "[T]\nX=1\n[S]\nK=v\n"},
            {"crlf kept", "[S]\r\nA=1\r\n", "S", "K", "v", "[S]\r\nA=1\r\nK=v\r\n"},
            {"delete", "[S]\nA=1\nK=v\nB=2\n", "S", "K", "<delete>", "[S]\nA=1\nB=2\n"},
            {"utf-16 stays utf-16", QByteArray("\xFF\xFE", 2), "S", "K", "ä",
             utf16le(QStringLiteral("[S]\nK=ä\n"))},
            {"same value leaves undecodable bytes", "[S]\nK=caf\xE9\n", "S", "K",
             QString::fromUtf8("caf\xE9"), "[S]\nK=caf\xE9\n"},
            // A line break would make a new line, a new key or section: refused.
            {"line break refused", "[S]\nK=1\n", "S", "K", "a\n[T]", "[S]\nK=1\n"},
        };
        for (const Row& row : rows)
            QTest::newRow(row.name)
                << row.before << row.section << row.key << row.value << row.after;
    }

    void writeRules() {
        QFETCH(QByteArray, before);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QByteArray, after);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("x.ini"));
        if (!before.isEmpty())
            WriteFile(path, before);
        const bool done = value == QLatin1String("<delete>")
                              ? IniProfile::DeleteKey(path, section, key)
                              : IniProfile::WriteString(path, section, key, value);
        QCOMPARE(done, !value.contains(QLatin1Char('\n')));
        QCOMPARE(ReadFile(path), after);
    }

    // Lines the reader does not understand, bytes that do not decode and a cut-off last code
    // unit all survive an edit of the file.
    void damagedFilesSurviveEdits_data() {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("readable"); // what key "A" of section "S" holds

        QTest::newRow("binary and invalid utf-8")
            << Bytes("\x00\x01\xFF\xFE garbage\n\x80\x81\n[S]\nA=1\n\xC3\x28 zz\n") << "1";
        QByteArray truncated = utf16le(QStringLiteral("[S]\r\nA=2\r\nB=cut"));
        truncated.append('\x41');
        QTest::newRow("truncated utf-16") << truncated << "2";
        QTest::newRow("no sections at all")
            << Bytes("\x89PNG\r\n\x1A\n\x00\x00\x00\rIHDR") << "<none>";
    }

    void damagedFilesSurviveEdits() {
        QFETCH(QByteArray, file);
        QFETCH(QString, readable);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("x.ini"));
        WriteFile(path, file);

        const QString value = IniProfile::ReadString(path, QStringLiteral("S"), QStringLiteral("A"),
                                                     QStringLiteral("<none>"), 4096);
        QCOMPARE(value, readable);
        QVERIFY(IniProfile::WriteString(path, QStringLiteral("T"), QStringLiteral("New"),
                                        QStringLiteral("v")));
        const QByteArray after = ReadFile(path);
        // Every byte that was there is still there, in order: the edit only added.
        qsizetype at = 0;
        for (const char byte : file) {
            at = after.indexOf(byte, at);
            QVERIFY(at >= 0);
            ++at;
        }
    }

    void unreadableFileIsLeftAlone() {
        QTemporaryDir dir;
        // A folder where the file should be.
        const QString folder = dir.filePath(QStringLiteral("folder.ini"));
        QVERIFY(QDir().mkdir(folder));
        QCOMPARE(IniProfile::ReadString(folder, QStringLiteral("S"), QStringLiteral("K"),
                                        QStringLiteral("d"), 4096),
                 QStringLiteral("d"));
        QVERIFY(!IniProfile::WriteString(folder, QStringLiteral("S"), QStringLiteral("K"),
                                         QStringLiteral("v")));
        QVERIFY(QFileInfo(folder).isDir());

        if (::geteuid() == 0)
            QSKIP("file permissions do not bind the superuser");
        const QString locked = dir.filePath(QStringLiteral("locked.ini"));
        WriteFile(locked, "[S]\nK=1\n");
        QFile::setPermissions(locked, QFileDevice::WriteOwner);
        QVERIFY(!IniProfile::WriteString(locked, QStringLiteral("S"), QStringLiteral("K"),
                                         QStringLiteral("2")));
        QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        QCOMPARE(ReadFile(locked), QByteArray("[S]\nK=1\n"));
    }

    void readIsCutToTheBuffer() {
        const QString longValue(5000, QLatin1Char('x'));
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("x.ini"));
        QVERIFY(IniProfile::WriteString(path, QStringLiteral("S"), QStringLiteral("K"), longValue));
        QCOMPARE(
            IniProfile::ReadString(path, QStringLiteral("S"), QStringLiteral("K"), QString(), 4096)
                .size(),
            4095);
    }
};

BRIX_TEST_MAIN(tst_IniProfile)
#include "tst_IniProfile.moc"
