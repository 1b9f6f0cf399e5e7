#pragma once

#include "documents/LabelList.h"

#include <QDialog>
#include <QString>
#include <cstdint>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

// Asks for a line number or a label and moves the caret of the active document there.
// Loaded once at start and kept, hidden, for the life of the process: closing it only
// hides it, so the option and the texts stay from one use to the next.
class frmGoto : public QDialog {
    Q_OBJECT

public:
    // The loaded dialog, loaded first when need be.
    static frmGoto& Instance();

    // Shows the dialog modally on `owner`, offering the labels of the active document;
    // `target` is the word at the cursor and may be empty. True when the caret was moved.
    bool ShowGoto(const QString& target, QWidget* owner);

    // The leading number of a text ("12abc" is 12), 0 when there is none.
    static int32_t LeadingNumber(const QString& text);

    QRadioButton* optLine = nullptr;
    QRadioButton* optLabel = nullptr;
    QLineEdit* txtLineNumber = nullptr;
    QComboBox* cboTarget = nullptr;
    QCheckBox* chkNoGoDlg = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

    // The label that goes to and from cboTarget.
    QString Target;
    // The document's labels as last offered.
    LabelList Labels;
    // Placed on its owner once.
    bool Placed = false;
    // The result of the last use.
    bool Accepted = false;

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit frmGoto(QWidget* owner);
    void chooseLabel(bool label);
    void ok();
};
