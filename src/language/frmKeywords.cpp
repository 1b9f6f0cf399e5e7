#include "language/frmKeywords.h"

#include "language/KeywordCheck.h"
#include "language/clsKeyword.h"
#include "language/clsKeywords.h"
#include "support/MsgBoxEx.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStringDecoder>
#include <QVBoxLayout>

namespace {

const QString kCrLf = QStringLiteral("\r\n");

QRadioButton* option(const char* name, const QString& text, QWidget* parent) {
    auto* button = new QRadioButton(text, parent);
    button->setObjectName(QLatin1String(name));
    return button;
}

QPushButton* button(const char* name, const QString& text, QWidget* parent) {
    auto* push = new QPushButton(text, parent);
    push->setObjectName(QLatin1String(name));
    push->setAutoDefault(false);
    return push;
}

} // namespace

frmKeywords::frmKeywords(clsKeywords& table, int32_t type, const QString& caption, QWidget* owner)
    : QDialog(owner), table_(table), work_(table.Clone()), type_(type) {
    setObjectName(QStringLiteral("frmKeywords"));
    setWindowTitle(caption);
    build();
    refreshList();
    wordEdited();
}

frmKeywords::~frmKeywords() = default;

bool frmKeywords::EditKeywords(clsKeywords& table, int32_t type, const QString& caption,
                               QWidget* owner) {
    frmKeywords dialog(table, type, caption, owner);
    return dialog.exec() == QDialog::Accepted;
}

void frmKeywords::build() {
    txtKeyword_ = new QLineEdit(this);
    txtKeyword_->setObjectName(QStringLiteral("txtKeyword"));
    auto* label = new QLabel(QStringLiteral("&Keyword:"), this);
    label->setBuddy(txtKeyword_);
    lstKeywords_ = new QListWidget(this);
    lstKeywords_->setObjectName(QStringLiteral("lstKeywords"));
    lstKeywords_->setSelectionMode(QAbstractItemView::ExtendedSelection);

    cmdAdd_ = button("cmdAdd", QStringLiteral("&Add"), this);
    cmdRemove_ = button("cmdRemove", QStringLiteral("&Remove"), this);
    auto* cmdImport = button("cmdImport", QStringLiteral("&Import..."), this);
    auto* cmdExport = button("cmdExport", QStringLiteral("E&xport..."), this);

    frBlock_ = new QGroupBox(this);
    frBlock_->setObjectName(QStringLiteral("frBlock"));
    optNone_ = option("optNone", QStringLiteral("&None"), frBlock_);
    optBegin_ = option("optBegin", QStringLiteral("&Begins a block"), frBlock_);
    optEnd_ = option("optEnd", QStringLiteral("&Ends a block"), frBlock_);
    optMid_ = option("optMid", QStringLiteral("&Middle of a block"), frBlock_);
    frBeginBlock_ = new QGroupBox(QStringLiteral("Begins a block"), frBlock_);
    frBeginBlock_->setObjectName(QStringLiteral("frBeginBlock"));
    optAny_ = option("optAny", QStringLiteral("Any&where on the line"), frBeginBlock_);
    optFirst_ =
        option("optFirst", QStringLiteral("Only if &first on its statement"), frBeginBlock_);
    optLast_ = option("optLast", QStringLiteral("Only if &last on its line"), frBeginBlock_);
    optNone_->setChecked(true);
    optAny_->setChecked(true);

    auto* beginLayout = new QVBoxLayout(frBeginBlock_);
    for (QRadioButton* b : {optAny_, optFirst_, optLast_})
        beginLayout->addWidget(b);
    auto* blockLayout = new QVBoxLayout(frBlock_);
    blockLayout->addWidget(optNone_);
    blockLayout->addWidget(optBegin_);
    blockLayout->addWidget(frBeginBlock_);
    blockLayout->addWidget(optEnd_);
    blockLayout->addWidget(optMid_);
    blockLayout->addStretch();

    auto* buttons = new QDialogButtonBox(this);
    auto* cmdOK = buttons->addButton(QDialogButtonBox::Ok);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    auto* cmdCancel = buttons->addButton(QDialogButtonBox::Cancel);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));

    auto* side = new QVBoxLayout;
    for (QPushButton* b : {cmdAdd_, cmdRemove_, cmdImport, cmdExport})
        side->addWidget(b);
    side->addStretch();

    auto* grid = new QGridLayout(this);
    grid->addWidget(label, 0, 0);
    grid->addWidget(txtKeyword_, 1, 0);
    grid->addWidget(lstKeywords_, 2, 0);
    grid->addLayout(side, 1, 1, 2, 1);
    grid->addWidget(frBlock_, 1, 2, 2, 1);
    grid->addWidget(buttons, 3, 0, 1, 3);
    grid->setRowStretch(2, 1);
    resize(sizeHint().width(), 420);

    connect(txtKeyword_, &QLineEdit::textChanged, this, &frmKeywords::wordEdited);
    connect(lstKeywords_, &QListWidget::itemSelectionChanged, this, &frmKeywords::wordSelected);
    connect(optBegin_, &QRadioButton::toggled, frBeginBlock_, &QWidget::setEnabled);
    connect(cmdAdd_, &QPushButton::clicked, this, &frmKeywords::AddKeyword);
    connect(cmdRemove_, &QPushButton::clicked, this, &frmKeywords::RemoveKeyword);
    connect(cmdImport, &QPushButton::clicked, this, &frmKeywords::importList);
    connect(cmdExport, &QPushButton::clicked, this, &frmKeywords::exportList);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmKeywords::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &frmKeywords::reject);
    frBeginBlock_->setEnabled(false);
    // Enter adds the word typed; OK is a click away.
    cmdAdd_->setDefault(true);
}

