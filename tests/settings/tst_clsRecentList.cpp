#include "TestEnv.h"

#include "settings/clsRecentList.h"
#include "support/BrixError.h"

namespace {

QStringList items(const clsRecentList& list) {
    QStringList result;
    for (int16_t i = 1; i <= list.ListCount(); ++i)
        result << list.ListItem(i);
    return result;
}

// Runs a script of steps: "+x" adds x, "-x" removes x, "size n", "max n", "clear".
void run(clsRecentList& list, const QStringList& steps) {
    for (const QString& step : steps) {
        if (step.startsWith(QLatin1Char('+')))
            list.AddItem(step.mid(1));
        else if (step.startsWith(QLatin1Char('-')))
            list.RemoveItem(step.mid(1));
        else if (step.startsWith(QLatin1String("size ")))
            list.SetListSize(static_cast<int16_t>(step.mid(5).toInt()));
        else if (step.startsWith(QLatin1String("max ")))
            list.SetMaxListSize(static_cast<int16_t>(step.mid(4).toInt()));
        else if (step == QLatin1String("clear"))
            list.Clear();
    }
}

int errorNumber(const std::function<void()>& call) {
    try {
        call();
    } catch (const BrixError& error) {
        return error.Number;
    }
    return 0;
}

} // namespace

class tst_clsRecentList : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void orderAndBounds_data() {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<int>("size");

        const auto row = [](const char* name, const QStringList& steps, const QStringList& expected,
                            int size) { QTest::newRow(name) << steps << expected << size; };
        row("fifth drops the oldest", QStringList{"+a", "+b", "+c", "+d", "+e"},
            QStringList{"e", "d", "c", "b"}, 4);
        row("case duplicate moves up with the new spelling",
            QStringList{"+abc", "+x", "+y", "+ABC"}, QStringList{"ABC", "y", "x"}, 4);
        row("duplicate in a full list keeps all", QStringList{"+a", "+b", "+c", "+d", "+A"},
            QStringList{"A", "d", "c", "b"}, 4);
        row("remove any case", QStringList{"+a", "+b", "+c", "-B"}, QStringList{"c", "a"}, 4);
        row("negative size ignored", QStringList{"+a", "size -1"}, QStringList{"a"}, 4);
        row("size 0 empties and keeps nothing", QStringList{"+a", "size 0", "+b"}, QStringList{},
            0);
        row("lowering keeps the newest", QStringList{"+a", "+b", "+c", "+d", "size 2"},
            QStringList{"d", "c"}, 2);
        row("maximum 0 ignored", QStringList{"max 0", "size 30"}, QStringList{}, 30);
        row("lower maximum bounds later sizes", QStringList{"max 10", "size 20"}, QStringList{},
            10);
        row("lower maximum leaves the size", QStringList{"size 8", "max 5"}, QStringList{}, 8);
        row("clear keeps the size", QStringList{"size 6", "+a", "clear"}, QStringList{}, 6);
    }

    void orderAndBounds() {
        QFETCH(QStringList, steps);
        QFETCH(QStringList, expected);
        QFETCH(int, size);
        clsRecentList list;
        run(list, steps);
        QCOMPARE(items(list), expected);
        QCOMPARE(list.ListSize(), size);
    }

    void listItemIndexes() {
        clsRecentList list;
        run(list, {"+a", "+b"});
        QCOMPARE(errorNumber([&] { list.ListItem(0); }), 381);
        QCOMPARE(errorNumber([&] { list.SetListItem(4, QStringLiteral("x")); }), 381);

        list.SetListItem(1, QStringLiteral("B2"));
        list.SetListItem(3, QStringLiteral("c"));
        list.SetListItem(4, QStringLiteral("d"));
        QCOMPARE(items(list), QStringList({"B2", "a", "c", "d"}));
        // Full: no index beyond the size.
        QCOMPARE(errorNumber([&] { list.SetListItem(5, QStringLiteral("e")); }), 381);
    }
};

BRIX_TEST_MAIN(tst_clsRecentList)
#include "tst_clsRecentList.moc"
