#include "TestEnv.h"

#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

#include <QCheckBox>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

// The extended message box answered through its own buttons and keys.
class tst_MsgBoxEx : public QObject {
    Q_OBJECT

    static QStringList texts(QMessageBox& box) {
        QStringList result;
        for (QAbstractButton* button : box.buttons())
            result << button->text();
        return result;
    }
    static QAbstractButton* buttonFor(QMessageBox& box, int32_t answer) {
        for (QAbstractButton* button : box.buttons())
            if (button->property(MsgBox::AnswerProperty).toInt() == answer)
                return button;
        return nullptr;
    }

private Q_SLOTS:
    void cleanup() { MsgBox::SetAnswerProvider({}); }

    // The check box with its default or own words, and only when asked for.
    void buttonSets_data() {
        QTest::addColumn<int32_t>("type");
        QTest::addColumn<QString>("checkText"); // given to the call
        QTest::addColumn<QStringList>("buttons");
        QTest::addColumn<QString>("checkBox"); // as shown; empty: none
        const QString none;
        QTest::newRow("Yes, No, words without check box")
            << MsgBox::YesNo << "ignored" << QStringList{"&Yes", "&No"} << none;
        QTest::newRow("Retry, Cancel, check box")
            << (MsgBox::RetryCancel | MsgBox::CheckBox) << none << QStringList{"&Retry", "Cancel"}
            << "Do not show this &warning again";
        QTest::newRow("type 9, own words")
            << (MsgBox::YesToAllNo | MsgBox::CheckBox) << "&Skip these"
            << QStringList{"&Yes", "Yes to &All", "&No"} << "&Skip these";
    }
    void buttonSets() {
        QFETCH(int32_t, type);
        QFETCH(QString, checkText);
        QFETCH(QStringList, buttons);
        QFETCH(QString, checkBox);
        QStringList seen;
        QString seenCheck = QStringLiteral("<none>");
        MsgBox::SetAnswerProvider([&](QMessageBox& box) {
            seen = texts(box);
            seenCheck = box.checkBox() ? box.checkBox()->text() : QString();
            box.buttons().first()->click();
        });
        QVERIFY(MsgBoxEx(QStringLiteral("Pick"), type, QStringLiteral("Brix"), checkText) != 0);
        QCOMPARE(seen, buttons);
        QCOMPARE(seenCheck, checkBox);
    }

    // Each way of answering and the code it gives: a button (by its answer), "esc",
    // "enter", or "close" (the title bar's close box). A way that doesn't close the box is
    // followed by a click on the last button.
    void answers_data() {
        QTest::addColumn<int32_t>("flags");
        QTest::addColumn<QString>("how");
        QTest::addColumn<int32_t>("press");
        QTest::addColumn<bool>("tick");
        QTest::addColumn<int32_t>("result");
        QTest::addColumn<bool>("closedByKey");
        QTest::newRow("Yes to All, ticked")
            << (MsgBox::YesToAllNo | MsgBox::CheckBox) << "button" << MsgBox::YesToAll << true
            << MsgBox::YesToAll + MsgBox::Ticked << true;
        QTest::newRow("type 9 ignores Escape")
            << MsgBox::YesToAllNo << "esc" << 0 << false << MsgBox::No << false;
        QTest::newRow("type 9 ignores the close box")
            << MsgBox::YesToAllNo << "close" << 0 << false << MsgBox::No << false;
        QTest::newRow("type 10 Escape is No")
            << MsgBox::YesToAllNoCancel << "esc" << 0 << false << MsgBox::No << true;
        QTest::newRow("Yes, No, Cancel Escape")
            << MsgBox::YesNoCancel << "esc" << 0 << false << MsgBox::Cancel << true;
        QTest::newRow("OK Escape") << MsgBox::OKOnly << "esc" << 0 << false << MsgBox::OK << true;
        QTest::newRow("OK, Cancel close box")
            << MsgBox::OKCancel << "close" << 0 << false << MsgBox::Cancel << true;
        QTest::newRow("Enter on the second") << (MsgBox::YesToAllNo | MsgBox::DefaultButton2)
                                             << "enter" << 0 << false << MsgBox::YesToAll << true;
        QTest::newRow("fourth default falls back to the first")
            << (MsgBox::YesNo | 0x300) << "enter" << 0 << false << MsgBox::Yes << true;
    }
    void answers() {
        QFETCH(int32_t, flags);
        QFETCH(QString, how);
        QFETCH(int32_t, press);
        QFETCH(bool, tick);
        QFETCH(int32_t, result);
        QFETCH(bool, closedByKey);
        bool stayedOpen = false;
        MsgBox::SetAnswerProvider([&](QMessageBox& box) {
            if (tick && box.checkBox())
                box.checkBox()->click();
            if (how == "button") {
                buttonFor(box, press)->click();
                return;
            }
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

    // Caption, icon and text as given; the text is shown as plain text, line ends as lines.
    void captionIconAndText() {
        QString caption, text;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        Qt::TextFormat format = Qt::AutoText;
        MsgBox::SetAnswerProvider([&](QMessageBox& box) {
            caption = box.windowTitle();
            text = box.text();
            icon = box.icon();
            format = box.textFormat();
            box.buttons().first()->click();
        });
        QApplication::setApplicationDisplayName(QStringLiteral("Brix Test"));
        MsgBoxEx(QStringLiteral("<b>a</b>\r\nb"), MsgBox::Exclamation);
        QCOMPARE(caption, QStringLiteral("Brix Test"));
        QCOMPARE(text, QStringLiteral("<b>a</b>\nb"));
        QCOMPARE(icon, QMessageBox::Warning);
        QCOMPARE(format, Qt::PlainText);

        ShowError(QStringLiteral("Disk full."));
        QCOMPARE(caption, QStringLiteral("Brix"));
        QCOMPARE(text, QStringLiteral("The following error has occurred:\nDisk full."));
        QCOMPARE(icon, QMessageBox::Critical);
    }

    // While a box is up, another call shows nothing and gives 0; afterwards boxes work again.
    void aSecondBoxIsRefused() {
        int32_t nested = -1;
        int shown = 0;
        MsgBox::SetAnswerProvider([&](QMessageBox& box) {
            ++shown;
            if (nested == -1)
                nested = MsgBoxEx(QStringLiteral("inner"), MsgBox::YesNo);
            buttonFor(box, MsgBox::No)->click();
        });
        QCOMPARE(MsgBoxEx(QStringLiteral("outer"), MsgBox::YesNo), MsgBox::No);
        QCOMPARE(nested, 0);
        QCOMPARE(MsgBoxEx(QStringLiteral("again"), MsgBox::YesNo), MsgBox::No);
        QCOMPARE(shown, 2);
    }

    // A box found as the active modal window, without the provider, answers the same way.
    void answeredAsTheActiveModalWindow() {
        QTimer::singleShot(0, [] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box)
                return; // the comparison below then fails on the timeout's answer
            for (QAbstractButton* button : box->buttons())
                if (button->text() == QStringLiteral("Yes to &All"))
                    button->click();
        });
        QCOMPARE(MsgBoxEx(QStringLiteral("All?"), MsgBox::YesToAllNo), MsgBox::YesToAll);
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
