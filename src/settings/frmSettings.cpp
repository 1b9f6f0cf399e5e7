#include "settings/frmSettings.h"

#include "language/clsKeywords.h"
#include "language/frmKeywords.h"
#include "settings/ColorCombo.h"
#include "settings/HighlightPreview.h"
#include "settings/Moriox.h"
#include "support/MsgBoxEx.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFontDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

template <typename T> T* named(T* widget, const char* name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QLineEdit* numberField(const char* name, QWidget* parent) {
    auto* field = named(new QLineEdit(parent), name);
    field->setMaxLength(6);
    field->setMaximumWidth(field->fontMetrics().horizontalAdvance(QStringLiteral("0000000")) + 16);
    return field;
}

QLabel* buddyLabel(const char* name, const QString& text, QWidget* buddy, QWidget* parent) {
    auto* label = named(new QLabel(text, parent), name);
    label->setBuddy(buddy);
    return label;
}

// One of the two groups of indent options for comment lines: None, Margin, Code.
QGroupBox* indentGroup(const char* frame, const char* option, const QString& title,
                       std::array<QRadioButton*, 3>& buttons, QWidget* parent) {
    auto* group = named(new QGroupBox(title, parent), frame);
    auto* layout = new QHBoxLayout(group);
    const char* texts[] = {"None", "Margin", "Code"};
    for (size_t i = 0; i < buttons.size(); ++i) {
        buttons[i] = named(new QRadioButton(QLatin1String(texts[i]), group), option);
        layout->addWidget(buttons[i]);
    }
    layout->addStretch();
    return group;
}

} // namespace

