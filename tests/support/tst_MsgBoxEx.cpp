#include "TestEnv.h"

#include "support/MsgBoxEx.h"

#include <QCheckBox>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>

// The extended message box answered through its own buttons and keys.
class tst_MsgBoxEx : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { MsgBox::SetAnswerProvider({}); }

    // The check box with its default or own words, and only when asked for.
    void checkBox_data() {
        QTest::addColumn<int32_t>("type");
        QTest::addColumn<QString>("checkText"); // given to the call
        QTest::addColumn<QString>("checkBox");  // as shown; empty: none
        QTest::newRow("none") << MsgBox::YesNo << "ignored" << QString();
        QTest::newRow("default") << (MsgBox::RetryCancel | MsgBox::CheckBox) << QString()
                                 << "Do not show this &warning again";
        QTest::newRow("own") << (MsgBox::YesToAllNo | MsgBox::CheckBox) << "&Skip these"
                             << "&Skip these";
    }
    void checkBox() {
        QFETCH(int32_t, type);
        QFETCH(QString, checkText);
        QFETCH(QString, checkBox);
        QString seen = QStringLiteral("<none>");
        MsgBox::SetAnswerProvider([&](QMessageBox& box) {
            seen = box.checkBox() ? box.checkBox()->text() : QString();
            box.buttons().first()->click();
        });
        QVERIFY(MsgBoxEx(QStringLiteral("Pick"), type, QStringLiteral("Brix"), checkText) != 0);
        QCOMPARE(seen, checkBox);
    }

    // Answering by the second button, "esc", "enter" or "close" (the close box); a way that leaves
    // the box open is followed by a click on the last button.
    void answers_data() {
        QTest::addColumn<int32_t>("flags");
        QTest::addColumn<QString>("how");
        QTest::addColumn<bool>("tick");
        QTest::addColumn<int32_t>("result");
        QTest::addColumn<bool>("closedByKey");
        QTest::newRow("Yes to All, ticked") << (MsgBox::YesToAllNo | MsgBox::CheckBox) << "second"
                                            << true << MsgBox::YesToAll + MsgBox::Ticked << true;
        QTest::newRow("type 9 ignores Escape")
            << MsgBox::YesToAllNo << "esc" << false << MsgBox::No << false;
        QTest::newRow("type 10 Escape is No")
            << MsgBox::YesToAllNoCancel << "esc" << false << MsgBox::No << true;
        QTest::newRow("OK, Cancel close box")
            << MsgBox::OKCancel << "close" << false << MsgBox::Cancel << true;
        QTest::newRow("Enter on the second") << (MsgBox::YesToAllNo | MsgBox::DefaultButton2)
                                             << "enter" << false << MsgBox::YesToAll << true;
        QTest::newRow("fourth default falls back to the first")
            << (MsgBox::YesNo | 0x300) << "enter" << false << MsgBox::Yes << true;
    }
    void answers() {
        QFETCH(int32_t, flags);
        QFETCH(QString, how);
        QFETCH(bool, tick);
        QFETCH(int32_t, result);
        QFETCH(bool, closedByKey);
        bool stayedOpen = false;
        MsgBox::SetAnswerProvider([&](QMessageBox& box) {
            if (tick && box.checkBox())
                box.checkBox()->click();
            if (how == "second")
                return box.buttons().at(1)->click();
            if (how == "esc")
                QTest::keyClick(&box, Qt::Key_Escape);
            else if (how == "enter")
                QTest::keyClick(&box, Qt::Key_Return);
            else
                box.close();
            if (box.isVisible()) {
                stayedOpen = true;
                box.buttons().last()->click();
            }
        });
        QCOMPARE(MsgBoxEx(QStringLiteral("Answer me"), flags), result);
        QCOMPARE(stayedOpen, !closedByKey);
        QVERIFY(!MsgBox::IsOpen());
    }

    // The application's name as caption; the text plain, its line ends as lines.
    void captionIconAndText() {
        QStringList seen;
        MsgBox::SetAnswerProvider([&](QMessageBox& box) {
            seen = {box.windowTitle(), box.text(), QString::number(box.icon()),
                    QString::number(box.textFormat())};
            box.buttons().first()->click();
        });
        QApplication::setApplicationDisplayName(QStringLiteral("Brix Test"));
        MsgBoxEx(QStringLiteral("<b>a</b>\r\nb"), MsgBox::Exclamation);
        QCOMPARE(seen,
                 (QStringList{"Brix Test", "<b>a</b>\nb", QString::number(QMessageBox::Warning),
                              QString::number(Qt::PlainText)}));
    }

    // While a box is up, another call shows nothing and gives 0; afterwards boxes work again.
    void aSecondBoxIsRefused() {
        int32_t nested = -1;
        int shown = 0;
        MsgBox::SetAnswerProvider([&](QMessageBox& box) {
            ++shown;
            if (nested == -1)
                nested = MsgBoxEx(QStringLiteral("inner"), MsgBox::YesNo);
            box.buttons().last()->click();
        });
        QCOMPARE(MsgBoxEx(QStringLiteral("outer"), MsgBox::YesNo), MsgBox::No);
        QCOMPARE(nested, 0);
        QCOMPARE(MsgBoxEx(QStringLiteral("again"), MsgBox::YesNo), MsgBox::No);
        QCOMPARE(shown, 2);
    }

    // An owner that stays on top would cover the box; it gives that up.
    void ownerStaysOnTopNoMore() {
        QMainWindow owner;
        owner.setWindowFlag(Qt::WindowStaysOnTopHint, true);
        owner.show();
        QWidget* parent = nullptr;
        MsgBox::SetAnswerProvider([&](QMessageBox& box) {
            parent = box.parentWidget();
            box.buttons().first()->click();
        });
        MsgBoxEx(QStringLiteral("x"), 0, QString(), QString(), &owner);
        QCOMPARE(parent, &owner);
        QVERIFY(!(owner.windowFlags() & Qt::WindowStaysOnTopHint));
    }
};

BRIX_TEST_MAIN(tst_MsgBoxEx)
#include "tst_MsgBoxEx.moc"