void frmKeywords::refreshList() {
    lstKeywords_->clear();
    for (int32_t i = 0; i < work_->Count(); ++i) {
        const clsKeyword& entry = work_->At(i);
        if (entry.KeywordType & type_) {
            auto* item = new QListWidgetItem(entry.Keyword + entry.Suffix(), lstKeywords_);
            item->setData(Qt::UserRole, entry.Keyword);
        }
    }
    cmdRemove_->setEnabled(false);
}

void frmKeywords::wordEdited() {
    const clsKeyword* entry = work_->Item(txtKeyword_->text().trimmed());
    const bool builtIn = entry && (entry->KeywordType & clsKeyword::TypeBlock);
    frBlock_->setTitle(builtIn ? QStringLiteral("Block indent for reserved keyword")
                               : QStringLiteral("Block indent for keyword"));
    if (builtIn)
        showBlock(entry->BlockFlags, true);
    else if (!frBlock_->isEnabled())
        showBlock(0, false);
    cmdAdd_->setEnabled(!txtKeyword_->text().trimmed().isEmpty());
}

void frmKeywords::wordSelected() {
    const QList<QListWidgetItem*> selected = lstKeywords_->selectedItems();
    cmdRemove_->setEnabled(!selected.isEmpty());
    if (selected.size() != 1)
        return;
    const QString word = selected.front()->data(Qt::UserRole).toString();
    if (const clsKeyword* entry = work_->Item(word)) {
        txtKeyword_->setText(entry->Keyword);
        showBlock(entry->BlockFlags, (entry->KeywordType & clsKeyword::TypeBlock) != 0);
    }
}

void frmKeywords::showBlock(int32_t blockFlags, bool builtIn) {
    // A built-in word's block behaviour is fixed: it is shown, not offered.
    frBlock_->setEnabled(!builtIn);
    optAny_->setChecked(true);
    switch (blockFlags) {
    case clsKeyword::BlockOpenFirst:
        optBegin_->setChecked(true);
        optFirst_->setChecked(true);
        break;
    case clsKeyword::BlockOpenLast:
        optBegin_->setChecked(true);
        optLast_->setChecked(true);
        break;
    default: {
        clsKeyword probe;
        probe.BlockFlags = blockFlags;
        switch (probe.BlockStyle()) {
        case 1:
            optBegin_->setChecked(true);
            break;
        case 2:
            optEnd_->setChecked(true);
            break;
        case 3:
            optMid_->setChecked(true);
            break;
        default:
            optNone_->setChecked(true);
        }
    }
    }
    frBeginBlock_->setEnabled(!builtIn && optBegin_->isChecked());
}

int32_t frmKeywords::blockOfOptions() const {
    if (optEnd_->isChecked())
        return clsKeyword::BlockClose;
    if (optMid_->isChecked())
        return clsKeyword::BlockMiddle;
    if (optBegin_->isChecked()) {
        if (optFirst_->isChecked())
            return clsKeyword::BlockOpenFirst;
        if (optLast_->isChecked())
            return clsKeyword::BlockOpenLast;
        return clsKeyword::BlockOpen;
    }
    return 0;
}

