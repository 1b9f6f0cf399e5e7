#include "shell/frmMain.h"

#include "app/ProcessState.h"
#include "app/modMain.h"
#include "documents/DocumentCollection.h"
#include "documents/clsDocView.h"
#include "documents/modOpen.h"
#include "documents/modSave.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "documents/mvResource.h"
#include "editing/WordKind.h"
#include "editing/frmDocument.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "recovery/modAutoRecover.h"
#include "settings/Moriox.h"
#include "settings/SettingText.h"
#include "settings/SettingsStore.h"
#include "settings/clsRecentList.h"
#include "shell/CommandBar.h"
#include "shell/CommandDispatcher.h"
#include "shell/CommandState.h"
#include "shell/CommandTable.h"
#include "shell/CursorCommands.h"
#include "shell/DocumentTabs.h"
#include "shell/KeyboardFilter.h"
#include "shell/LockKeyPanels.h"
#include "shell/frmProperties.h"
#include "shell/frmResults.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"
#include "support/UnicodeClipboard.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>

frmMain::frmMain(QWidget* parent) : QMainWindow(parent) {
    setAttribute(Qt::WA_DeleteOnClose);
    mdiArea_ = new QMdiArea(this);
    mdiArea_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    mdiArea_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(mdiArea_);
    buildBars();
    buildTimers();
    connect(mdiArea_, &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* window) {
        SetTitle(title_);
        if (auto* document = qobject_cast<frmDocument*>(window))
            document->OnActivated();
        else
            UpdateToolBar();
    });
    setAcceptDrops(true);
}

void frmMain::buildBars() {
    bar_ = new CommandBar(*this);
    CommandTable::Build(*bar_);
    CommandState::SwitchOffUnoffered(*bar_);
    dispatcher_ = std::make_unique<CommandDispatcher>(*this);
    connect(bar_, &CommandBar::ToolClicked, this,
            [this](CommandTool* tool) { dispatcher_->Dispatch(*tool); });
    connect(bar_, &CommandBar::MenuAboutToShow, this, [this](const QString& key) {
        if (key.compare(QLatin1String("File"), Qt::CaseInsensitive) == 0)
            RebuildFileMenu();
        else if (key.compare(QLatin1String("Window"), Qt::CaseInsensitive) == 0)
            RebuildWindowMenu();
    });
    addToolBarBreak(Qt::TopToolBarArea);
    auto* tabBand = new QToolBar(QStringLiteral("Document list"), this);
    tabBand->setObjectName(QStringLiteral("Taskbar"));
    tabBand->setMovable(false);
    addToolBar(Qt::TopToolBarArea, tabBand);
    tabs_ = new DocumentTabs(*mdiArea_, *bar_, *tabBand);
    // The bands are shown and hidden by the View menu only, so its checks stay true.
    setContextMenuPolicy(Qt::NoContextMenu);
    for (QToolBar* band : {bar_->ToolBarWidget(), tabBand})
        band->setFloatable(false);
    CommandBand* status = bar_->Band(QStringLiteral("StatusBar"));
    new LockKeyPanels(status->Panel(QStringLiteral("Panel4")),
                      status->Panel(QStringLiteral("Panel5")), this);
}

frmMain::~frmMain() = default;

namespace {

constexpr int Twips = FramePlacement::TwipsPerPixel;

QString readWindowSetting(const QString& key, const QString& defaultValue) {
    return SettingsStore::ReadSetting(Moriox::Section(), key, defaultValue);
}

int32_t readWindowNumber(const QString& key, int32_t defaultValue) {
    const int64_t value =
        SettingText::ParseNumber(readWindowSetting(key, QString::number(defaultValue)));
    return value >= INT32_MIN && value <= INT32_MAX ? static_cast<int32_t>(value) : defaultValue;
}

bool readWindowFlag(const QString& key) {
    return SettingText::ParseBoolean(readWindowSetting(key, QStringLiteral("True"))).value_or(true);
}

void writeWindowSetting(const QString& key, const QString& value) {
    SettingsStore::WriteSetting(Moriox::Section(), key, value);
}

} // namespace

void frmMain::Load() {
    SetTitle(QStringLiteral("Brix"));
    try {
        restoreWindowState();
    } catch (const std::exception& error) {
        QApplication::restoreOverrideCursor();
        ShowError(QString::fromLocal8Bit(error.what()), this);
    }
    ShowDocumentPanes(false);
    if (!filterInstalled_) {
        KeyboardFilter::Install(*this);
        filterInstalled_ = true;
    }
    DocumentCount = 0;
    UpdateToolBar();
}

