#include "editing/frmDocument.h"

#include "app/ProcessState.h"
#include "documents/mvDocument.h"
#include "language/BufferLexer.h"
#include "language/DrawClass.h"
#include "language/LexClass.h"
#include "language/LineNumberGutter.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"

#include <QCloseEvent>
#include <QMdiArea>

frmDocument::frmDocument(frmMain* frame)
    : frmDocument(frame, Qt::SubWindow | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {}

frmDocument::frmDocument(frmMain* frame, Qt::WindowFlags flags)
    : QMdiSubWindow(nullptr, flags), frame_(frame) {
    txtText_ = new SourceView(this);
    setWidget(txtText_);
    setAttribute(Qt::WA_DeleteOnClose, false);
    if (frame_)
        frame_->MdiArea()->addSubWindow(this, flags);
}

frmDocument::~frmDocument() = default;

void frmDocument::Load() {
    // A new window follows the active child: maximised in an empty frame, normal beside a
    // minimised child, else the same state.
    int16_t state = Maximized;
    if (frame_) {
        if (auto* active = qobject_cast<frmDocument*>(frame_->MdiArea()->activeSubWindow());
            active && active != this) {
            const int16_t activeState = active->WindowState();
            state = activeState == Minimized ? int16_t(Normal) : activeState;
        }
    }
    lastWindowState_ = state;

    lex_ = std::make_shared<LexClass>();
    draw_ = std::make_shared<DrawClass>(*txtText_);
    txtText_->Gutter().SetDrawHook(draw_);
    // The document's own switch, which starts as the setting, and the one keyword table of
    // the settings, so that an edited list reaches every open document.
    const auto document = viewObject_.lock();
    lex_->Highlight = document ? document->Highlight() : Settings().Highlight;
    lex_->Keywords = Settings().Keywords;
    txtText_->Buffer().SetLex(lex_);
    ApplySettings();

    showInsertMode();
    if (frame_)
        frame_->ShowDocumentPanes(true);

    connect(txtText_, &QsciScintilla::cursorPositionChanged, this, [this] { showCaret(); });
    connect(&txtText_->Buffer(), &ScintillaBuffer::ModifiedChanged, this, [this] {
        if (frame_)
            frame_->UpdateToolBar();
    });
}

void frmDocument::ApplySettings() {
    const Moriox& settings = Settings();
    QFont font = txtText_->Lexer().defaultFont();
    if (!settings.FontName.isEmpty())
        font.setFamily(settings.FontName);
    bool ok = false;
    const int size = settings.FontSize.toInt(&ok);
    if (ok && size > 0)
        font.setPointSize(size);
    font.setFixedPitch(settings.FontMono);
    txtText_->SetTabSize(settings.TabSize);
    txtText_->SetLineWrap(settings.LineWrap);
    screenStyles_ = TokenStyleTable::ForScreen(settings);
    printStyles_ = TokenStyleTable::ForPrinter(settings);
    screenStyles_.ApplyTo(*txtText_, font, settings.BackColor);
    txtText_->Gutter().Relayout();
}

void frmDocument::Activate() {
    if (frame_ && frame_->MdiArea()->activeSubWindow() != this)
        frame_->MdiArea()->setActiveSubWindow(this);
    txtText_->setFocus();
}

void frmDocument::OnActivated() {
    if (!frame_)
        return;
    frame_->UpdateToolBar();
    showCaret();
    showInsertMode();
    if (WindowState() == Maximized)
        txtText_->setFocus();
}

void frmDocument::Show() {
    switch (lastWindowState_) {
    case Maximized: showMaximized(); break;
    case Minimized: showMinimized(); break;
    default: showNormal(); break;
    }
}

bool frmDocument::QueryUnload() {
    auto document = viewObject_.lock();
    return !document || document->FileClose(true);
}

void frmDocument::Unload() {
    if (unloading_)
        return;
    unloading_ = true;
    viewObject_.reset();
    hide();
    if (frame_)
        frame_->MdiArea()->removeSubWindow(this);
    // The window may be unloading from inside one of its own events.
    deleteLater();
    if (frame_)
        frame_->UpdateToolBar();
}

void frmDocument::SetTitle(const QString& title) {
    titleText_ = title;
    setWindowTitle(title);
    if (frame_ && WindowState() == Maximized)
        frame_->SetTitle(frame_->Title());
}

void frmDocument::SetViewObject(const std::shared_ptr<mvDocument>& document) {
    viewObject_ = document;
}

int16_t frmDocument::WindowState() const {
    if (isMinimized())
        return Minimized;
    if (isMaximized())
        return Maximized;
    if (!isVisible())
        return lastWindowState_;
    return Normal;
}

void frmDocument::SetWindowState(int16_t state) {
    lastWindowState_ = state;
    if (isVisible())
        Show();
}

void frmDocument::HighlightChanged(bool highlight) {
    if (lex_)
        lex_->Highlight = highlight;
    // Lines are scanned again as they are shown; the flags of the others follow then.
    txtText_->Buffer().InvalidateStyles(0);
}

void frmDocument::closeEvent(QCloseEvent* event) {
    // The user closed the window: the document decides, and may keep it open.
    if (unloading_ || QueryUnload()) {
        event->accept();
        if (!unloading_)
            Unload();
    } else {
        event->ignore();
    }
}

void frmDocument::changeEvent(QEvent* event) {
    QMdiSubWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange || isMinimized())
        return;
    const int16_t state = WindowState();
    if (state != lastWindowState_) {
        lastWindowState_ = state;
        // The frame's caption shows the title of a maximised child only.
        if (frame_)
            frame_->SetTitle(frame_->Title());
    }
}

void frmDocument::showCaret() {
    if (!frame_ || frame_->MdiArea()->activeSubWindow() != this)
        return;
    int32_t column = 0;
    int32_t line = 0;
    txtText_->ScreenPosition(txtText_->CursorCol(), txtText_->CursorLine(), column, line);
    frame_->SetPaneText(2, QStringLiteral("Ln %1, Col %2").arg(line + 1).arg(column + 1));
}

void frmDocument::showInsertMode() {
    if (frame_)
        frame_->SetPaneText(3, txtText_->OvertypeMode() ? QStringLiteral("Ovr") : QStringLiteral("Ins"));
}

void frmDocument::SetVisible(bool visible) {
    if (visible)
        Show();
    else
        hide();
}
