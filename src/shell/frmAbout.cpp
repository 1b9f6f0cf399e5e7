#include "shell/frmAbout.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

frmAbout::frmAbout(QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("About Brix"));
    auto* layout = new QVBoxLayout(this);
    auto* name = new QLabel(QStringLiteral("<b>Brix</b>"), this);
    name->setObjectName(QStringLiteral("lblName"));
    auto* version = new QLabel(QStringLiteral("Version ") + QStringLiteral(BRIX_VERSION), this);
    version->setObjectName(QStringLiteral("lblVersion"));
    auto* purpose = new QLabel(
        QStringLiteral("An editor for MultiValue BASIC programs kept in MultiValue databases "
                       "or in local files."),
        this);
    purpose->setObjectName(QStringLiteral("lblPurpose"));
    purpose->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    layout->addWidget(name);
    layout->addWidget(version);
    layout->addWidget(purpose);
    layout->addWidget(buttons);
}

void frmAbout::ShowAbout(QWidget* owner) {
    frmAbout box(owner);
    box.exec();
}
