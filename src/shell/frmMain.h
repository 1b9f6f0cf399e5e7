#pragma once

#include "shell/FramePlacement.h"
#include "support/IFrame.h"

#include <QMainWindow>
#include <QPointer>
#include <cstdint>
#include <memory>

class CommandBar;
class CommandDispatcher;
class DocumentTabs;
class QMdiArea;
class QTimer;
class frmDocument;
class mvDocument;

// The single top-level frame: a document area whose children are the document windows,
// and the place where closing the program is decided.
class frmMain : public QMainWindow, public IFrame {
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

    // IFrame
    QWidget* OwnerWindow() override { return this; }
    QMdiArea* DocumentArea() override { return mdiArea_; }
    std::shared_ptr<mvDocument> ActiveDocument() const override;
    void SetBusy(bool busy) override;
    void RefreshCommands() override { UpdateToolBar(); }
    void RefreshCaption() override { SetTitle(title_); }
    void DocumentAdded() override;
    QList<QKeySequence> CommandKeys() const override;
    void DocumentRemoved() override;

    CommandBar& Bar() const { return *bar_; }
    CommandDispatcher& Dispatcher() const { return *dispatcher_; }
    DocumentTabs& Tabs() const { return *tabs_; }

    // Refreshes the state of the commands from the active document.
    void UpdateToolBar();
    // The recent files on the File menu, and the open documents on the Window menu.
    void RebuildFileMenu();
    void RebuildWindowMenu();
    void ShowDocumentPanes(bool visible) override;
    // Status panes 1 to 3: message, caret position, insert mode.
    void SetPaneText(int pane, const QString& text) override;
    QString PaneText(int pane) const;

    void NewDocument();

    // Opening, saving and closing documents.
    // What PromptToSave and CloseDocument report.
    enum PromptChoice : int16_t { Cancelled = 0, SavedOrClean = 1, Declined = 2 };
    void OpenDocument();
    // Entry `index` of the recent list, 1 the newest.
    void OpenRecent(int16_t index);
    // Save As for a document that was never saved, else its FileSave.
    void SaveDocument(const std::shared_ptr<mvDocument>& document);
    void SaveDocumentAs(const std::shared_ptr<mvDocument>& document);
    // Asks about unsaved changes with the given buttons (MsgBoxEx flags); an empty message
    // asks "Save changes to <name> ?". A clean document gives SavedOrClean without a word.
    int16_t PromptToSave(const std::shared_ptr<mvDocument>& document, const QString& message,
                         int16_t buttons);
    // Yes, No or Cancel for unsaved changes, then the close; Cancelled leaves it open.
    int16_t CloseDocument(const std::shared_ptr<mvDocument>& document);
    // Closes every document in turn; the first Cancel stops the walk and gives false.
    bool CloseAllDocuments();
    // Saves every dirty document without asking; a read-only one asks whether to go on.
    void SaveAllDocuments();
    // Offers to save a modified document first; OK or a clean document compiles it.
    void CompileDocument(const std::shared_ptr<mvDocument>& document);
    void ShowProperties(const std::shared_ptr<mvDocument>& document);
    void ShowResults(const QString& text) override;
    // Closes the documents, then the frame.
    void ExitApplication();
    // The editor's context menu at `globalPos`, set up for the word under it (a WordKind).
    void ShowContextMenu(int16_t kind, const QPoint& globalPos) override;
    void HandleGoto(const std::shared_ptr<mvDocument>& document, bool forceDialog) override;
    void HandleOpen(const std::shared_ptr<mvDocument>& document) override;
    // Activates the next (or previous) document window; with a window that didn't change
    // on the first step, steps once more.
    void NextDocument(bool previous);
    // Unloads the frame shortly, without asking: the last automation client has gone.
    void StartShutdownTimer();
    // One minute of the auto-save timer: every fifth counted while auto-recover is on runs
    // the recovery pass.
    void AutoSaveTimerTick();
    int32_t AutoSaveTicks = 0;
    bool AppActive = false;
    // The manual has been opened by HelpTopics; cleared when the frame closes.
    bool HelpOpen = false;

    // Unloads the frame as the program, not the user, asks: nothing is asked.
    void UnloadForm();
    bool IsUnloading() const { return unloading_; }

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    // Files dropped on the frame open as documents.
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void unload();
    void buildBars();
    void buildTimers();
    // The title, with the maximised child's title behind it.
    QString caption() const;
    void stuckFocusTick();
    // The frame's place and bars from the settings, and back.
    void restoreWindowState();
    void saveWindowState();
    bool isNormalState() const;
    void rememberRectangle();

    QString title_;
    QMdiArea* mdiArea_ = nullptr;
    CommandBar* bar_ = nullptr;
    std::unique_ptr<CommandDispatcher> dispatcher_;
    DocumentTabs* tabs_ = nullptr;
    QTimer* autoSaveTimer_ = nullptr;
    QTimer* stuckFocusTimer_ = nullptr;
    QTimer* shutdownTimer_ = nullptr;
    bool filterInstalled_ = false;
    bool settingCaption_ = false;
    bool unloading_ = false;
    bool programmaticClose_ = false;
    // The place of the frame in normal state, kept while it is maximised or minimised.
    TwipsRect savedRect_;
};
