#pragma once

#include <QDateTime>
#include <QDialog>
#include <QStringList>
#include <cstdint>

class QLabel;
class QListWidget;
class QPushButton;
class RecoveryCopy;

// "Brix Auto Recover": the copies that dead runs left, one checkable row each. Recover
// opens the checked ones as new documents, "Delete all" gives every copy to this run so
// that its clean exit removes them. Shown again after each action until no row is left or
// the user cancels.
class frmAutoRecover : public QDialog {
    Q_OBJECT

public:
    enum Result : int16_t { CancelResult = 0, RecoverResult = 1, DeleteResult = 2 };

    explicit frmAutoRecover(QWidget* parent = nullptr);

    // `names` are files of `folder`; an unreadable one gets no row.
    void ShowDialog(const QString& folder, const QStringList& names, QWidget* owner);

    // The row of a copy: item id, its line count and the file's time.
    static QString RowText(const RecoveryCopy& copy, const QDateTime& written);
    // The question of "Delete all" for a list of `rows` rows.
    static QString DeleteQuestion(int rows);

    QListWidget* lstDocuments() const { return lstDocuments_; }
    int16_t LastResult() const { return result_; }

    void reject() override;

private:
    void fill();
    void fitListToRows();
    void setAllChecked(bool checked);
    void askDelete();
    void recover();
    void deleteAll();
    void finish(int16_t result);
    void centreOn(QWidget* owner);

    QString folder_;
    QStringList names_;
    int16_t result_ = CancelResult;
    QLabel* label1_ = nullptr;
    QLabel* label2_ = nullptr;
    QListWidget* lstDocuments_ = nullptr;
    QPushButton* cmdSelect_ = nullptr;
    QPushButton* cmdUnselect_ = nullptr;
    QPushButton* cmdRecover_ = nullptr;
    QPushButton* cmdDelete_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};
