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
    // A new table: the block words in their order, then the rest of the language list.
    void creationOrder() {
        clsKeywords table;
        QCOMPARE(table.GetKeywordList(2, kBlank),
                 QStringLiteral("IF THEN+ ELSE+ LOCKED+ BEGIN+ END- CASE= FOR+ NEXT- DO LOOP+ "
                                "UNTIL= WHILE= REPEAT- GO GOTO GOSUB TO SUB SUBROUTINE CALL STEP "
                                "INCLUDE"));
        QCOMPARE(table.GetKeywordList(4, kBlank), QString());
        QCOMPARE(typeOf(table, QStringLiteral("THEN")), 3);
        QCOMPARE(typeOf(table, QStringLiteral("CALL")), 2);
        QVERIFY(!table.CaseSensitive());
        QCOMPARE(table.KeywordFirstChars(), QStringLiteral("@%_"));
        QCOMPARE(table.KeywordNextChars(), QStringLiteral(".%_"));
    }

    void keywordForms_data() {
        QTest::addColumn<int>("flags");
        QTest::addColumn<int>("style");
        QTest::addColumn<QString>("suffix");
        QTest::newRow("FOR") << 1 << 1 << "+";
        QTest::newRow("NEXT") << 2 << 2 << "-";
        QTest::newRow("UNTIL") << 8 << 3 << "=";
        QTest::newRow("REPEAT") << 1024 << 2 << "-";
        QTest::newRow("open first") << 16384 << 1 << "[";
        QTest::newRow("none") << 0 << 0 << "";
        QTest::newRow("combination") << 3 << 0 << "";
    }
    void keywordForms() {
        QFETCH(int, flags);
        QFETCH(int, style);
        QFETCH(QString, suffix);
        clsKeyword word;
        word.Keyword = QStringLiteral("W");
        word.BlockFlags = flags;
        word.KeywordType = 4;
        QCOMPARE(word.BlockStyle(), style);
        QCOMPARE(word.Suffix(), suffix);
    }

    // Suffixes set block values; built-in words keep theirs whatever a list says.
    void listsWithSuffixes() {
        clsKeywords table;
        table.SetKeywordList(4, QStringLiteral(","),
                             QStringLiteral(" OPN+ , CLS- ,MID=,FST[,LST],PLAIN,,THEN-,+"));
        QCOMPARE(table.Item(QStringLiteral("OPN"))->BlockFlags, 2048);
        QCOMPARE(table.Item(QStringLiteral("CLS"))->BlockFlags, 4096);
        QCOMPARE(table.Item(QStringLiteral("MID"))->BlockFlags, 8192);
        QCOMPARE(table.Item(QStringLiteral("FST"))->BlockFlags, 16384);
        QCOMPARE(table.Item(QStringLiteral("LST"))->BlockFlags, 32768);
        QCOMPARE(table.Item(QStringLiteral("PLAIN"))->BlockFlags, 0);
        QCOMPARE(table.Item(QStringLiteral("THEN"))->BlockFlags, 128);
        QCOMPARE(typeOf(table, QStringLiteral("THEN")), 7);
        // A lone suffix character is cut to nothing, and the empty word stands in the table.
        QVERIFY(table.Item(QString()));
        QCOMPARE(table.GetKeywordList(4, QStringLiteral("|")),
                 QStringLiteral("THEN+|OPN+|CLS-|MID=|FST[|LST]|PLAIN|+"));
    }

    void badListArguments_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("delimiter");
        QTest::newRow("empty delimiter") << 2 << "";
        QTest::newRow("type 1") << 1 << " ";
        QTest::newRow("type 6") << 6 << " ";
        QTest::newRow("type 0") << 0 << " ";
    }
    void badListArguments() {
        QFETCH(int, type);
        QFETCH(QString, delimiter);
        clsKeywords table;
        for (int call = 0; call < 2; ++call) {
            try {
                if (call == 0)
                    table.SetKeywordList(type, delimiter, QStringLiteral("X"));
                else
                    (void)table.GetKeywordList(type, delimiter);
                QFAIL("no error");
            } catch (const BrixError& e) {
                QCOMPARE(e.Number, 9);
            }
        }
        QVERIFY(!table.Item(QStringLiteral("X")));
    }

    // A word on both lists; the language list replaced without it leaves a user keyword.
    void wordOnBothLists() {
        clsKeywords table;
        table.SetKeywordList(4, kBlank, QStringLiteral("CALL DEBUG"));
        QCOMPARE(typeOf(table, QStringLiteral("CALL")), 6);
        table.SetKeywordList(2, kBlank, QStringLiteral("IF THEN"));
        QCOMPARE(typeOf(table, QStringLiteral("CALL")), 4);
        QCOMPARE(typeOf(table, QStringLiteral("STEP")), -1);
        // Block words leave the list but stay in the table.
        QCOMPARE(typeOf(table, QStringLiteral("FOR")), 1);
        table.SetKeywordList(2, kBlank, QString());
        QCOMPARE(typeOf(table, QStringLiteral("IF")), 1);
        QCOMPARE(table.GetKeywordList(2, kBlank), QString());
        QCOMPARE(table.GetKeywordList(4, kBlank), QStringLiteral("CALL DEBUG"));
    }

    // Removing a user list clears the user block bits from the built-in words it touched.
    void removeKeepsBuiltIns() {
        clsKeywords table;
        clsKeyword* end = table.AddKeyword(QStringLiteral("NEWWORD"), 4, 2048);
        QVERIFY(end);
        QCOMPARE(end->BlockFlags, 2048);
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

    void itemCaseRules_data() {
        QTest::addColumn<bool>("caseSensitive");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("asked");
        QTest::addColumn<bool>("found");
        const auto row = [](const char* name, bool sensitive, const QString& stored,
                            const QString& asked, bool found) {
            QTest::newRow(name) << sensitive << stored << asked << found;
        };
        row("insensitive other case", false, "Debug", "DEBUG", true);
        row("insensitive lower", false, "Debug", "debug", true);
        row("sensitive exact", true, "Debug", "Debug", true);
        row("sensitive other case", true, "Debug", "DEBUG", false);
        row("sensitive built-in lower", true, "X", "then", false);
        row("non-ascii fold", false, QString::fromUtf8("Été"), QString::fromUtf8("éTÉ"), true);
        row("missing", false, "A", "B", false);
        row("prefix", false, "ABC", "AB", false);
    }
    void itemCaseRules() {
        QFETCH(bool, caseSensitive);
        QFETCH(QString, stored);
        QFETCH(QString, asked);
        QFETCH(bool, found);
        clsKeywords table;
        table.SetCaseSensitive(caseSensitive);
        table.SetKeywordList(4, kBlank, stored);
        QCOMPARE(table.Item(asked) != nullptr, found);
    }

    // With case sensitivity the keys still collide: the second spelling isn't added.
    void caseSensitiveKeysCollide() {
        clsKeywords table;
        table.SetCaseSensitive(true);
        table.SetKeywordList(4, kBlank, QStringLiteral("Debug DEBUG then"));
        QCOMPARE(table.GetKeywordList(4, kBlank), QStringLiteral("Debug"));
        QVERIFY(!table.Item(QStringLiteral("DEBUG")));
        QVERIFY(!table.Item(QStringLiteral("then")));
        // Switching back keeps entries and order; lookups fold again.
        table.SetCaseSensitive(false);
        QCOMPARE(table.Item(QStringLiteral("DEBUG"))->Keyword, QStringLiteral("Debug"));
        QCOMPARE(table.GetKeywordList(4, kBlank), QStringLiteral("Debug"));
        table.Add(*table.Item(QStringLiteral("debug")));
        QCOMPARE(table.GetKeywordList(4, kBlank), QStringLiteral("Debug"));
    }

    void derivedCharacters() {
        clsKeywords table;
        table.SetKeywordList(4, kBlank, QStringLiteral("$FOO A-B-C #X.Y 9LIVES a$b Z@Q"));
        QCOMPARE(table.KeywordFirstChars(), QStringLiteral("@%_$#9"));
        QCOMPARE(table.KeywordNextChars(), QStringLiteral(".%_-$@"));
        QVERIFY(table.IsFirstChar(u'$'));
        QVERIFY(table.IsNextChar(u'-'));
        QVERIFY(!table.IsFirstChar(u'-'));
        table.SetKeywordList(4, kBlank, QString());
        QCOMPARE(table.KeywordFirstChars(), QStringLiteral("@%_"));
        QVERIFY(!table.IsFirstChar(u'$'));
        // Membership for the lexer ignores case.
        table.SetKeywordList(4, kBlank, QString::fromUtf8("\xC3\xA9X"));
        QVERIFY(table.IsFirstChar(QChar(0xC9).unicode()));
    }

    void cloneAndUpdateFrom() {
        clsKeywords source;
        source.SetCaseSensitive(true);
        source.SetKeywordList(2, kBlank, QStringLiteral("IF THEN CRT"));
        source.SetKeywordList(4, kBlank, QStringLiteral("Mine+ yours-"));
        const auto copy = source.Clone();
        QVERIFY(copy->CaseSensitive());
        QCOMPARE(copy->GetKeywordList(2, kBlank), source.GetKeywordList(2, kBlank));
        QCOMPARE(copy->GetKeywordList(4, kBlank), source.GetKeywordList(4, kBlank));
        copy->SetKeywordList(4, kBlank, QString());
        QVERIFY(source.Item(QStringLiteral("Mine")));

        clsKeywords target;
        target.SetKeywordList(4, kBlank, QStringLiteral("OLD"));
        const clsKeywords* identity = &target;
        target.UpdateFrom(source);
        QCOMPARE(&target, identity);
        QVERIFY(target.CaseSensitive());
        QVERIFY(!target.Item(QStringLiteral("OLD")));
        QCOMPARE(target.GetKeywordList(4, kBlank), QStringLiteral("Mine+ yours-"));
        QCOMPARE(target.GetKeywordList(2, kBlank), source.GetKeywordList(2, kBlank));
        // From itself: the same lists again.
        const QString before = target.GetKeywordList(2, kBlank) + target.GetKeywordList(4, kBlank);
        target.UpdateFrom(target);
        QCOMPARE(target.GetKeywordList(2, kBlank) + target.GetKeywordList(4, kBlank), before);
    }

    // The lookup table stays right through many adds and removes.
    void manyWords() {
        clsKeywords table;
        QStringList words;
        for (int i = 0; i < 3000; ++i)
            words << QStringLiteral("W%1").arg(i * 7919 % 100000);
        table.SetKeywordList(4, kBlank, words.join(kBlank));
        QCOMPARE(table.Count(), 23 + 3000);
        for (int i = 0; i < 3000; i += 2)
            table.Remove(words[i]);
        for (int i = 0; i < 3000; ++i)
            QCOMPARE(table.Item(words[i].toLower()) != nullptr, i % 2 == 1);
        QCOMPARE(table.Count(), 23 + 1500);
        QCOMPARE(table.At(23).Keyword, words[1]);
        QVERIFY(table.Item(QStringLiteral("gosub")));
    }
};

BRIX_TEST_MAIN(tst_clsKeywords)
#include "tst_clsKeywords.moc"
