#pragma once

#include <QDialog>
#include <memory>

class QGridLayout;
class QLabel;
class mvDocument;

// The facts about one document as rows of label and value, modal to its owner. The box
// grows to the longest value, up to what the screen allows; longer values wrap.
class frmProperties : public QDialog {
    Q_OBJECT

public:
    static void ShowDialog(const std::shared_ptr<mvDocument>& document, QWidget* ownerForm);

    explicit frmProperties(QWidget* owner);
    // Builds the rows afresh for the document.
    void Fill(mvDocument& document);
    void AddRow(const QString& label, const QString& value);
    int RowCount() const { return rows_; }
    QString Label(int row) const;
    QString Value(int row) const;

private:
    QGridLayout* grid_ = nullptr;
    int rows_ = 0;
};
