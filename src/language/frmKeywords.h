#pragma once

#include <QDialog>
#include <cstdint>
#include <memory>

class QGroupBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class clsKeywords;

// Edits one keyword list, the language list (type 2) or the user list (type 4), of a
// table. It works on a copy: OK takes the copy over into the table, Cancel drops it.
class frmKeywords : public QDialog {
    Q_OBJECT

public:
    frmKeywords(clsKeywords& table, int32_t type, const QString& caption, QWidget* owner = nullptr);
    ~frmKeywords() override;

    // Shows the editor modally; true when the user left it with OK.
    static bool EditKeywords(clsKeywords& table, int32_t type, const QString& caption,
                             QWidget* owner = nullptr);

    // The list as edited so far.
    const clsKeywords& Working() const { return *work_; }

    // What the buttons do, without the file dialogs.
    void AddKeyword();
    void RemoveKeyword();
    // True when the file could be written or read; a failure has been told to the user.
    bool ExportTo(const QString& path);
    bool ImportFrom(const QString& path);

    void accept() override;

private:
    void build();
    void refreshList();
    // The word of the text box: the frame's caption and options follow it.
    void wordEdited();
    void wordSelected();
    void showBlock(int32_t blockFlags, bool builtIn);
    int32_t blockOfOptions() const;
    void exportList();
    void importList();

    clsKeywords& table_;
    std::shared_ptr<clsKeywords> work_;
    int32_t type_ = 0;

    QListWidget* lstKeywords_ = nullptr;
    QLineEdit* txtKeyword_ = nullptr;
    QPushButton* cmdAdd_ = nullptr;
    QPushButton* cmdRemove_ = nullptr;
    QGroupBox* frBlock_ = nullptr;
    QGroupBox* frBeginBlock_ = nullptr;
    QRadioButton* optNone_ = nullptr;
    QRadioButton* optBegin_ = nullptr;
    QRadioButton* optEnd_ = nullptr;
    QRadioButton* optMid_ = nullptr;
    QRadioButton* optAny_ = nullptr;
    QRadioButton* optFirst_ = nullptr;
    QRadioButton* optLast_ = nullptr;
};