void frmMain::buildTimers() {
    autoSaveTimer_ = new QTimer(this);
    autoSaveTimer_->setInterval(60000);
    connect(autoSaveTimer_, &QTimer::timeout, this, &frmMain::AutoSaveTimerTick);
    autoSaveTimer_->start();
    stuckFocusTimer_ = new QTimer(this);
    stuckFocusTimer_->setSingleShot(true);
    connect(stuckFocusTimer_, &QTimer::timeout, this, &frmMain::stuckFocusTick);
    shutdownTimer_ = new QTimer(this);
    shutdownTimer_->setInterval(50);
    connect(shutdownTimer_, &QTimer::timeout, this, &frmMain::UnloadForm);
}

void frmMain::AutoSaveTimerTick() {
    const Moriox* settings = ProcessState::Instance().Settings.get();
    // With auto-recover off the count stands still.
    if (!settings || !settings->AutoRecover)
        return;
    if (++AutoSaveTicks >= 5) {
        AutoSaveTicks = 0;
        modAutoRecover::AutoRecoverPass();
    }
}

void frmMain::stuckFocusTick() {
    // The keyboard never rests on the frame while a document is open.
    const QWidget* focus = QApplication::focusWidget();
    frmDocument* child = ActiveDocumentWindow();
    if (child && (!focus || focus == this || focus == mdiArea_ || focus == child))
        child->txtText()->setFocus();
}

void frmMain::StartShutdownTimer() {
    shutdownTimer_->start();
}

void frmMain::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    // The document area writes its own caption for maximised children; ours stands.
    if (event->type() == QEvent::WindowTitleChange && !settingCaption_ &&
        windowTitle() != caption()) {
        settingCaption_ = true;
        setWindowTitle(caption());
        settingCaption_ = false;
    }
    if (event->type() != QEvent::ActivationChange)
        return;
    AppActive = isActiveWindow();
    if (AppActive) {
        UpdateToolBar();
        stuckFocusTimer_->start(100);
    }
}

void frmMain::ShowContextMenu(int16_t kind, const QPoint& globalPos) {
    const auto document = ActiveDocument();
    auto set = [this](const char* key, bool enabled) {
        if (CommandTool* tool = bar_->Tool(QStringLiteral("Popup"), QLatin1String(key)))
            tool->SetEnabled(enabled && CommandDispatcher::Handles(tool->Key()));
    };
    set("ctxGoto", kind == WordKind::GotoTarget);
    set("ctxOpen", kind == WordKind::CallName || kind == WordKind::IncludeItem);
    const SourceView* editor = document ? document->Editor() : nullptr;
    const bool selection = editor && editor->HasSelection();
    for (const char* key : {"Cut", "Copy", "Clear"})
        set(key, selection);
    // The popup follows the clipboard, unlike the menu.
    set("Paste", UnicodeClipboard::TextAvailable());
    // Undo is refreshed on the tool bar only; the popup's keeps its state.
    if (CommandTool* undo = bar_->Tool(QStringLiteral("toolbar"), QStringLiteral("Undo")))
        undo->SetEnabled(editor && editor->Buffer().CanUndo());
    bar_->ShowPopup(QStringLiteral("Popup"), globalPos);
}

void frmMain::HandleGoto(const std::shared_ptr<mvDocument>& document, bool forceDialog) {
    CursorCommands::HandleGoto(document, forceDialog, this);
}

void frmMain::HandleOpen(const std::shared_ptr<mvDocument>& document) {
    CursorCommands::HandleOpen(document, this);
}

void frmMain::NextDocument(bool previous) {
    const QMdiSubWindow* before = mdiArea_->activeSubWindow();
    auto step = [this, previous] {
        if (previous)
            mdiArea_->activatePreviousSubWindow();
        else
            mdiArea_->activateNextSubWindow();
    };
    step();
    if (mdiArea_->activeSubWindow() == before)
        step();
}