void frmKeywords::AddKeyword() {
    const QString word = txtKeyword_->text().trimmed();
    if (word.isEmpty())
        return;
    QString corrected;
    QString name;
    if (!KeywordCheck::Check(word, corrected, name)) {
        MsgBoxEx(KeywordCheck::Refusal(), MsgBox::Exclamation, QStringLiteral("Brix"), QString(),
                 this);
        return;
    }
    const QString suspects = KeywordCheck::Suspects(word, *work_);
    if (!suspects.isEmpty() &&
        MsgBoxEx(KeywordCheck::SuspectQuestion(word, suspects), MsgBox::YesNo | MsgBox::Question,
                 QStringLiteral("Brix"), QString(), this) != MsgBox::Yes)
        return;
    work_->AddKeyword(word, type_, blockOfOptions());
    refreshList();
    const QList<QListWidgetItem*> shown = lstKeywords_->findItems(word, Qt::MatchStartsWith);
    for (QListWidgetItem* item : shown)
        if (item->data(Qt::UserRole).toString() == word)
            lstKeywords_->scrollToItem(item);
    txtKeyword_->clear();
    txtKeyword_->setFocus();
}

void frmKeywords::RemoveKeyword() {
    const QList<QListWidgetItem*> selected = lstKeywords_->selectedItems();
    QStringList words;
    for (const QListWidgetItem* item : selected)
        words << item->data(Qt::UserRole).toString();
    for (const QString& word : words)
        work_->RemoveKeyword(word, type_);
    refreshList();
}

bool frmKeywords::ExportTo(const QString& path) {
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(work_->GetKeywordList(type_, kCrLf).toUtf8());
        if (file.commit())
            return true;
    }
    MsgBoxEx(QStringLiteral("The keywords could not be written to \"%1\": %2")
                 .arg(QDir::toNativeSeparators(path), file.errorString()),
             MsgBox::Exclamation, QStringLiteral("Brix"), QString(), this);
    return false;
}

bool frmKeywords::ImportFrom(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        MsgBoxEx(QStringLiteral("The keywords could not be read from \"%1\": %2")
                     .arg(QDir::toNativeSeparators(path), file.errorString()),
                 MsgBox::Exclamation, QStringLiteral("Brix"), QString(), this);
        return false;
    }
    const QByteArray bytes = file.readAll();
    QStringDecoder decode(QStringDecoder::Utf8);
    const QString text = decode(bytes);
    if (decode.hasError() || bytes.contains('\0')) {
        MsgBoxEx(QStringLiteral("\"%1\" is not a text file of keywords; nothing was imported.")
                     .arg(QDir::toNativeSeparators(path)),
                 MsgBox::Exclamation, QStringLiteral("Brix"), QString(), this);
        return false;
    }
    // Lists are written with CR LF; a list edited on this system may have bare LFs.
    static const QRegularExpression lineEnd(QStringLiteral("\r?\n"));
    for (const QString& field : text.split(lineEnd)) {
        QString word;
        int32_t block = 0;
        KeywordCheck::SplitSuffix(field, word, block);
        if (word.isEmpty())
            continue;
        QString corrected;
        QString name;
        if (!KeywordCheck::Check(word, corrected, name)) {
            const int32_t answer = MsgBoxEx(KeywordCheck::RepairQuestion(word, name, corrected),
                                            MsgBox::YesNoCancel | MsgBox::Question,
                                            QStringLiteral("Brix"), QString(), this);
            if (answer == MsgBox::No)
                continue;
            if (answer != MsgBox::Yes)
                break;
            word = corrected;
            if (word.isEmpty())
                continue;
        }
        work_->AddKeyword(word, type_, block);
    }
    refreshList();
    return true;
}

void frmKeywords::exportList() {
    QFileDialog dialog(this, QStringLiteral("Export"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("txt"));
    dialog.setNameFilters({QStringLiteral("Text files (*.txt)"), QStringLiteral("All files (*)")});
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        ExportTo(dialog.selectedFiles().front());
}

void frmKeywords::importList() {
    QFileDialog dialog(this, QStringLiteral("Import"));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(QStringLiteral("txt"));
    dialog.setNameFilters({QStringLiteral("Text files (*.txt)"), QStringLiteral("All files (*)")});
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        ImportFrom(dialog.selectedFiles().front());
}

void frmKeywords::accept() {
    table_.UpdateFrom(*work_);
    QDialog::accept();
}
