#include "shell/frmMain.h"

#include "app/ProcessState.h"
#include "app/modMain.h"
#include "documents/DocumentCollection.h"
#include "documents/modOpen.h"
#include "documents/modSave.h"
#include "documents/mvDocument.h"
#include "editing/frmDocument.h"
#include "settings/Moriox.h"
#include "settings/SettingText.h"
#include "settings/SettingsStore.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

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

frmMain::frmMain(QWidget* parent) : QMainWindow(parent) {
    setAttribute(Qt::WA_DeleteOnClose);
    mdiArea_ = new QMdiArea(this);
    mdiArea_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    mdiArea_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(mdiArea_);
    for (int i = 1; i <= 3; ++i) {
        panes_[static_cast<size_t>(i)] = new QLabel(this);
        if (i == 1)
            statusBar()->addWidget(panes_[1], 1);
        else
            statusBar()->addPermanentWidget(panes_[static_cast<size_t>(i)]);
    }
    connect(mdiArea_, &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* window) {
        SetTitle(title_);
        if (auto* document = qobject_cast<frmDocument*>(window))
            document->OnActivated();
        else
            UpdateToolBar();
    });
    setAcceptDrops(true);
    addFileShortcuts();
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
    DocumentCount = 0;
    UpdateToolBar();
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

    statusBar()->setVisible(readWindowFlag(QStringLiteral("StatusbarVisible")));
    toolbarVisible_ = readWindowFlag(QStringLiteral("ToolbarVisible"));
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
    writeWindowSetting(QStringLiteral("ToolbarVisible"), SettingText::FromBoolean(toolbarVisible_));
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
    const frmDocument* child = ActiveDocumentWindow();
    if (child && child->isMaximized())
        setWindowTitle(title_ + QStringLiteral(" - [") + child->Title() + QStringLiteral("]"));
    else
        setWindowTitle(title_);
}

frmDocument* frmMain::ActiveDocumentWindow() const {
    return qobject_cast<frmDocument*>(mdiArea_->activeSubWindow());
}

std::shared_ptr<mvDocument> frmMain::ActiveDocument() const {
    const frmDocument* child = ActiveDocumentWindow();
    return child ? child->ViewObject() : nullptr;
}

void frmMain::UpdateToolBar() {
    // The command bars arrive with the command table; nothing to refresh yet.
}

void frmMain::ShowDocumentPanes(bool visible) {
    panes_[2]->setVisible(visible);
    panes_[3]->setVisible(visible);
}

void frmMain::SetPaneText(int pane, const QString& text) {
    if (pane >= 1 && pane <= 3)
        panes_[static_cast<size_t>(pane)]->setText(text);
}

QString frmMain::PaneText(int pane) const {
    return pane >= 1 && pane <= 3 ? panes_[static_cast<size_t>(pane)]->text() : QString();
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

void frmMain::addFileShortcuts() {
    auto add = [this](const QKeySequence& keys, auto&& run) {
        auto* action = new QAction(this);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WindowShortcut);
        connect(action, &QAction::triggered, this, run);
        addAction(action);
    };
    add(QKeySequence(Qt::CTRL | Qt::Key_N), [this] { NewDocument(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_O), [this] { OpenDocument(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_S), [this] { SaveDocument(ActiveDocument()); });
    add(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S),
        [this] { SaveDocumentAs(ActiveDocument()); });
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
    event->accept();
    unload();
}

void frmMain::unload() {
    unloading_ = true;
    saveWindowState();
    Shutdown();
    ProcessState::Instance().MainWindow.clear();
}