void frmMain::restoreWindowState() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QSize screenSize = screen ? screen->size() : QSize(1024, 768);
    const int32_t screenWidth = screenSize.width() * Twips;
    const int32_t screenHeight = screenSize.height() * Twips;
    const TwipsRect defaults = FramePlacement::DefaultRect(screenWidth, screenHeight);

    const int32_t state = readWindowNumber(QStringLiteral("MainState"), 0);
    TwipsRect rect{readWindowNumber(QStringLiteral("MainLeft"), defaults.Left),
                   readWindowNumber(QStringLiteral("MainTop"), defaults.Top),
                   readWindowNumber(QStringLiteral("MainWidth"), defaults.Width),
                   readWindowNumber(QStringLiteral("MainHeight"), defaults.Height)};
    const QRect virtualDesktop =
        screen ? screen->virtualGeometry() : QRect(QPoint(0, 0), screenSize);
    const TwipsRect desktop{virtualDesktop.x() * Twips, virtualDesktop.y() * Twips,
                            virtualDesktop.width() * Twips, virtualDesktop.height() * Twips};
    rect = FramePlacement::Fit(rect, desktop, screenWidth, screenHeight);

    if (!isNormalState())
        setWindowState(Qt::WindowNoState);
    move(rect.Left / Twips, rect.Top / Twips);
    resize(rect.Width / Twips, rect.Height / Twips);
    savedRect_ = rect;
    setWindowState(state == 2   ? Qt::WindowMaximized
                   : state == 1 ? Qt::WindowMinimized
                                : Qt::WindowNoState);

    const bool statusVisible = readWindowFlag(QStringLiteral("StatusbarVisible"));
    bar_->Tool(QStringLiteral("View"), QStringLiteral("ViewStatusbar"))->SetChecked(statusVisible);
    bar_->StatusBarWidget()->setVisible(statusVisible);
    const bool toolVisible = readWindowFlag(QStringLiteral("ToolbarVisible"));
    bar_->Tool(QStringLiteral("View"), QStringLiteral("ViewToolbar"))->SetChecked(toolVisible);
    bar_->ToolBarWidget()->setVisible(toolVisible);
    const Moriox* settings = ProcessState::Instance().Settings.get();
    const int iconSize = settings && settings->LargeToolbarIcons ? 32 : 16;
    bar_->ToolBarWidget()->setIconSize(QSize(iconSize, iconSize));
}

void frmMain::saveWindowState() {
    const SettingsStore::Batch batch;
    // A frame closed while minimised keeps the state stored before.
    if (!isMinimized())
        writeWindowSetting(QStringLiteral("MainState"), QString::number(isMaximized() ? 2 : 0));
    if (isNormalState())
        rememberRectangle();
    writeWindowSetting(QStringLiteral("MainLeft"), QString::number(savedRect_.Left));
    writeWindowSetting(QStringLiteral("MainTop"), QString::number(savedRect_.Top));
    writeWindowSetting(QStringLiteral("MainWidth"), QString::number(savedRect_.Width));
    writeWindowSetting(QStringLiteral("MainHeight"), QString::number(savedRect_.Height));
    writeWindowSetting(QStringLiteral("ToolbarVisible"),
                       SettingText::FromBoolean(bar_->ToolBarWidget()->isVisibleTo(this)));
    writeWindowSetting(QStringLiteral("StatusbarVisible"),
                       SettingText::FromBoolean(statusBar()->isVisibleTo(this)));
}

bool frmMain::isNormalState() const {
    return !(windowState() & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen));
}

void frmMain::rememberRectangle() {
    savedRect_ = {x() * Twips, y() * Twips, width() * Twips, height() * Twips};
}

void frmMain::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    if (isNormalState())
        rememberRectangle();
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (isNormalState())
        rememberRectangle();
}

void frmMain::SetTitle(const QString& title) {
    title_ = title;
    setWindowTitle(caption());
}

QString frmMain::caption() const {
    const frmDocument* child = ActiveDocumentWindow();
    if (child && child->isMaximized())
        return title_ + QStringLiteral(" - [") + child->Title() + QStringLiteral("]");
    return title_;
}

frmDocument* frmMain::ActiveDocumentWindow() const {
    return qobject_cast<frmDocument*>(mdiArea_->activeSubWindow());
}

std::shared_ptr<mvDocument> frmMain::ActiveDocument() const {
    const frmDocument* child = ActiveDocumentWindow();
    return child ? child->ViewObject() : nullptr;
}

void frmMain::UpdateToolBar() {
    try {
        CommandState::Apply(*bar_, CommandState::Read(ActiveDocument(), DocumentCount));
    } catch (const std::exception& error) {
        ShowError(QString::fromLocal8Bit(error.what()), this);
    }
}