frmSettings::frmSettings(Moriox& settings, int tab, DocumentsOpen documentsOpen, QWidget* owner)
    : QDialog(owner), settings_(settings), copy_(settings),
      documentsOpen_(std::move(documentsOpen)) {
    setObjectName(QStringLiteral("frmSettings"));
    setWindowTitle(QStringLiteral("Brix Settings"));
    tabStrip_ = named(new QTabWidget(this), "TabStrip");
    tabStrip_->addTab(buildGeneral(), QStringLiteral("&General"));
    tabStrip_->addTab(buildHighlight(), QStringLiteral("&Highlight"));
    tabStrip_->addTab(buildTools(), QStringLiteral("&Tools"));
    tabStrip_->setCurrentIndex(std::clamp(tab, 1, 3) - 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("OKButton"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("CancelButton"));
    connect(buttons, &QDialogButtonBox::accepted, this, &frmSettings::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &frmSettings::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabStrip_);
    layout->addWidget(buttons);
    fill();
}

frmSettings::~frmSettings() = default;

bool frmSettings::ShowSettings(Moriox& settings, int tab, DocumentsOpen documentsOpen,
                               QWidget* owner) {
    frmSettings dialog(settings, tab, std::move(documentsOpen), owner);
    return dialog.exec() == QDialog::Accepted;
}

QWidget* frmSettings::buildGeneral() {
    auto* page = named(new QWidget, "TabPanel1");

    auto* font = named(new QGroupBox(QStringLiteral("Font"), page), "Frame2");
    lblFontName_ = named(new QLabel(font), "lblFontName");
    lblFontSize_ = named(new QLabel(font), "lblFontSize");
    chkMonospace_ =
        named(new QCheckBox(QStringLiteral("&Only list &monospaced fonts"), font), "chkMonospace");
    auto* cmdChangeFont =
        named(new QPushButton(QStringLiteral("&Select font..."), font), "cmdChangeFont");
    auto* fontLayout = new QGridLayout(font);
    fontLayout->addWidget(lblFontName_, 0, 0);
    fontLayout->addWidget(lblFontSize_, 0, 1);
    fontLayout->addWidget(cmdChangeFont, 0, 2);
    fontLayout->addWidget(chkMonospace_, 1, 0, 1, 3);
    fontLayout->setColumnStretch(0, 1);
    switches_.emplace_back(chkMonospace_, &Moriox::FontMono);

    auto* checks = new QVBoxLayout;
    const struct {
        const char* name;
        const char* text;
        bool Moriox::*member;
    } rows[] = {
        {"chkHighlight", "Enable &BASIC syntax highlighting", &Moriox::Highlight},
        {"chkLineWrap", "Enable line &wrapping", &Moriox::LineWrap},
        {"chkAutoRecover", "Automatic document recover&y", &Moriox::AutoRecover},
        {"chkColorPrinting", "Use color when &printing", &Moriox::ColorPrinting},
        {"chkLocking", "Use &record locking when reading from host database",
         &Moriox::RecordLocking},
        {"chkLargeIcons", "Show large &icons on toolbar", &Moriox::LargeToolbarIcons},
    };
    for (const auto& row : rows) {
        auto* box = named(new QCheckBox(QLatin1String(row.text), page), row.name);
        checks->addWidget(box);
        switches_.emplace_back(box, row.member);
    }
    chkMinMaxClose_ =
        named(new QCheckBox(QStringLiteral("Show document min, ma&x && close buttons "), page),
              "chkMinMaxClose");
    checks->addWidget(chkMinMaxClose_);

    txtRecentFiles_ = numberField("txtRecentFiles", page);
    auto* recent = new QHBoxLayout;
    recent->addWidget(
        buddyLabel("Label7", QStringLiteral("Recent &files:"), txtRecentFiles_, page));
    recent->addWidget(txtRecentFiles_);
    recent->addStretch();
    checks->addLayout(recent);

    auto* keywords = named(new QGroupBox(QStringLiteral("Keywords"), page), "Frame5");
    chkCaseSensitive_ =
        named(new QCheckBox(QStringLiteral("&Case sensitive"), keywords), "chkCaseSensitive");
    auto* cmdLKW = named(new QPushButton(QStringLiteral("&Language..."), keywords), "cmdLKW");
    auto* cmdUKW = named(new QPushButton(QStringLiteral("&User..."), keywords), "cmdUKW");
    auto* keywordLayout = new QHBoxLayout(keywords);
    keywordLayout->addWidget(chkCaseSensitive_);
    keywordLayout->addStretch();
    keywordLayout->addWidget(cmdLKW);
    keywordLayout->addWidget(cmdUKW);

    auto* layout = new QVBoxLayout(page);
    layout->addWidget(font);
    layout->addLayout(checks);
    layout->addWidget(keywords);
    layout->addStretch();

    for (const auto& [box, member] : switches_) {
        connect(box, &QCheckBox::toggled, this, [this, member = member](bool checked) {
            if (!filling_)
                copy_.Copy().*member = checked;
        });
    }
    connect(chkMinMaxClose_, &QCheckBox::clicked, this, &frmSettings::minMaxCloseClicked);
    connect(chkCaseSensitive_, &QCheckBox::toggled, this, [this](bool checked) {
        if (!filling_)
            copy_.Copy().Keywords->SetCaseSensitive(checked);
    });
    connect(txtRecentFiles_, &QLineEdit::textChanged, this,
            [this] { numberEdited(txtRecentFiles_); });
    connect(cmdChangeFont, &QPushButton::clicked, this, &frmSettings::ChangeFont);
    connect(cmdLKW, &QPushButton::clicked, this, &frmSettings::EditLanguageKeywords);
    connect(cmdUKW, &QPushButton::clicked, this, &frmSettings::EditUserKeywords);
    return page;
}

QWidget* frmSettings::buildHighlight() {
    auto* page = named(new QWidget, "TabPanel2");
    auto* grid = new QGridLayout;
    grid->addWidget(named(new QLabel(QStringLiteral("Code Element"), page), "VPStatic2"), 0, 0);
    grid->addWidget(named(new QLabel(QStringLiteral("Highlight Color"), page), "VPStatic1"), 0, 1);
    grid->addWidget(named(new QLabel(QStringLiteral("Style"), page), "VPStatic3"), 0, 2, 1, 2);
    for (int row = 0; row < SettingsCopy::RowCount; ++row) {
        const QByteArray index = QByteArray::number(row);
        auto* label = new QLabel(SettingsCopy::RowLabel(row), page);
        label->setObjectName(QLatin1String("lblColor") + QLatin1String(index));
        cbColor_[row] = new ColorCombo(page);
        cbColor_[row]->setObjectName(QLatin1String("cbColor") + QLatin1String(index));
        label->setBuddy(cbColor_[row]);
        grid->addWidget(label, row + 1, 0);
        grid->addWidget(cbColor_[row], row + 1, 1);
        connect(cbColor_[row], &ColorCombo::ValueChosen, this, [this, row](int32_t value) {
            if (filling_)
                return;
            copy_.SetColor(row, value);
            refreshPreview();
        });
        if (!SettingsCopy::HasStyle(row))
            continue;
        chkBold_[row] = new QCheckBox(QStringLiteral("Bold"), page);
        chkBold_[row]->setObjectName(QLatin1String("chkBold") + QLatin1String(index));
        chkItalic_[row] = new QCheckBox(QStringLiteral("Italic"), page);
        chkItalic_[row]->setObjectName(QLatin1String("chkItalic") + QLatin1String(index));
        grid->addWidget(chkBold_[row], row + 1, 2);
        grid->addWidget(chkItalic_[row], row + 1, 3);
        const auto styleBit = [this, row](int16_t bit) {
            return [this, row, bit](bool checked) {
                if (filling_)
                    return;
                copy_.SetStyleBit(row, bit, checked);
                refreshPreview();
            };
        };
        connect(chkBold_[row], &QCheckBox::toggled, this, styleBit(1));
        connect(chkItalic_[row], &QCheckBox::toggled, this, styleBit(2));
    }
    grid->setRowStretch(SettingsCopy::RowCount + 1, 1);

    preview_ = new HighlightPreview(page);
    auto* layout = new QHBoxLayout(page);
    layout->addLayout(grid);
    layout->addWidget(preview_, 1);
    return page;
}

QWidget* frmSettings::buildTools() {
    auto* page = named(new QWidget, "TabPanel3");

    auto* compile = named(new QGroupBox(QStringLiteral("Compile"), page), "Frame4");
    txtCommand_ = named(new QLineEdit(compile), "txtCommand");
    txtOptions_ = named(new QLineEdit(compile), "txtOptions");
    auto* compileLayout = new QFormLayout(compile);
    compileLayout->addRow(buddyLabel("Label5", QStringLiteral("&Command"), txtCommand_, compile),
                          txtCommand_);
    compileLayout->addRow(buddyLabel("Label6", QStringLiteral("&Options"), txtOptions_, compile),
                          txtOptions_);

    auto* format = named(new QGroupBox(QStringLiteral("Format"), page), "Frame3");
    txtTabSize_ = numberField("txtTabSize", format);
    txtMargin_ = numberField("txtMargin", format);
    auto* tabLabel = buddyLabel("Label3", QStringLiteral("Tab &size"), txtTabSize_, format);
    const QString tabTip = QStringLiteral("Tab size is used in editor and Format tool");
    tabLabel->setToolTip(tabTip);
    txtTabSize_->setToolTip(tabTip);
    auto* numbers = new QFormLayout;
    numbers->addRow(tabLabel, txtTabSize_);
    numbers->addRow(buddyLabel("Label4", QStringLiteral("&Margin"), txtMargin_, format),
                    txtMargin_);
    auto* formatLayout = new QVBoxLayout(format);
    formatLayout->addLayout(numbers);
    formatLayout->addWidget(indentGroup("frIndentStar", "optIndentStar",
                                        QStringLiteral("* comment line &indent"), optIndentStar_,
                                        format));
    formatLayout->addWidget(indentGroup("frBangComment", "optIndentBang",
                                        QStringLiteral("! comment li&ne indent"), optIndentBang_,
                                        format));

    auto* layout = new QVBoxLayout(page);
    layout->addWidget(compile);
    layout->addWidget(format);
    layout->addStretch();

    connect(txtCommand_, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (!filling_)
            copy_.Copy().CompileCommand = text;
    });
    connect(txtOptions_, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (!filling_)
            copy_.Copy().CompileOptions = text;
    });
    connect(txtTabSize_, &QLineEdit::textChanged, this, [this] { numberEdited(txtTabSize_); });
    connect(txtMargin_, &QLineEdit::textChanged, this, [this] { numberEdited(txtMargin_); });
    for (int16_t value = 0; value < 3; ++value) {
        connect(optIndentStar_[value], &QRadioButton::toggled, this, [this, value](bool on) {
            if (on && !filling_)
                copy_.Copy().IndentStar = value;
        });
        connect(optIndentBang_[value], &QRadioButton::toggled, this, [this, value](bool on) {
            if (on && !filling_)
                copy_.Copy().IndentBang = value;
        });
    }
    return page;
}

