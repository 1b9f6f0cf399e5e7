#include "FileTestSupport.h"
#include "TestEnv.h"

#include "language/clsKeywords.h"
#include "support/BrixError.h"

namespace {

const QString kBlank = QStringLiteral(" ");

int typeOf(const clsKeywords& table, const QString& word) {
    const clsKeyword* entry = table.Item(word);
    return entry ? entry->KeywordType : -1;
}

} // namespace

class tst_clsKeywords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Suffixes set block values; built-in words keep theirs whatever a list says.
    void listsWithSuffixes() {
        clsKeywords table;
        table.SetKeywordList(4, QStringLiteral(","),
                             QStringLiteral(" OPN+ , CLS- ,MID=,FST[,LST],PLAIN,,THEN-,+"));
        QCOMPARE(table.Item(QStringLiteral("THEN"))->BlockFlags, 128);
        QCOMPARE(typeOf(table, QStringLiteral("THEN")), 7);
        // A lone suffix character is cut to nothing, and the empty word stands in the table.
        QVERIFY(table.Item(QString()));
        QCOMPARE(table.GetKeywordList(4, QStringLiteral("|")),
                 QStringLiteral("THEN+|OPN+|CLS-|MID=|FST[|LST]|PLAIN|+"));
    }

    void badListArguments() {
        clsKeywords table;
        QCOMPARE(
            FileTestSupport::ErrorOf([&] { table.SetKeywordList(6, kBlank, QStringLiteral("X")); }),
            9);
        QVERIFY(!table.Item(QStringLiteral("X")));
    }

    // A word on both lists; the language list replaced without it leaves a user keyword.
    void wordOnBothLists() {
        clsKeywords table;
        table.SetKeywordList(4, kBlank, QStringLiteral("CALL DEBUG"));
        QCOMPARE(typeOf(table, QStringLiteral("CALL")), 6);
        table.SetKeywordList(2, kBlank, QStringLiteral("IF THEN"));
        QCOMPARE(typeOf(table, QStringLiteral("CALL")), 4);
        // Block words leave the list but stay in the table.
        QCOMPARE(typeOf(table, QStringLiteral("FOR")), 1);
        table.SetKeywordList(2, kBlank, QString());
        QCOMPARE(typeOf(table, QStringLiteral("IF")), 1);
        QCOMPARE(table.GetKeywordList(2, kBlank), QString());
    }

    // Removing a user list clears the user block bits from the built-in words it touched.
    void removeKeepsBuiltIns() {
        clsKeywords table;
        table.AddKeyword(QStringLiteral("NEWWORD"), 4, 2048);
        table.AddKeyword(QStringLiteral("NEWWORD"), 2, 4096);
        QCOMPARE(table.Item(QStringLiteral("NEWWORD"))->BlockFlags, 4096);
        QCOMPARE(typeOf(table, QStringLiteral("NEWWORD")), 6);
        table.RemoveKeyword(QStringLiteral("NEWWORD"), 6);
        QVERIFY(!table.Item(QStringLiteral("NEWWORD")));
        table.RemoveKeyword(QStringLiteral("NOTTHERE"), 4);

        clsKeyword odd;
        odd.Keyword = QStringLiteral("ODD");
        odd.KeywordType = 5;
        odd.BlockFlags = 2048 | 4096 | 2;
        table.Add(odd);
        table.RemoveKeyword(QStringLiteral("ODD"), 4);
        QCOMPARE(table.Item(QStringLiteral("ODD"))->BlockFlags, 2);
        QCOMPARE(typeOf(table, QStringLiteral("ODD")), 1);
    }

    // With case sensitivity the keys still collide: the second spelling isn't added.
    void caseSensitiveKeysCollide() {
        clsKeywords table;
        table.SetCaseSensitive(true);
        table.SetKeywordList(4, kBlank, QStringLiteral("Debug DEBUG then"));
        QCOMPARE(table.GetKeywordList(4, kBlank), QStringLiteral("Debug"));
        QVERIFY(!table.Item(QStringLiteral("DEBUG")));
        // Switching back keeps entries and order; lookups fold again.
        table.SetCaseSensitive(false);
        QCOMPARE(table.Item(QStringLiteral("DEBUG"))->Keyword, QStringLiteral("Debug"));
        // Folding takes in letters beyond ASCII; a prefix is no match.
        table.SetKeywordList(4, kBlank, QString::fromUtf8("\xC3\x89t\xC3\xA9 ABC"));
        QVERIFY(table.Item(QString::fromUtf8("\xC3\xA9T\xC3\x89")));
        QVERIFY(!table.Item(QStringLiteral("AB")));
    }
};

BRIX_TEST_MAIN(tst_clsKeywords)
#include "tst_clsKeywords.moc"
