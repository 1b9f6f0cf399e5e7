#include "documents/frmBrowse.h"

#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
constexpr int kIsFolderRole = Qt::UserRole + 1;
} // namespace

frmBrowse::frmBrowse(const QString& caption, const std::shared_ptr<mvResource>& start,
                     const QString& extension, bool multiple, bool recordLocking, QWidget* owner)
    : QDialog(owner), model_(caption, start, extension, multiple, recordLocking) {
    setWindowTitle(caption);
    auto* layout = new QVBoxLayout(this);

    auto* where = new QHBoxLayout;
    optHost_ = new QRadioButton(tr("Host items"), this);
    optLocal_ = new QRadioButton(tr("Local files"), this);
    where->addWidget(optHost_);
    where->addWidget(optLocal_);
    where->addStretch();
    layout->addLayout(where);

    pages_ = new QStackedWidget(this);
    auto* hostPage = new QWidget(pages_);
    auto* hostForm = new QFormLayout(hostPage);
    cboHost_ = new QComboBox(hostPage);
    cboAccount_ = new QComboBox(hostPage);
    cboAccount_->setEditable(true);
    cboFile_ = new QComboBox(hostPage);
    cboFile_->setEditable(true);
    lstItems_ = new QListWidget(hostPage);
    hostForm->addRow(tr("Host:"), cboHost_);
    hostForm->addRow(tr("Account:"), cboAccount_);
    hostForm->addRow(tr("File:"), cboFile_);
    hostForm->addRow(lstItems_);
    pages_->addWidget(hostPage);

    auto* localPage = new QWidget(pages_);
    auto* localLayout = new QVBoxLayout(localPage);
    auto* folderRow = new QHBoxLayout;
    txtFolder_ = new QLineEdit(localPage);
    auto* cmdUp = new QToolButton(localPage);
    cmdUp->setIcon(style()->standardIcon(QStyle::SP_FileDialogToParent));
    cmdUp->setToolTip(tr("Up one level"));
    folderRow->addWidget(new QLabel(tr("Look in:"), localPage));
    folderRow->addWidget(txtFolder_, 1);
    folderRow->addWidget(cmdUp);
    localLayout->addLayout(folderRow);
    lstLocal_ = new QListWidget(localPage);
    localLayout->addWidget(lstLocal_);
    cboType_ = new QComboBox(localPage);
    if (!extension.isEmpty())
        cboType_->addItem(tr("Text files (*.%1)").arg(extension));
    cboType_->addItem(tr("All files (*)"));
    localLayout->addWidget(cboType_);
    pages_->addWidget(localPage);
    layout->addWidget(pages_, 1);

    lblNote_ = new QLabel(model_.Note(), this);
    lblNote_->setWordWrap(true);
    lblNote_->setVisible(!model_.Note().isEmpty());
    lblNote_->setObjectName(QStringLiteral("lblNote"));
    layout->addWidget(lblNote_);
    auto* nameRow = new QHBoxLayout;
    lblName_ = new QLabel(this);
    txtName_ = new QLineEdit(model_.InitialName(), this);
    nameRow->addWidget(lblName_);
    nameRow->addWidget(txtName_, 1);
    layout->addLayout(nameRow);
    chkReadOnly_ = new QCheckBox(tr("Open read only"), this);
    chkReadOnly_->setVisible(model_.OffersReadOnly());
    layout->addWidget(chkReadOnly_);
    lblError_ = new QLabel(this);
    lblError_->setWordWrap(true);
    layout->addWidget(lblError_);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(caption);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmBrowse::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &frmBrowse::reject);

    const auto selection =
        multiple ? QAbstractItemView::ExtendedSelection : QAbstractItemView::SingleSelection;
    lstItems_->setSelectionMode(selection);
    lstLocal_->setSelectionMode(selection);

    connect(optHost_, &QRadioButton::toggled, this, [this](bool on) {
        model_.SetMode(on ? BrowseModel::Mode::Host : BrowseModel::Mode::Local);
        showMode();
    });
    connect(cboHost_, &QComboBox::currentTextChanged, this, [this](const QString& text) {
        if (filling_)
            return;
        model_.SetServer(text);
        fillAccounts();
    });
    connect(cboAccount_, &QComboBox::currentTextChanged, this, [this](const QString& text) {
        if (filling_)
            return;
        model_.SetAccount(text);
        fillFiles();
    });
    connect(cboFile_, &QComboBox::currentTextChanged, this, [this](const QString& text) {
        if (filling_)
            return;
        model_.SetFile(text);
        fillItems();
    });
    connect(txtFolder_, &QLineEdit::returnPressed, this, [this] {
        model_.SetLocalFolder(txtFolder_->text());
        fillLocal();
    });
    connect(cmdUp, &QToolButton::clicked, this, [this] {
        model_.LocalUp();
        fillLocal();
    });
    connect(cboType_, &QComboBox::currentIndexChanged, this, [this, extension](int index) {
        model_.FilterByExtension = !extension.isEmpty() && index == 0;
        fillLocal();
    });
    for (QListWidget* list : {lstItems_, lstLocal_}) {
        connect(list, &QListWidget::itemSelectionChanged, this,
                [this, list] { selectionToName(list); });
        connect(list, &QListWidget::itemActivated, this, &frmBrowse::activate);
    }

    optHost_->setObjectName(QStringLiteral("optHost"));
    optLocal_->setObjectName(QStringLiteral("optLocal"));
    cboHost_->setObjectName(QStringLiteral("cboHost"));
    cboAccount_->setObjectName(QStringLiteral("cboAccount"));
    cboFile_->setObjectName(QStringLiteral("cboFile"));
    lstItems_->setObjectName(QStringLiteral("lstItems"));
    txtFolder_->setObjectName(QStringLiteral("txtFolder"));
    lstLocal_->setObjectName(QStringLiteral("lstLocal"));
    cboType_->setObjectName(QStringLiteral("cboType"));
    txtName_->setObjectName(QStringLiteral("txtName"));
    chkReadOnly_->setObjectName(QStringLiteral("chkReadOnly"));

    fillServers();
    fillLocal();
    (model_.CurrentMode() == BrowseModel::Mode::Host ? optHost_ : optLocal_)->setChecked(true);
    showMode();
    resize(520, 480);
    txtName_->setFocus();
}

