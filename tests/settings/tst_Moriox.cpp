#include "FileTestSupport.h"
#include "SettingsSandbox.h"
#include "TestEnv.h"

#include "language/clsKeyword.h"
#include "language/clsKeywords.h"
#include "settings/IniProfile.h"
#include "settings/Moriox.h"
#include "settings/SettingText.h"
#include "settings/SettingsStore.h"

#include <QDir>
#include <QSettings>
#include <QStringEncoder>
#include <functional>
#include <map>

namespace {

const QString IniSection = QStringLiteral("MultiValueEditor_Settings_");

void writeStateFile(const SettingsSandbox& sandbox, const QByteArray& bytes) {
    FileTestSupport::WriteFile(sandbox.StateFile(), bytes);
}
QString stored(const SettingsSandbox& sandbox, const QString& key) {
    return IniProfile::FromBytes(sandbox.StateFileBytes()).Value(IniSection, key);
}

QStringList recentItems(const Moriox& settings) {
    QStringList items;
    for (int16_t i = 1; i <= settings.RecentList->ListCount(); ++i)
        items << settings.RecentList->ListItem(i);
    return items;
}

// A member as text, for the members the data-driven rows look at.
QString member(const Moriox& m, const QString& name) {
    static const std::map<QString, std::function<QString(const Moriox&)>> members = {
        {QStringLiteral("FontName"), [](const Moriox& s) { return s.FontName; }},
        {QStringLiteral("FontMono"),
         [](const Moriox& s) { return SettingText::FromBoolean(s.FontMono); }},
        {QStringLiteral("TabSize"), [](const Moriox& s) { return QString::number(s.TabSize); }},
        {QStringLiteral("IndentStar"),
         [](const Moriox& s) { return QString::number(s.IndentStar); }},
        {QStringLiteral("HotTrack"),
         [](const Moriox& s) { return SettingText::FromBoolean(s.HotTrack); }},
        {QStringLiteral("Highlight"),
         [](const Moriox& s) { return SettingText::FromBoolean(s.Highlight); }},
        {QStringLiteral("ResultsFontName"), [](const Moriox& s) { return s.ResultsFontName; }},
        {QStringLiteral("Recent"),
         [](const Moriox& s) { return recentItems(s).join(QLatin1Char('|')); }},
    };
    return members.at(name)(m);
}

// Every member away from its default, with texts the store must keep as they are.
void fillOddly(Moriox& m) {
    m.FontName = QStringLiteral("Liberation Mono");
    m.FontSize = QStringLiteral(" 11 ");
    m.FontMono = false;
    m.BackColor = static_cast<int32_t>(0x8000000Fu);
    m.CommentStyle = -32768;
    m.ReservedColor = INT32_MIN;
    m.ReservedStyle = 32767;
    m.TabSize = 8;
    m.IndentStar = 2;
    m.CompileCommand = QStringLiteral("\"BASIC\"");
    m.CompileOptions = QStringLiteral("  -I 'x' ");
    m.Keywords->SetKeywordList(clsKeyword::TypeLanguage, QStringLiteral(" "),
                               QStringLiteral("CASE END IF"));
    m.Keywords->SetKeywordList(clsKeyword::TypeUser, QStringLiteral(" "),
                               QStringLiteral("MY.SUB Grüße"));
    m.Keywords->SetCaseSensitive(true);
    m.HotTrack = false;
    m.LargeToolbarIcons = true;
    m.ResultsFontSize = QStringLiteral("9");
    m.MinMaxClose = true;
    m.RecentList->SetListSize(6);
    for (const char* item : {"file:///tmp/a b", "mvdb://*/*/BP/X", "= odd", "'q'", "Ünï", "last"})
        m.RecentList->AddItem(QString::fromUtf8(item));
}

} // namespace

