#include "BoxAnswers.h"
#include "TestEnv.h"

#include "language/ScintillaBuffer.h"
#include "language/clsKeywords.h"
#include "settings/ColorCombo.h"
#include "settings/HighlightPreview.h"
#include "settings/Moriox.h"
#include "settings/SettingsCopy.h"
#include "settings/frmSettings.h"
#include "settings/modColors.h"
#include "support/MsgBoxEx.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QFontDialog>
#include <QLineEdit>
#include <QRadioButton>

// The settings dialog driven through its own controls: each one writes its member of the
// working copy and nothing else, OK merges, Cancel leaves the settings as they were.
class tst_frmSettings : public QObject {
    Q_OBJECT
    std::unique_ptr<Moriox> settings;
    std::unique_ptr<Moriox> before;
    bool documentsOpen = false;

    std::unique_ptr<frmSettings> dialog(int tab = 1) {
        return std::make_unique<frmSettings>(*settings, tab, [this] { return documentsOpen; });
    }
    template <typename T> static T* child(frmSettings& form, const char* name) {
        return form.findChild<T*>(QLatin1String(name));
    }
    // Runs `act` on the next modal dialog of type T once it is up.
    template <typename T> static void whenShown(std::function<void(T&)> act) {
        QTimer::singleShot(0, [act] {
            if (auto* shown = qobject_cast<T*>(QApplication::activeModalWidget()))
                act(*shown);
        });
    }

private Q_SLOTS:
    void init() {
        settings = std::make_unique<Moriox>();
        settings->RecentList->SetListSize(8);
        before = settings->Clone();
        documentsOpen = false;
    }

    void textFieldsReachTheCopyOnOk() {
        auto form = dialog(3);
        child<QLineEdit>(*form, "txtCommand")->setText(QStringLiteral("BASIC -X"));
        child<QLineEdit>(*form, "txtTabSize")->setText(QStringLiteral("4"));
        child<QLineEdit>(*form, "txtMargin")->setText(QStringLiteral("oops"));
        child<QLineEdit>(*form, "txtRecentFiles")->setText(QStringLiteral("40"));
        form->findChildren<QRadioButton*>(QStringLiteral("optIndentStar")).at(2)->click();
        form->findChildren<QRadioButton*>(QStringLiteral("optIndentBang")).at(1)->click();
        QVERIFY(*settings == *before);
        form->accept();
        QCOMPARE(settings->CompileCommand, QStringLiteral("BASIC -X"));
        QCOMPARE(settings->TabSize, int16_t(4));
        QCOMPARE(settings->Margin, int16_t(0));
        QCOMPARE(settings->RecentList->ListSize(), int16_t(30));
        QCOMPARE(settings->IndentStar * 10 + settings->IndentBang, 21);
    }

    // A minus alone may stand while typing; the number never goes below zero.
    void numberFieldsNeverGoBelowZero() {
        auto form = dialog(3);
        for (const char* name : {"txtTabSize", "txtMargin", "txtRecentFiles"}) {
            auto* field = child<QLineEdit>(*form, name);
            field->clear();
            QTest::keyClick(field, Qt::Key_Minus);
            QCOMPARE(field->text(), QStringLiteral("-"));
            QTest::keyClick(field, Qt::Key_3);
            QCOMPARE(field->text(), QStringLiteral("0"));
        }
    }

    void styleBitsKeepTheOthers() {
        settings->ReservedStyle = 4 | 2;
        auto form = dialog(2);
        auto* bold = child<QCheckBox>(*form, "chkBold2");
        auto* italic = child<QCheckBox>(*form, "chkItalic2");
        QVERIFY(!bold->isChecked() && italic->isChecked());
        bold->click();
        italic->click();
        QCOMPARE(form->Working().ReservedStyle, int16_t(5));
        QCOMPARE(settings->ReservedStyle, int16_t(6));
    }

