#pragma once

#include "documents/SearchScope.h"

#include <QDialog>
#include <QPointer>
#include <cstdint>
#include <memory>

class QCheckBox;
class QFont;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class SourceView;
class mvDocument;

// The one modeless dialog for finding and replacing in the active document. It keeps the
// scope it was given: a selection stays the scope of its window for repeated searches,
// and is read anew in another window.
class frmFind : public QDialog {
    Q_OBJECT

public:
    // The loaded dialog, loaded first when need be; its owner is the main window.
    static frmFind& Instance();
    // The dialog if it is loaded, else null.
    static frmFind* Loaded();

    // Shows the dialog, captioned "Find" or "Replace".
    void Find();
    void Replace();
    // Repeats the last search from the caret, asking whether to go on at the far end.
    // True when a match was selected.
    bool FindNext();
    // Replaces the selection when it is the search text, then finds the next match.
    void ReplaceNext();
    // Every match of the scope as one undoable step; the count.
    int32_t ReplaceAll();
    // The editor's font for the two text boxes.
    void SetFont(const QString& name, int pointSize);

    QLineEdit* txtFind = nullptr;
    QLineEdit* txtRepl = nullptr;
    QCheckBox* chkSelection = nullptr;
    QCheckBox* chkWholeWord = nullptr;
    QCheckBox* chkMatchCase = nullptr;
    // Element 0 searches upwards, element 1 downwards.
    QRadioButton* optDirection[2] = {nullptr, nullptr};
    QPushButton* cmdFind = nullptr;
    QPushButton* cmdRepl = nullptr;
    QPushButton* cmdAll = nullptr;
    QPushButton* cmdCancel = nullptr;

    // The scope in force: its window (null for the whole document) and range.
    const SearchScope& Scope() const { return scope_; }
    QWidget* ScopeWindow() const { return scopeWindow_; }

private:
    explicit frmFind(QWidget* owner);
    void showFor(bool replace);
    std::shared_ptr<mvDocument> activeDocument() const;
    // True when a selection was taken as the scope just now.
    bool readScope(mvDocument& document);
    // Where a search begins: -1, -1 for the caret.
    void startOf(bool fresh, bool up, int32_t& column, int32_t& line) const;
    // The selection, start before end.
    static SearchScope selectionScope(const SourceView& editor);
    // Nothing found from the caret: asks whether to go on from the far end.
    bool wrapSearch(mvDocument& document, const QString& text, bool up);
    QString scopeWord(const char* whole, const char* selection) const;
    QWidget* boxOwner();

    QLabel* lblRepl_ = nullptr;
    std::weak_ptr<mvDocument> document_;
    bool rescope_ = true;
    QPointer<QWidget> scopeWindow_;
    SearchScope scope_;
    bool placed_ = false;
};
