#pragma once

#include "documents/BrowseModel.h"

#include <QDialog>
#include <memory>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QRadioButton;
class QStackedWidget;

// The connection layer's one browser: host, account, file and item, or local files.
class frmBrowse : public QDialog {
    Q_OBJECT

public:
    frmBrowse(const QString& caption, const std::shared_ptr<mvResource>& start,
              const QString& extension, bool multiple, bool recordLocking, QWidget* owner);

    // Shows the dialog modally; empty when cancelled.
    static std::vector<std::shared_ptr<mvResource>> Run(const QString& caption,
                                                        const std::shared_ptr<mvResource>& start,
                                                        const QString& extension, bool multiple,
                                                        bool recordLocking, QWidget* owner);

    std::vector<std::shared_ptr<mvResource>> Chosen() const { return chosen_; }
    BrowseModel& Model() { return model_; }

public Q_SLOTS:
    void accept() override;

private:
    void showMode();
    void refill(QComboBox* box, const QStringList& names, const QString& current);
    void fillServers();
    void fillAccounts();
    void fillFiles();
    void fillItems();
    void fillLocal();
    void showError();
    void selectionToName(QListWidget* list);
    void activate(QListWidgetItem* item);

    BrowseModel model_;
    std::vector<std::shared_ptr<mvResource>> chosen_;
    bool filling_ = false;

    QRadioButton* optHost_ = nullptr;
    QRadioButton* optLocal_ = nullptr;
    QStackedWidget* pages_ = nullptr;
    QComboBox* cboHost_ = nullptr;
    QComboBox* cboAccount_ = nullptr;
    QComboBox* cboFile_ = nullptr;
    QListWidget* lstItems_ = nullptr;
    QLineEdit* txtFolder_ = nullptr;
    QListWidget* lstLocal_ = nullptr;
    QComboBox* cboType_ = nullptr;
    QLabel* lblName_ = nullptr;
    QLabel* lblNote_ = nullptr;
    QLineEdit* txtName_ = nullptr;
    QCheckBox* chkReadOnly_ = nullptr;
    QLabel* lblError_ = nullptr;
};
