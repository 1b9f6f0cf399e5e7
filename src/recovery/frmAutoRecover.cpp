#include "recovery/frmAutoRecover.h"

#include "recovery/RecoveryCopy.h"
#include "recovery/modAutoRecover.h"
#include "support/BusyCursor.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

#include <QApplication>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace {

QPushButton* button(const char* name, const QString& text, QWidget* parent) {
    auto* result = new QPushButton(text, parent);
    result->setObjectName(QLatin1String(name));
    result->setAutoDefault(false);
    return result;
}

} // namespace

frmAutoRecover::frmAutoRecover(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAutoRecover"));
    setWindowTitle(QStringLiteral("Brix Auto Recover"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    label1_ = new QLabel(QStringLiteral("Recoverable documents"), this);
    label1_->setObjectName(QStringLiteral("Label1"));
    label2_ = new QLabel(QStringLiteral("Check all documents you want to recover, then click the "
                                        "Recover button. Click Delete to delete recoverable "
                                        "copies."),
                         this);
    label2_->setObjectName(QStringLiteral("Label2"));
    label2_->setWordWrap(true);
    lstDocuments_ = new QListWidget(this);
    lstDocuments_->setObjectName(QStringLiteral("lstDocuments"));
    lstDocuments_->setMinimumSize(420, 160);
    cmdSelect_ = button("cmdSelect", QStringLiteral("Check all"), this);
    cmdUnselect_ = button("cmdUnselect", QStringLiteral("Uncheck all"), this);
    cmdRecover_ = button("cmdRecover", QStringLiteral("Recover"), this);
    cmdRecover_->setToolTip(QStringLiteral(
        "Selected documents are opened as new documents from the recoverable copy."));
    cmdDelete_ = button("cmdDelete", QStringLiteral("Delete all"), this);
    cmdDelete_->setToolTip(QStringLiteral("Delete recoverable copies of documents."));
    cmdCancel_ = button("cmdCancel", QStringLiteral("Cancel"), this);

    auto* side = new QVBoxLayout;
    side->addWidget(cmdSelect_);
    side->addWidget(cmdUnselect_);
    side->addStretch();
    auto* middle = new QHBoxLayout;
    middle->addWidget(lstDocuments_, 1);
    middle->addLayout(side);
    auto* bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(cmdRecover_);
    bottom->addWidget(cmdDelete_);
    bottom->addWidget(cmdCancel_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label1_);
    layout->addWidget(label2_);
    layout->addLayout(middle, 1);
    layout->addLayout(bottom);

    connect(cmdSelect_, &QPushButton::clicked, this, [this] { setAllChecked(true); });
    connect(cmdUnselect_, &QPushButton::clicked, this, [this] { setAllChecked(false); });
    connect(cmdRecover_, &QPushButton::clicked, this, [this] { finish(RecoverResult); });
    connect(cmdDelete_, &QPushButton::clicked, this, &frmAutoRecover::askDelete);
    connect(cmdCancel_, &QPushButton::clicked, this, [this] { finish(CancelResult); });
}

QString frmAutoRecover::RowText(const RecoveryCopy& copy, const QDateTime& written) {
    const QString gap(10, QLatin1Char(' '));
    return copy.ItemId + gap + QString::number(copy.LineCount()) + QStringLiteral(" lines") + gap +
           QLocale().toString(written, QLocale::ShortFormat);
}

QString frmAutoRecover::DeleteQuestion(int rows) {
    return QStringLiteral("Are you sure you want to delete the recoverable ") +
           (rows > 1 ? QStringLiteral("copies of these ") + QString::number(rows) +
                           QStringLiteral(" documents?")
                     : QStringLiteral("copy of this document?")) +
           QStringLiteral("\r\n\r\nOnce the recoverable copies are deleted, they can no longer "
                          "be retrieved.");
}

void frmAutoRecover::ShowDialog(const QString& folder, const QStringList& names, QWidget* owner) {
    folder_ = folder;
    names_ = names;
    fill();
    while (lstDocuments_->count() > 0) {
        result_ = CancelResult;
        // The start-up's wait pointer does not stand over a question to the user.
        QApplication::setOverrideCursor(Qt::ArrowCursor);
        centreOn(owner ? owner : parentWidget());
        // The program may end while the dialog is up (a signal): the owner takes it along.
        const QPointer<frmAutoRecover> alive(this);
        exec();
        QApplication::restoreOverrideCursor();
        if (!alive)
            return;
        if (result_ == RecoverResult)
            recover();
        else if (result_ == DeleteResult)
            deleteAll();
        else
            break;
    }
    hide();
}

void frmAutoRecover::fill() {
    lstDocuments_->clear();
    for (int i = 0; i < names_.size(); ++i) {
        const QString path = folder_ + QLatin1Char('/') + names_.at(i);
        const std::optional<RecoveryCopy> copy = RecoveryCopy::Read(path);
        if (!copy) {
            names_[i].clear();
            continue;
        }
        auto* row = new QListWidgetItem(RowText(*copy, QFileInfo(path).lastModified()));
        row->setFlags(row->flags() | Qt::ItemIsUserCheckable);
        row->setCheckState(Qt::Unchecked);
        row->setData(Qt::UserRole, i);
        // Rows are usually wider than the list.
        row->setToolTip(row->text());
        lstDocuments_->addItem(row);
    }
    fitListToRows();
}

void frmAutoRecover::fitListToRows() {
    // Wide enough for the rows, up to most of the screen; the scroll bar takes the rest.
    const int widest = lstDocuments_->sizeHintForColumn(0);
    const QScreen* screen = this->screen();
    const int limit = screen ? screen->availableGeometry().width() * 3 / 4 : 900;
    const int wanted = widest + 2 * lstDocuments_->frameWidth() +
                       lstDocuments_->verticalScrollBar()->sizeHint().width();
    lstDocuments_->setMinimumWidth(std::clamp(wanted, 420, std::max(420, limit)));
    adjustSize();
}

void frmAutoRecover::setAllChecked(bool checked) {
    for (int i = 0; i < lstDocuments_->count(); ++i)
        lstDocuments_->item(i)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
}

void frmAutoRecover::askDelete() {
    const int32_t answer =
        BrixMessage(DeleteQuestion(lstDocuments_->count()),
                    MsgBox::YesNo | MsgBox::Exclamation | MsgBox::DefaultButton2, this) &
        ~MsgBox::Ticked;
    if (answer == MsgBox::Yes)
        finish(DeleteResult);
}

void frmAutoRecover::recover() {
    const BusyCursor busy;
    for (int i = 0; i < lstDocuments_->count(); ++i) {
        QListWidgetItem* row = lstDocuments_->item(i);
        if (row->checkState() != Qt::Checked)
            continue;
        const int index = row->data(Qt::UserRole).toInt();
        const QString name = names_.value(index);
        if (name.isEmpty() || !modAutoRecover::RecoverCopy(folder_ + QLatin1Char('/') + name))
            continue; // stays, checked
        modAutoRecover::AdoptCopy(name);
        delete lstDocuments_->takeItem(i);
        names_[index].clear();
        --i;
    }
}

void frmAutoRecover::deleteAll() {
    const BusyCursor busy;
    // The files stay until this run's clean exit: a crash before it offers them again.
    for (int i = 0; i < lstDocuments_->count(); ++i) {
        const int index = lstDocuments_->item(i)->data(Qt::UserRole).toInt();
        const QString name = names_.value(index);
        if (name.isEmpty())
            continue;
        modAutoRecover::AdoptCopy(name);
        delete lstDocuments_->takeItem(i);
        names_[index].clear();
        --i;
    }
}

void frmAutoRecover::finish(int16_t result) {
    result_ = result;
    QDialog::accept();
}

void frmAutoRecover::reject() {
    // The close box and Escape are Cancel.
    result_ = CancelResult;
    QDialog::reject();
}

void frmAutoRecover::centreOn(QWidget* owner) {
    adjustSize();
    if (owner && owner->isVisible())
        move(owner->frameGeometry().center() - QPoint(width() / 2, height() / 2));
}
