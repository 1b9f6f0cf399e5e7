#pragma once

#include "shell/FramePlacement.h"

#include <QMainWindow>
#include <QPointer>
#include <array>
#include <cstdint>
#include <memory>

class QLabel;
class QMdiArea;
class frmDocument;
class mvDocument;

// The single top-level frame: a document area whose children are the document windows,
// and the place where closing the program is decided.
class frmMain : public QMainWindow {
    Q_OBJECT

public:
    explicit frmMain(QWidget* parent = nullptr);
    ~frmMain() override;

    // The frame's set-up, run once after it is made.
    void Load();

    // Number of open documents, raised and lowered by the documents.
    int16_t DocumentCount = 0;

    QString Title() const { return title_; }
    // The caption is the title, and " - [" child title "]" while a child is maximised.
    void SetTitle(const QString& title);

    QMdiArea* MdiArea() const { return mdiArea_; }
    frmDocument* ActiveDocumentWindow() const;
    std::shared_ptr<mvDocument> ActiveDocument() const;

    // Refreshes the state of the commands from the active document.
    void UpdateToolBar();
    void ShowDocumentPanes(bool visible);
    // Status panes 1 to 3: message, caret position, insert mode.
    void SetPaneText(int pane, const QString& text);
    QString PaneText(int pane) const;

    void NewDocument();
    bool CloseAllDocuments();
    // Unloads the frame as the program, not the user, asks: nothing is asked.
    void UnloadForm();
    bool IsUnloading() const { return unloading_; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void unload();
    // The frame's place and bars from the settings, and back.
    void restoreWindowState();
    void saveWindowState();
    bool isNormalState() const;
    void rememberRectangle();

    QString title_;
    QMdiArea* mdiArea_ = nullptr;
    std::array<QLabel*, 4> panes_ = {};
    bool unloading_ = false;
    bool programmaticClose_ = false;
    // The place of the frame in normal state, kept while it is maximised or minimised.
    TwipsRect savedRect_;
    // There is no tool bar band yet; its setting is kept as it was read.
    bool toolbarVisible_ = true;
};