void frmMain::RebuildFileMenu() {
    CommandBand* menu = bar_->Band(QStringLiteral("File"));
    menu->RemoveTools(QStringLiteral("file_"));
    const ProcessState& state = ProcessState::Instance();
    const clsRecentList* recent = state.Settings ? state.Settings->RecentList.get() : nullptr;
    if (!recent)
        return;
    // One host operation for the whole list, so copies are written once.
    const modAutoRecover::Suspension hostCalls;
    for (int16_t i = 1; i <= recent->ListCount(); ++i) {
        const QString path = recent->ListItem(i);
        QString name = path;
        try {
            if (auto resource = mvConnection::Instance().GetResource(path, true, false))
                name = resource->DisplayID();
        } catch (const std::exception&) {
            // A path the host service can't read is shown as it stands.
        }
        CommandTool* tool =
            menu->AddTool(QStringLiteral("file_") + QString::number(i),
                          QStringLiteral("&") + QString::number(i) + QStringLiteral(" ") + name,
                          CommandTool::Type::Check, i == 1, QStringLiteral("Exit"));
        tool->SetChecked(false);
    }
}

void frmMain::RebuildWindowMenu() {
    CommandBand* menu = bar_->Band(QStringLiteral("Window"));
    menu->RemoveTools(QStringLiteral("miWList"));
    const ProcessState& state = ProcessState::Instance();
    const int count = state.Documents ? state.Documents->Count() : 0;
    QMdiSubWindow* active = mdiArea_->activeSubWindow();
    for (int i = 1; i <= count; ++i) {
        const auto document = state.Documents->At(i - 1);
        CommandTool* tool = menu->AddTool(QStringLiteral("miWList") + QString::number(i),
                                          QStringLiteral("&") + QString::number(i) +
                                              QStringLiteral(" ") + document->DisplayName(),
                                          CommandTool::Type::Check, i == 1);
        const clsDocView* view = document->View();
        tool->SetChecked(view && view == DocumentTabs::FindViewByWindow(active));
    }
    CommandTool* maximize = menu->Tool(QStringLiteral("Maximize"));
    maximize->SetEnabled(count > 0);
    maximize->SetChecked(count > 0 && active && active->isMaximized());
}