std::vector<std::shared_ptr<mvResource>> frmBrowse::Run(const QString& caption,
                                                        const std::shared_ptr<mvResource>& start,
                                                        const QString& extension, bool multiple,
                                                        bool recordLocking, QWidget* owner) {
    frmBrowse dialog(caption, start, extension, multiple, recordLocking, owner);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.Chosen();
}

void frmBrowse::showMode() {
    const bool host = model_.CurrentMode() == BrowseModel::Mode::Host;
    pages_->setCurrentIndex(host ? 0 : 1);
    lblName_->setText(host ? tr("Item ID:") : tr("File name:"));
}

void frmBrowse::showError() {
    lblError_->setText(model_.LastError);
}

void frmBrowse::refill(QComboBox* box, const QStringList& names, const QString& current) {
    // Filling a box changes its text; that is no choice of the user.
    filling_ = true;
    box->clear();
    box->addItems(names);
    box->setCurrentText(current);
    filling_ = false;
    showError();
}

void frmBrowse::fillServers() {
    refill(cboHost_, model_.Servers(), model_.Server());
    fillAccounts();
}

void frmBrowse::fillAccounts() {
    const QString account = model_.Account();
    refill(cboAccount_, model_.Accounts(), account);
    fillFiles();
}

void frmBrowse::fillFiles() {
    const QString file = model_.File();
    refill(cboFile_, model_.Files(), file);
    fillItems();
}

void frmBrowse::fillItems() {
    lstItems_->clear();
    lstItems_->addItems(model_.Items());
    // The item the browser starts with shows selected when the file has it.
    const auto named = lstItems_->findItems(txtName_->text(), Qt::MatchFixedString);
    if (!named.isEmpty())
        lstItems_->setCurrentItem(named.first());
    showError();
}

void frmBrowse::fillLocal() {
    txtFolder_->setText(model_.LocalFolder());
    lstLocal_->clear();
    const QIcon folderIcon = style()->standardIcon(QStyle::SP_DirIcon);
    const QIcon fileIcon = style()->standardIcon(QStyle::SP_FileIcon);
    for (const auto& entry : model_.LocalEntries()) {
        auto* item =
            new QListWidgetItem(entry.Container ? folderIcon : fileIcon, entry.Name, lstLocal_);
        item->setData(kIsFolderRole, entry.Container);
    }
    showError();
}

void frmBrowse::selectionToName(QListWidget* list) {
    QStringList names;
    for (QListWidgetItem* item : list->selectedItems()) {
        if (!item->data(kIsFolderRole).toBool())
            names << item->text();
    }
    if (!names.isEmpty())
        txtName_->setText(model_.JoinNames(names));
}

void frmBrowse::activate(QListWidgetItem* item) {
    if (item->data(kIsFolderRole).toBool()) {
        model_.Enter(item->text());
        fillLocal();
        return;
    }
    txtName_->setText(item->text());
    accept();
}

void frmBrowse::accept() {
    const QStringList names = model_.SplitNames(txtName_->text());
    if (names.isEmpty())
        return;
    if (names.size() == 1 && model_.Enter(names.first())) {
        txtName_->clear();
        fillLocal();
        return;
    }
    chosen_ = model_.Take(
        names, model_.OffersReadOnly() && chkReadOnly_->isChecked(),
        [this](const QString& question) {
            return (BrixMessage(question, MsgBox::YesNo | MsgBox::Question, this) &
                    ~MsgBox::Ticked) == MsgBox::Yes;
        },
        [this](const QString& message) { BrixMessage(message, MsgBox::Exclamation, this); });
    if (!chosen_.empty())
        QDialog::accept();
}
