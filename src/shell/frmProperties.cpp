#include "shell/frmProperties.h"

#include "app/ProcessState.h"
#include "documents/mvDocument.h"
#include "shell/DocumentFacts.h"

#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

void frmProperties::ShowDialog(const std::shared_ptr<mvDocument>& document, QWidget* ownerForm) {
    if (!document)
        return;
    frmProperties dialog(ownerForm);
    ProcessState::Instance().PropertiesWindow = &dialog;
    dialog.Fill(*document);
    dialog.exec();
}

frmProperties::frmProperties(QWidget* owner) : QDialog(owner) {
    setObjectName(QStringLiteral("frmProperties"));
    setWindowTitle(QStringLiteral("Document Properties"));
    auto* layout = new QVBoxLayout(this);
    grid_ = new QGridLayout;
    grid_->setHorizontalSpacing(0);
    layout->addLayout(grid_);
    auto* cmdClose = new QPushButton(QStringLiteral("Close"), this);
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    cmdClose->setDefault(true);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(cmdClose, 0, Qt::AlignHCenter);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void frmProperties::Fill(mvDocument& document) {
    while (QLayoutItem* item = grid_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    rows_ = 0;
    for (const DocumentFacts::Row& row :
         DocumentFacts::Rows(document, ProcessState::Instance().Host))
        AddRow(row.first, row.second);
}

void frmProperties::AddRow(const QString& label, const QString& value) {
    auto* lblItem = new QLabel(label + QLatin1Char(':'), this);
    // Two blanks on both sides of each value, as its measure.
    const QString padded = QStringLiteral("  ") + value + QStringLiteral("  ");
    auto* lblValue = new QLabel(padded, this);
    lblValue->setTextInteractionFlags(Qt::TextSelectableByMouse);
    const QScreen* screen = this->screen() ? this->screen() : QGuiApplication::primaryScreen();
    const int widest = screen ? screen->availableGeometry().width() * 3 / 4 : 800;
    if (lblValue->fontMetrics().horizontalAdvance(padded) > widest) {
        lblValue->setWordWrap(true);
        lblValue->setFixedWidth(widest);
    }
    grid_->addWidget(lblItem, rows_, 0, Qt::AlignLeft | Qt::AlignTop);
    grid_->addWidget(lblValue, rows_, 1, Qt::AlignLeft | Qt::AlignTop);
    ++rows_;
}

QString frmProperties::Label(int row) const {
    const auto* label = qobject_cast<QLabel*>(grid_->itemAtPosition(row, 0)->widget());
    return label ? label->text().chopped(1) : QString();
}

QString frmProperties::Value(int row) const {
    const auto* label = qobject_cast<QLabel*>(grid_->itemAtPosition(row, 1)->widget());
    return label ? label->text().trimmed() : QString();
}