void frmSettings::fill() {
    filling_ = true;
    const Moriox& copy = copy_.Copy();
    showFont();
    for (const auto& [box, member] : switches_)
        box->setChecked(copy.*member);
    chkMinMaxClose_->setChecked(copy.MinMaxClose);
    chkCaseSensitive_->setChecked(copy.Keywords->CaseSensitive());
    txtRecentFiles_->setText(QString::number(copy.RecentList->ListSize()));
    for (int row = 0; row < SettingsCopy::RowCount; ++row) {
        cbColor_[row]->SetValue(copy_.Color(row));
        if (!SettingsCopy::HasStyle(row))
            continue;
        chkBold_[row]->setChecked(copy_.Style(row) & 1);
        chkItalic_[row]->setChecked(copy_.Style(row) & 2);
    }
    txtCommand_->setText(copy.CompileCommand);
    txtOptions_->setText(copy.CompileOptions);
    txtTabSize_->setText(QString::number(copy.TabSize));
    txtMargin_->setText(QString::number(copy.Margin));
    if (copy.IndentStar >= 0 && copy.IndentStar < 3)
        optIndentStar_[copy.IndentStar]->setChecked(true);
    if (copy.IndentBang >= 0 && copy.IndentBang < 3)
        optIndentBang_[copy.IndentBang]->setChecked(true);
    filling_ = false;
    refreshPreview();
}

