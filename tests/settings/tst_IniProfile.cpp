#include "FileTestSupport.h"
#include "SettingsSandbox.h"
#include "TestEnv.h"

#include "settings/IniProfile.h"

#include <QStringEncoder>
#include <QTemporaryDir>

namespace {

using FileTestSupport::ReadFile;
using FileTestSupport::WriteFile;

// With its byte order mark.
QByteArray utf16(const QString& text, bool little = true) {
    const auto order = little ? QStringEncoder::Utf16LE : QStringEncoder::Utf16BE;
    return QByteArray(little ? "\xFF\xFE" : "\xFE\xFF") + QByteArray(QStringEncoder(order)(text));
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
            {"unmatched quote kept", "[Main]\nName=\"x'\n", "Main", "Name", "\"x'"},
            {"first duplicate wins", "[Main]\nName=1\nName=2\n[Main]\nName=3\n", "Main", "Name",
             "1"},
            {"keys before a section belong to none", "Name=0\n[Main]\n", "Main", "Name", "<none>"},
            {"comment ignored", "[Main]\n;Name=1\n", "Main", "Name", "<none>"},
            {"key without equals is empty", "[Main]\nName\n", "Main", "Name", ""},
            {"blanks in brackets", "[ Main ]\nName=1", "Main", "Name", "1"},
            {"utf-16le", utf16("[Main]\r\nName=Grüße\r\n"), "Main", "Name", "Grüße"},
            {"utf-16be", utf16("[Main]\nName=Grüße\n", false), "Main", "Name", "Grüße"},
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
             utf16(QStringLiteral("[S]\nK=ä\n"))},
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
};

BRIX_TEST_MAIN(tst_IniProfile)
#include "tst_IniProfile.moc"
