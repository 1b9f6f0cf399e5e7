#include "shell/frmMain.h"

#include "app/ProcessState.h"
#include "app/modMain.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "editing/frmDocument.h"

#include <QCloseEvent>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStatusBar>

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
}

frmMain::~frmMain() = default;

void frmMain::Load() {
    SetTitle(QStringLiteral("Brix"));
    resize(900, 650);
    ShowDocumentPanes(false);
    DocumentCount = 0;
    UpdateToolBar();
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

bool frmMain::CloseAllDocuments() {
    ProcessState& state = ProcessState::Instance();
    if (!state.Documents)
        return true;
    for (const auto& document : state.Documents->Snapshot())
        if (!document->FileClose(true))
            return false;
    return true;
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
    Shutdown();
    ProcessState::Instance().MainWindow.clear();
}
