#pragma once

#include <QDialog>

// The About box: the program's name, version and what it is for.
class frmAbout : public QDialog {
    Q_OBJECT

public:
    explicit frmAbout(QWidget* parent = nullptr);

    static void ShowAbout(QWidget* owner);
};