    void choosingAColour() {
        auto form = dialog(2);
        auto* comment = child<ColorCombo>(*form, "cbColor3");
        comment->Fill();
        comment->Choose(0); // the head entry
        QCOMPARE(form->Working().CommentColor, settings->CommentColor);
        comment->Choose(13);
        comment->Choose(18 + 5); // the system colours follow their head
        QCOMPARE(form->Working().CommentColor, modColors::SystemColorValue(5));

        whenShown<QColorDialog>([](QColorDialog& picker) {
            QCOMPARE(picker.currentColor(), modColors::ToQColor(modColors::SystemColorValue(5)));
            picker.setCurrentColor(QColor(0x12, 0x34, 0x56));
            picker.accept();
        });
        comment->Choose(comment->count() - 1);
        QCOMPARE(form->Working().CommentColor, 0x563412);
        whenShown<QColorDialog>([](QColorDialog& picker) { picker.reject(); });
        comment->Choose(comment->count() - 1);
        QCOMPARE(form->Working().CommentColor, 0x563412);
        QCOMPARE(settings->CommentColor, before->CommentColor);
    }

    // A document's form is fixed for the life of its window.
    void minMaxCloseWaitsForNoDocuments_data() {
        QTest::addColumn<bool>("open");
        QTest::newRow("documents open") << true;
        QTest::newRow("none open") << false;
    }
    void minMaxCloseWaitsForNoDocuments() {
        QFETCH(bool, open);
        documentsOpen = open;
        BoxAnswers answers;
        auto form = dialog();
        auto* box = child<QCheckBox>(*form, "chkMinMaxClose");
        box->click();
        QCOMPARE(box->isChecked(), !open);
        QCOMPARE(form->Working().MinMaxClose, !open);
        QCOMPARE(answers.Texts(),
                 open ? QStringList{SettingsCopy::MinMaxCloseRefusal()} : QStringList());
    }

    void fontDialogFollowsMonospace() {
        settings->FontName = QStringLiteral("Liberation Mono");
        settings->FontSize = QStringLiteral("13");
        auto form = dialog();
        auto fonts = form->MakeFontDialog();
        QVERIFY(fonts->testOption(QFontDialog::MonospacedFonts));
        QCOMPARE(fonts->currentFont().pointSize(), 13);
        child<QCheckBox>(*form, "chkMonospace")->click();
        QVERIFY(!form->MakeFontDialog()->testOption(QFontDialog::MonospacedFonts));
        form->TakeFont(QFont(QStringLiteral("Liberation Sans"), 15));
        QCOMPARE(form->Working().FontName, QStringLiteral("Liberation Sans"));
        QCOMPARE(form->Working().FontSize, QStringLiteral("15"));
    }

    void cancelLeavesEverything() {
        auto form = dialog(2);
        child<QCheckBox>(*form, "chkCaseSensitive")->click();
        child<QCheckBox>(*form, "chkBold1")->click();
        child<ColorCombo>(*form, "cbColor0")->Fill();
        child<ColorCombo>(*form, "cbColor0")->Choose(1);
        form->Working().Keywords->SetKeywordList(4, QStringLiteral(" "), QStringLiteral("FOO"));
        child<QLineEdit>(*form, "txtRecentFiles")->setText(QStringLiteral("1"));
        form->reject();
        QVERIFY(*settings == *before);
        QVERIFY(!settings->Keywords->Item(u"FOO"));
    }

    // The preview follows the copy before OK.
    void previewShowsTheCopy() {
        auto form = dialog(2);
        auto* preview = form->findChild<HighlightPreview*>();
        child<ColorCombo>(*form, "cbColor3")->Fill();
        child<ColorCombo>(*form, "cbColor3")->Choose(13);
        QCOMPARE(preview->SendScintilla(QsciScintillaBase::SCI_STYLEGETFORE,
                                        ScintillaBuffer::StyleOfKind(6)),
                 0x0000FFL);
    }
};

BRIX_TEST_MAIN(tst_frmSettings)
#include "tst_frmSettings.moc"
