#include "TestEnv.h"

#include "settings/modColors.h"

#include <QPalette>

class tst_modColors : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void describe_data() {
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("text");
        const QColor base = QGuiApplication::palette().color(QPalette::Active, QPalette::Base);
        QTest::newRow("standard red") << 0x0000FF << "Red (standard color) R=255 G=0 B=0";
        QTest::newRow("custom") << 0x123456 << "custom color: R=86 G=52 B=18";
        QTest::newRow("system, named by its row")
            << int(0x80000005u)
            << modColors::SystemColorName(5) + QStringLiteral(" (system color) R=%1 G=%2 B=%3")
                                                   .arg(base.red())
                                                   .arg(base.green())
                                                   .arg(base.blue());
        const int32_t count = modColors::SystemColorCount();
        QTest::newRow("first past the table")
            << int(modColors::SystemBit | count)
            << QStringLiteral("unknown system color %1 R=0 G=0 B=0").arg(count);
    }
    void describe() {
        QFETCH(int, value);
        QFETCH(QString, text);
        QCOMPARE(modColors::DescribeColor(value), text);
    }

    // Set up twice, the same table: names in order, every value a system one.
    void systemTable() {
        modColors::SetUpColors();
        const int32_t count = modColors::SystemColorCount();
        modColors::SetUpColors();
        QCOMPARE(modColors::SystemColorCount(), count);
        QStringList names;
        for (int32_t row = 0; row < count; ++row) {
            names << modColors::SystemColorName(row);
            QVERIFY(modColors::SystemColorValue(row) < 0);
        }
        QStringList sorted = names;
        sorted.sort();
        QCOMPARE(names, sorted);
    }

    void resolve_data() {
        QTest::addColumn<int>("value");
        QTest::addColumn<QColor>("color");
        const QPalette palette = QGuiApplication::palette();
        QTest::newRow("plain") << 0x00336699 << QColor(0x99, 0x66, 0x33);
        QTest::newRow("window") << int(0x80000005u)
                                << palette.color(QPalette::Active, QPalette::Base);
        QTest::newRow("high bits ignored")
            << int(0x80FF0005u) << palette.color(QPalette::Active, QPalette::Base);
        QTest::newRow("no counterpart") << int(0x80000001u) << QColor(0, 0, 0);
    }
    void resolve() {
        QFETCH(int, value);
        QFETCH(QColor, color);
        QCOMPARE(modColors::ToQColor(value), QColor(color.red(), color.green(), color.blue()));
        QCOMPARE(modColors::ResolveColor(value), modColors::FromQColor(color));
    }

    void readableOn_data() {
        QTest::addColumn<QColor>("text");
        QTest::addColumn<QColor>("paper");
        QTest::addColumn<bool>("kept");
        const QColor darkGrey(0x30, 0x30, 0x30);
        QTest::newRow("dark blue on white") << QColor(0, 0, 128) << QColor(Qt::white) << true;
        QTest::newRow("dark blue on dark grey") << QColor(0, 0, 128) << darkGrey << false;
        QTest::newRow("black on black") << QColor(Qt::black) << QColor(Qt::black) << false;
    }
    void readableOn() {
        QFETCH(QColor, text);
        QFETCH(QColor, paper);
        QFETCH(bool, kept);
        const QColor drawn = modColors::ReadableOn(text, paper);
        QCOMPARE(drawn == text, kept);
        if (!kept) {
            QVERIFY(drawn.lightnessF() > text.lightnessF());
            if (text.hslSaturation() > 0)
                QCOMPARE(drawn.hslHue(), text.hslHue());
        }
    }
};

BRIX_TEST_MAIN(tst_modColors)
#include "tst_modColors.moc"
