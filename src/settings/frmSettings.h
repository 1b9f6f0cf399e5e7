#pragma once

#include "settings/SettingsCopy.h"

#include <QDialog>
#include <QPointer>
#include <array>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

class ColorCombo;
class HighlightPreview;
class Moriox;
class QCheckBox;
class QFontDialog;
class QLabel;
class QLineEdit;
class QRadioButton;
class QTabWidget;

// "Brix Settings": the settings on three tabs, edited in a working copy. OK merges the
// copy into the settings; Cancel drops it. Nothing is written to the store here.
class frmSettings : public QDialog {
    Q_OBJECT

public:
    // The tabs, as the commands name them.
    enum Tab { General = 1, Highlight = 2, Tools = 3 };
    // Tells whether any document is open; the document form switch waits for none.
    using DocumentsOpen = std::function<bool()>;

    frmSettings(Moriox& settings, int tab, DocumentsOpen documentsOpen, QWidget* owner = nullptr);
    ~frmSettings() override;

    // Shows the dialog modally on the given tab; true when OK merged the changes.
    static bool ShowSettings(Moriox& settings, int tab, DocumentsOpen documentsOpen,
                             QWidget* owner = nullptr);

    const Moriox& Working() const { return copy_.Copy(); }

    // What the buttons do, without their dialogs where a test can't answer them.
    void ChangeFont();
    // The font dialog, set up as ChangeFont shows it.
    std::unique_ptr<QFontDialog> MakeFontDialog();
    void TakeFont(const QFont& font);
    void EditLanguageKeywords();
    void EditUserKeywords();

    void accept() override;

private:
    QWidget* buildGeneral();
    QWidget* buildHighlight();
    QWidget* buildTools();
    void fill();
    void showFont();
    void refreshPreview();
    void numberEdited(QLineEdit* field);
    void minMaxCloseClicked(bool checked);

    Moriox& settings_;
    SettingsCopy copy_;
    DocumentsOpen documentsOpen_;
    // Set while the controls are filled, so that their change handlers keep still.
    bool filling_ = false;

    QTabWidget* tabStrip_ = nullptr;
    QLabel* lblFontName_ = nullptr;
    QLabel* lblFontSize_ = nullptr;
    QCheckBox* chkMonospace_ = nullptr;
    QCheckBox* chkMinMaxClose_ = nullptr;
    QCheckBox* chkCaseSensitive_ = nullptr;
    QLineEdit* txtRecentFiles_ = nullptr;
    QLineEdit* txtCommand_ = nullptr;
    QLineEdit* txtOptions_ = nullptr;
    QLineEdit* txtTabSize_ = nullptr;
    QLineEdit* txtMargin_ = nullptr;
    std::array<QRadioButton*, 3> optIndentStar_{};
    std::array<QRadioButton*, 3> optIndentBang_{};
    std::array<ColorCombo*, SettingsCopy::RowCount> cbColor_{};
    std::array<QCheckBox*, SettingsCopy::RowCount> chkBold_{};
    std::array<QCheckBox*, SettingsCopy::RowCount> chkItalic_{};
    // The check boxes of the General tab with the member each one edits.
    std::vector<std::pair<QCheckBox*, bool Moriox::*>> switches_;
    HighlightPreview* preview_ = nullptr;
};