class tst_Moriox : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void numericParse_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("expected");
        QTest::addColumn<bool>("parses");
        QTest::newRow("blanks and sign") << " -4 " << qint64(-4) << true;
        QTest::newRow("system colour") << "&H80000005&" << qint64(-2147483643) << true;
        QTest::newRow("no ampersand") << "&H10" << qint64(16) << true;
        QTest::newRow("too many digits") << "&H123456789&" << qint64(0) << false;
        QTest::newRow("trailing word") << "12abc" << qint64(0) << false;
        QTest::newRow("wide") << "99999999999" << qint64(99999999999) << true;
    }

    void numericParse() {
        QFETCH(QString, text);
        QFETCH(qint64, expected);
        QFETCH(bool, parses);
        QCOMPARE(SettingText::ParseNumber(text), expected);
        QCOMPARE(SettingText::ParseInteger(text).has_value(), parses);
    }

    // One row a rule: the lines below the marker line "@=7", the member and its value.
    void loadRules_data() {
        QTest::addColumn<QString>("lines");
        QTest::addColumn<QString>("member");
        QTest::addColumn<QString>("expected");
        struct Row {
            const char *name, *lines, *member, *expected;
        };
        static const Row rows[] = {
            {"negative tab size", "TabSize=-4", "TabSize", "0"},
            {"indent absolute", "IndentStar=-2", "IndentStar", "2"},
            {"indent above 2", "IndentStar=3", "IndentStar", "0"},
            {"too big for its member", "TabSize=70000", "TabSize", "0"},
            {"other word leaves the boolean false", "FontMono=Maybe", "FontMono", "False"},
            {"later keys still load", "FontMono=Maybe\nHighlight=False", "Highlight", "False"},
            {"old font name", "FontName=mv lucida console", "FontName", "MVW Lucida Console"},
            {"key differs from member", "ToolbarHotTrack=False", "HotTrack", "False"},
            {"results font from the older key", "ResultFontName=Courier", "ResultsFontName",
             "Courier"},
            {"results font not from its own key", "ResultsFontName=Arial", "ResultsFontName", ""},
            {"recent, empty entry skipped",
             "RecentFileCount=5\nRecentFile_1=a\nRecentFile_3=c\nRecentFile_4=d\nRecentFile_5=e",
             "Recent", "a|c|d|e"},
            {"recent, smaller list",
             "RecentListSize=2\nRecentFileCount=3\nRecentFile_1=a\nRecentFile_2=b\n"
             "RecentFile_3=c",
             "Recent", "a|b"},
            {"recent, count too big", "RecentFileCount=40000\nRecentFile_1=a", "Recent", ""},
        };
        for (const Row& row : rows)
            QTest::newRow(row.name)
                << QString::fromUtf8(row.lines) << row.member << QString::fromUtf8(row.expected);
    }

    void loadRules() {
        QFETCH(QString, lines);
        QFETCH(QString, member);
        QFETCH(QString, expected);
        SettingsSandbox sandbox(2);
        writeStateFile(sandbox,
                       (QStringLiteral("[MultiValueEditor_Settings_]\n@=7\n") + lines).toUtf8());
        Moriox settings;
        settings.LoadSettings();
        QCOMPARE(::member(settings, member), expected);
    }

    void roundTrip_data() {
        QTest::addColumn<int>("mode");
        QTest::newRow("per-user store") << 1;
        QTest::newRow("state file") << 2;
    }

    void roundTrip() {
        QFETCH(int, mode);
        SettingsSandbox sandbox(mode);
        Moriox saved;
        fillOddly(saved);
        saved.SaveSettings();
        Moriox loaded;
        loaded.LoadSettings();
        QVERIFY(loaded == saved);
        // What the store wrote itself is never taken for damage.
        QVERIFY(!QFileInfo::exists(SettingsSandbox::UserStoreFile() + QStringLiteral(".damaged")));
    }

    void nowhereModeMigratesEveryStart() {
        SettingsSandbox sandbox(0);
        SettingsSandbox::WriteLegacy(QStringLiteral("FontSize"), QStringLiteral("12"));
        Moriox first;
        first.LoadSettings();
        first.TabSize = 9;
        first.SaveSettings();
        // The next start migrates again: nothing of the first was kept.
        Moriox settings;
        settings.FontSize = QStringLiteral("20");
        settings.LoadSettings();
        QCOMPARE(settings.FontSize, QStringLiteral("12"));
        QCOMPARE(settings.TabSize, int16_t(3));
        QVERIFY(QDir(sandbox.DataFolder()).isEmpty());
        QVERIFY(!QFileInfo::exists(SettingsSandbox::UserStoreFile()));
    }

    void olderMarkerMigrates() {
        SettingsSandbox sandbox(2);
        writeStateFile(sandbox, "[MultiValueEditor_Settings_]\n@=6\nTabSize=5\nFontSize=14\n");
        SettingsSandbox::WriteLegacy(QStringLiteral("FontSize"), QStringLiteral("12"));
        Moriox settings;
        settings.LoadSettings();
        QCOMPARE(settings.TabSize, int16_t(3));
        QCOMPARE(settings.FontSize, QStringLiteral("12"));
        QCOMPARE(stored(sandbox, QStringLiteral("@")), QStringLiteral("7"));
        QCOMPARE(stored(sandbox, QStringLiteral("FontSize")), QStringLiteral("12"));
    }

    // Values of the earlier version come over; window places it could not have are refused.
    void legacyValuesComeOver() {
        SettingsSandbox sandbox(2);
        const std::pair<const char*, const char*> legacy[] = {
            {"MainLeft", "300"},           {"MainTop", "-20000"},
            {"MainWidth", "wide"},         {"ToolbarLargeIcons", "True"},
            {"ResultFontName", "Arial"},   {"UserKeywords", "FOO"},
            {"RecentFileCount", "2"},      {"RecentFile_1", "b"},
            {"RecentFile_2", "a"},         {"MainHeight", "-9999"},
            {"StatusbarVisible", "False"}, {"ToolbarVisible", "True"},
        };
        for (const auto& [key, value] : legacy)
            SettingsSandbox::WriteLegacy(QLatin1String(key), QLatin1String(value));
        Moriox settings;
        settings.LoadSettings();
        // A member the earlier version never had keeps its default.
        QVERIFY(!settings.LargeToolbarIcons);
        QCOMPARE(settings.ResultsFontName, QStringLiteral("Arial"));
        QCOMPARE(settings.Keywords->GetKeywordList(clsKeyword::TypeUser, QStringLiteral(" ")),
                 QStringLiteral("FOO"));
        QCOMPARE(recentItems(settings), QStringList({"b", "a"}));
        for (const QString line : {"MainLeft=300", "MainHeight=-9999", "StatusbarVisible=False",
                                   "MainTop=", "MainWidth=", "ToolbarVisible="})
            QCOMPARE(stored(sandbox, line.section(QLatin1Char('='), 0, 0)),
                     line.section(QLatin1Char('='), 1));
    }

    // A fresh machine: the migration finds nothing and writes every key once.
    void freshMachineWritesDefaults() {
        SettingsSandbox sandbox(-1);
        Moriox settings;
        settings.LoadSettings();
        Moriox fresh;
        fresh.FontName = Moriox::DefaultFontName();
        QVERIFY(settings == fresh);
        QSettings store(SettingsSandbox::UserStoreFile(), QSettings::IniFormat);
        store.beginGroup(QStringLiteral("Settings"));
        QCOMPARE(store.childKeys().size(), 41);
    }

    void cloneAndUpdateFrom() {
        Moriox source;
        fillOddly(source);
        const std::unique_ptr<Moriox> copy = source.Clone();
        QVERIFY(*copy == source);
        copy->RecentList->AddItem(QStringLiteral("new"));
        copy->TabSize = 1;
        QCOMPARE(source.RecentList->ListItem(1), QStringLiteral("last"));

        Moriox target;
        const clsRecentList* list = target.RecentList.get();
        target.RecentList->AddItem(QStringLiteral("gone"));
        target.UpdateFrom(*copy);
        QVERIFY(target == *copy);
        QCOMPARE(target.RecentList.get(), list);
        QCOMPARE(recentItems(target).first(), QStringLiteral("new"));
    }

    void defaultFont_data() {
        QTest::addColumn<QStringList>("families");
        QTest::addColumn<QString>("expected");
        QTest::newRow("other fonts")
            << QStringList({"DejaVu Sans", "MV Lucida Console"}) << "Courier New";
        QTest::newRow("first match, whole name")
            << QStringList({"Arial", "mvw lucida console Unicode", "MVW Lucida Console"})
            << "mvw lucida console Unicode";
        QTest::newRow("shorter name") << QStringList({"MVW Lucida Consol"}) << "Courier New";
    }

    void defaultFont() {
        QFETCH(QStringList, families);
        QFETCH(QString, expected);
        QCOMPARE(Moriox::DefaultFontName(families), expected);
    }

    // A damaged state file loads what it can, keeps the rest at the defaults, and still holds
    // every byte it had after the settings are saved into it.
    void damagedStateFile_data() {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<int>("tabSize");
        QTest::addColumn<int>("margin");
        QTest::addColumn<bool>("fontMono");

        QTest::newRow("binary lines")
            << Bytes("\x00\xFF\xFE\x01\n[MultiValueEditor_Settings_]\n\x80\x81\x82\n@=7\n"
                     "TabSize=5\nFontMono=\xC3\x28\nMargin=9\n\x00\x00")
            << 5 << 9 << false;
        const QByteArray truncated =
            QByteArray("\xFF\xFE") +
            QStringEncoder(QStringEncoder::Utf16LE)(
                u"[MultiValueEditor_Settings_]\r\n@=7\r\nTabSize=4\r\nMargin=1") +
            'M';
        QTest::newRow("truncated utf-16") << truncated << 4 << 1 << true;
        QTest::newRow("no marker: defaults")
            << Bytes(
                   "\x7F\x45LF\x02\x01\x01\x00\x00\x00\n[MultiValueEditor_Settings_]\nTabSize=5\n")
            << 3 << 6 << true;
        QTest::newRow("cut mid-line")
            << QByteArray("[MultiValueEditor_Settings_]\n@=7\nTabSize=1") << 1 << 6 << true;
    }

    void damagedStateFile() {
        QFETCH(QByteArray, file);
        QFETCH(int, tabSize);
        QFETCH(int, margin);
        QFETCH(bool, fontMono);
        SettingsSandbox sandbox(2);
        writeStateFile(sandbox, file);
        Moriox settings;
        settings.LoadSettings();
        QCOMPARE(settings.TabSize, tabSize);
        QCOMPARE(settings.Margin, margin);
        QCOMPARE(settings.FontMono, fontMono);

        settings.SaveSettings();
        // Key lines may have been written over; every other byte is still there, in order.
        const QByteArray after = sandbox.StateFileBytes();
        qsizetype at = 0;
        for (const QByteArray& line : file.split('\n')) {
            if (line.contains('='))
                continue;
            at = after.indexOf(line, at);
            QVERIFY2(at >= 0, line.toHex().constData());
        }
        Moriox reloaded;
        reloaded.LoadSettings();
        QVERIFY(reloaded == settings);
    }
};

BRIX_TEST_MAIN(tst_Moriox)
#include "tst_Moriox.moc"
