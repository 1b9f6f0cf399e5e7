#include "TestEnv.h"

#include "support/ShortcutKeyNames.h"

class tst_ShortcutKeyNames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The edges of each row of the table, and the numbers outside it.
    void name_data() {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("name");
        const QString rows =
            QStringLiteral("0: 1:Ctrl+A 26:Ctrl+Z 27:F1 38:F12 39:Ctrl+F1 51:Shift+F1 "
                           "62:Shift+F12 63:Ctrl+Shift+F1 74:Ctrl+Shift+F12 "
                           "75:Ctrl+Ins 77:Del 79:Alt+Bkspc 80: -1:");
        for (const QString& row : rows.split(QLatin1Char(' ')))
            QTest::newRow(qPrintable(row))
                << row.section(QLatin1Char(':'), 0, 0).toInt() << row.section(QLatin1Char(':'), 1);
    }
    void name() {
        QFETCH(int, number);
        QFETCH(QString, name);
        QCOMPARE(ShortcutKeyNames::Name(static_cast<int16_t>(number)), name);
    }
};

BRIX_TEST_MAIN(tst_ShortcutKeyNames)
#include "tst_ShortcutKeyNames.moc"