void frmMain::SetBusy(bool busy) {
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else if (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
}

void frmMain::DocumentAdded() {
    DocumentCount += 1;
}

void frmMain::DocumentRemoved() {
    DocumentCount -= 1;
    if (DocumentCount < 1)
        ShowDocumentPanes(false);
}

void frmMain::ShowDocumentPanes(bool visible) {
    CommandBand* status = bar_->Band(QStringLiteral("StatusBar"));
    status->Panel(QStringLiteral("Panel2"))->setVisible(visible);
    status->Panel(QStringLiteral("Panel3"))->setVisible(visible);
}

void frmMain::SetPaneText(int pane, const QString& text) {
    if (QLabel* panel = bar_->Band(QStringLiteral("StatusBar"))
                            ->Panel(QStringLiteral("Panel") + QString::number(pane)))
        panel->setText(text);
}

QString frmMain::PaneText(int pane) const {
    const QLabel* panel = bar_->Band(QStringLiteral("StatusBar"))
                              ->Panel(QStringLiteral("Panel") + QString::number(pane));
    return panel ? panel->text() : QString();
}

void frmMain::NewDocument() {
    std::shared_ptr<mvDocument> document = mvDocument::Create();
    document->FileNew();
}

// Opening, saving and closing documents.

void frmMain::OpenDocument() {
    modOpen::OpenCommand(this);
}

void frmMain::OpenRecent(int16_t index) {
    modOpen::OpenRecent(index);
}

void frmMain::SaveDocument(const std::shared_ptr<mvDocument>& document) {
    if (!document)
        return;
    if (document->DocumentResource())
        document->FileSave();
    else
        SaveDocumentAs(document);
}

void frmMain::SaveDocumentAs(const std::shared_ptr<mvDocument>& document) {
    modSave::SaveAsCommand(document, this);
}

int16_t frmMain::PromptToSave(const std::shared_ptr<mvDocument>& document, const QString& message,
                              int16_t buttons) {
    if (!document || !document->IsDirty())
        return SavedOrClean;
    const QString text = message.isEmpty() ? QStringLiteral("Save changes to ") +
                                                 document->DisplayName() + QStringLiteral(" ?")
                                           : message;
    const int32_t answer = BrixMessage(text, buttons | MsgBox::Question, this) & ~MsgBox::Ticked;
    if (answer == MsgBox::Yes || answer == MsgBox::OK) {
        const bool saved = document->DocumentResource() ? document->FileSave()
                                                        : modSave::SaveAsCommand(document, this);
        return saved ? SavedOrClean : Cancelled;
    }
    return answer == MsgBox::No ? Declined : Cancelled;
}

void frmMain::CompileDocument(const std::shared_ptr<mvDocument>& document) {
    if (!document)
        return;
    if (PromptToSave(document,
                     QStringLiteral("Program has not been saved. Do you want\nto save the "
                                    "file, then compile the program?"),
                     MsgBox::OKCancel) == Cancelled)
        return;
    document->Compile();
}

void frmMain::ShowProperties(const std::shared_ptr<mvDocument>& document) {
    frmProperties::ShowDialog(document, this);
}

void frmMain::ShowResults(const QString& text) {
    frmResults::ShowResults(text, this);
}

int16_t frmMain::CloseDocument(const std::shared_ptr<mvDocument>& document) {
    const int16_t choice = PromptToSave(document, QString(), MsgBox::YesNoCancel);
    if (choice == Cancelled)
        return Cancelled;
    // Declined: nothing is to ask again on the way out.
    if (choice == Declined)
        document->SetDirty(false);
    document->FileClose(false);
    return choice;
}

bool frmMain::CloseAllDocuments() {
    ProcessState& state = ProcessState::Instance();
    if (!state.Documents)
        return true;
    for (const auto& document : state.Documents->Snapshot())
        if (CloseDocument(document) == Cancelled)
            return false;
    return true;
}

void frmMain::SaveAllDocuments() {
    ProcessState& state = ProcessState::Instance();
    if (!state.Documents)
        return;
    for (const auto& document : state.Documents->Snapshot()) {
        if (!document->IsDirty())
            continue;
        if (document->ReadOnly()) {
            const int32_t answer =
                BrixMessage(QStringLiteral("Document ") + document->DisplayName() +
                                QStringLiteral(" is read-only and cannot be saved. Continue "
                                               "with next document?"),
                            MsgBox::OKCancel | MsgBox::Exclamation, this) &
                ~MsgBox::Ticked;
            if (answer == MsgBox::Cancel)
                return;
            continue;
        }
        SaveDocument(document);
    }
}

void frmMain::ExitApplication() {
    if (CloseAllDocuments())
        UnloadForm();
}

void frmMain::dragEnterEvent(QDragEnterEvent* event) {
    dragMoveEvent(event);
}

void frmMain::dragMoveEvent(QDragMoveEvent* event) {
    // Only a list of files, and only copied.
    if (event->mimeData()->hasUrls() && (event->possibleActions() & Qt::CopyAction)) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    } else {
        event->ignore();
    }
}

void frmMain::dropEvent(QDropEvent* event) {
    QStringList files;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile())
            files << url.toLocalFile();
    if (files.isEmpty() || !(event->possibleActions() & Qt::CopyAction)) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    // After the drop has ended, so that the other program isn't held by our questions.
    QTimer::singleShot(0, this, [files] { modOpen::OpenDroppedFiles(files); });
}

void frmMain::UnloadForm() {
    if (unloading_)
        return;
    programmaticClose_ = true;
    close();
}

void frmMain::closeEvent(QCloseEvent* event) {
    if (unloading_) {
        event->accept();
        return;
    }
    // Closed by the user: every document decides; one refusal keeps the program up.
    if (!programmaticClose_ && !CloseAllDocuments()) {
        event->ignore();
        return;
    }
    // The manual stays open in the browser, which is the desktop's and not ours to close.
    HelpOpen = false;
    event->accept();
    unload();
}

void frmMain::unload() {
    unloading_ = true;
    if (filterInstalled_) {
        KeyboardFilter::Remove();
        filterInstalled_ = false;
    }
    saveWindowState();
    Shutdown();
    ProcessState::Instance().MainWindow.clear();
}

QList<QKeySequence> frmMain::CommandKeys() const {
    QList<QKeySequence> keys;
    for (const QAction* action : findChildren<QAction*>()) {
        const QKeySequence key = action->shortcut();
        if (!key.isEmpty() && !keys.contains(key))
            keys.append(key);
    }
    return keys;
}
