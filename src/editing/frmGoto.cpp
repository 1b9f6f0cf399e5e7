#include "editing/frmGoto.h"

#include "app/ProcessState.h"
#include "documents/mvDocument.h"
#include "settings/Moriox.h"
#include "support/BrixError.h"
#include "support/IFrame.h"
#include "support/ShowError.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>
#include <limits>

frmGoto& frmGoto::Instance() {
    ProcessState& state = ProcessState::Instance();
    if (auto* loaded = qobject_cast<frmGoto*>(state.GotoWindow.data()))
        return *loaded;
    IFrame* frame = state.Frame();
    auto* dialog = new frmGoto(frame ? frame->OwnerWindow() : nullptr);
    state.GotoWindow = dialog;
    return *dialog;
}

frmGoto::frmGoto(QWidget* owner) : QDialog(owner) {
    setWindowTitle(QStringLiteral("Goto"));
    optLine = new QRadioButton(QStringLiteral("&Line number:"), this);
    optLabel = new QRadioButton(QStringLiteral("L&abel:"), this);
    txtLineNumber = new QLineEdit(this);
    cboTarget = new QComboBox(this);
    cboTarget->setEditable(true);
    cboTarget->setInsertPolicy(QComboBox::NoInsert);
    cboTarget->setMinimumWidth(200);
    chkNoGoDlg =
        new QCheckBox(QStringLiteral("Go to the label at the cursor without this &dialog"), this);
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdOK->setDefault(true);

    auto* fields = new QGridLayout;
    fields->addWidget(optLine, 0, 0);
    fields->addWidget(txtLineNumber, 0, 1);
    fields->addWidget(optLabel, 1, 0);
    fields->addWidget(cboTarget, 1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(chkNoGoDlg);
    layout->addLayout(buttons);

    // Load: the two settings.
    const Moriox* settings = ProcessState::Instance().Settings.get();
    chkNoGoDlg->setChecked(settings && settings->NoGotoDialog);
    const bool line = settings && settings->GotoLineNumber;
    optLine->setChecked(line);
    optLabel->setChecked(!line);
    txtLineNumber->setEnabled(line);
    cboTarget->setEnabled(!line);

    connect(optLine, &QRadioButton::clicked, this, [this] { chooseLabel(false); });
    connect(optLabel, &QRadioButton::clicked, this, [this] { chooseLabel(true); });
    // Acts at once, whether the dialog is then confirmed or not.
    connect(chkNoGoDlg, &QCheckBox::toggled, this, [](bool checked) {
        if (Moriox* settings = ProcessState::Instance().Settings.get())
            settings->NoGotoDialog = checked;
    });
    connect(cmdOK, &QPushButton::clicked, this, &frmGoto::ok);
    // The combo box keeps Enter to itself; here it confirms, as in the line number box.
    connect(cboTarget->lineEdit(), &QLineEdit::returnPressed, cmdOK, &QPushButton::click);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    txtLineNumber->installEventFilter(this);
    cboTarget->lineEdit()->installEventFilter(this);
}

void frmGoto::chooseLabel(bool label) {
    optLabel->setChecked(label);
    optLine->setChecked(!label);
    cboTarget->setEnabled(label);
    txtLineNumber->setEnabled(!label);
    if (label)
        cboTarget->setFocus();
    else
        txtLineNumber->setFocus();
}

bool frmGoto::ShowGoto(const QString& target, QWidget* owner) {
    Target = target;
    Accepted = false;
    cboTarget->clear();
    Labels = LabelList();
    IFrame* frame = ProcessState::Instance().Frame();
    if (auto document = frame ? frame->ActiveDocument() : nullptr) {
        Labels = document->Labels();
        cboTarget->addItems(Labels.Names);
    }
    cboTarget->setEditText(Target);
    if (!target.isEmpty() && Labels.Find(target) >= 0)
        chooseLabel(true);
    if (owner && owner != parentWidget())
        setParent(owner, windowFlags());
    if (!Placed && owner) {
        adjustSize();
        move(owner->frameGeometry().center() - rect().center());
        Placed = true;
    }
    exec();
    return Accepted;
}

void frmGoto::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    cboTarget->setEditText(Target);
    if (optLabel->isChecked())
        cboTarget->setFocus();
    else
        txtLineNumber->setFocus();
}

bool frmGoto::eventFilter(QObject* watched, QEvent* event) {
    // Focus on either box selects its whole text; after the click that gave it.
    if (event->type() == QEvent::FocusIn) {
        if (auto* edit = qobject_cast<QLineEdit*>(watched))
            QTimer::singleShot(0, edit, &QLineEdit::selectAll);
    }
    return QDialog::eventFilter(watched, event);
}

int32_t frmGoto::LeadingNumber(const QString& text) {
    qsizetype at = 0;
    while (at < text.size() && text.at(at).isSpace())
        ++at;
    bool negative = false;
    if (at < text.size() && (text.at(at) == QLatin1Char('-') || text.at(at) == QLatin1Char('+')))
        negative = text.at(at++) == QLatin1Char('-');
    int64_t value = 0;
    while (at < text.size() && text.at(at) >= QLatin1Char('0') && text.at(at) <= QLatin1Char('9')) {
        value = std::min<int64_t>(value * 10 + (text.at(at).unicode() - '0'),
                                  std::numeric_limits<int32_t>::max());
        ++at;
    }
    return static_cast<int32_t>(negative ? -value : value);
}

void frmGoto::ok() {
    try {
        IFrame* frame = ProcessState::Instance().Frame();
        auto document = frame ? frame->ActiveDocument() : nullptr;
        if (!document)
            throw BrixError(BrixErrors::InvalidPropertyValue,
                            QStringLiteral("No document is open."));
        if (optLabel->isChecked()) {
            Target = cboTarget->currentText();
            document->GotoLabel(Target);
        } else {
            document->GotoLine(LeadingNumber(txtLineNumber->text()));
        }
        Accepted = true;
        accept();
    } catch (const BrixError& error) {
        ShowError(error.Description, this);
    } catch (const std::exception& error) {
        ShowError(QString::fromLocal8Bit(error.what()), this);
    }
}

void frmGoto::closeEvent(QCloseEvent* event) {
    // At shutdown the dialog unloads and keeps the option for the next run; the user's
    // close box only hides it.
    if (ProcessState::Instance().ShutdownStarted) {
        if (Moriox* settings = ProcessState::Instance().Settings.get())
            settings->GotoLineNumber = optLine->isChecked();
        event->accept();
        return;
    }
    event->ignore();
    Accepted = false;
    reject();
}