void frmSettings::showFont() {
    const Moriox& copy = copy_.Copy();
    // An empty name stands for the default font, as the editor reads it.
    const QString name = copy.FontName.isEmpty() ? Moriox::DefaultFontName() : copy.FontName;
    lblFontName_->setText(name);
    lblFontSize_->setText(copy.FontSize + QStringLiteral(" pt"));
    QFont shown = lblFontName_->font();
    shown.setFamily(name);
    lblFontName_->setFont(shown);
}

void frmSettings::refreshPreview() {
    preview_->ShowSettings(copy_.Copy());
}

void frmSettings::numberEdited(QLineEdit* field) {
    const QString text = SettingsCopy::NonNegativeText(field->text());
    if (text != field->text()) {
        field->setText(text);
        return;
    }
    if (filling_ || field == txtRecentFiles_)
        return;
    copy_.ReadFormatNumbers(txtTabSize_->text(), txtMargin_->text());
    refreshPreview();
}

void frmSettings::minMaxCloseClicked(bool checked) {
    if (filling_)
        return;
    const bool open = documentsOpen_ && documentsOpen_();
    if (copy_.SetMinMaxClose(checked, open, settings_))
        return;
    MsgBoxEx(SettingsCopy::MinMaxCloseRefusal(), MsgBox::Exclamation, QStringLiteral("Brix"),
             QString(), this);
    filling_ = true;
    chkMinMaxClose_->setChecked(settings_.MinMaxClose);
    filling_ = false;
}

std::unique_ptr<QFontDialog> frmSettings::MakeFontDialog() {
    const Moriox& copy = copy_.Copy();
    QFont current(copy.FontName);
    bool ok = false;
    const int size = copy.FontSize.toInt(&ok);
    if (ok && size > 0)
        current.setPointSize(size);
    auto dialog = std::make_unique<QFontDialog>(current, this);
    dialog->setWindowTitle(QStringLiteral("Font"));
    if (copy.FontMono)
        dialog->setOption(QFontDialog::MonospacedFonts);
    return dialog;
}

void frmSettings::ChangeFont() {
    const std::unique_ptr<QFontDialog> dialog = MakeFontDialog();
    if (dialog->exec() == QDialog::Accepted)
        TakeFont(dialog->selectedFont());
}

void frmSettings::TakeFont(const QFont& font) {
    Moriox& copy = copy_.Copy();
    copy.FontName = font.family();
    if (font.pointSize() > 0)
        copy.FontSize = QString::number(font.pointSize());
    showFont();
    refreshPreview();
}

void frmSettings::EditLanguageKeywords() {
    if (frmKeywords::EditKeywords(*copy_.Copy().Keywords, 2,
                                  QStringLiteral("Define Language Keywords"), this))
        refreshPreview();
}

void frmSettings::EditUserKeywords() {
    if (frmKeywords::EditKeywords(*copy_.Copy().Keywords, 4, QStringLiteral("Define User Keywords"),
                                  this))
        refreshPreview();
}

void frmSettings::accept() {
    copy_.ReadListSize(txtRecentFiles_->text());
    copy_.ReadFormatNumbers(txtTabSize_->text(), txtMargin_->text());
    copy_.CommitTo(settings_);
    QDialog::accept();
}
