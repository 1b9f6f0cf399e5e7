#include "editing/frmDocument.h"

#include "app/ProcessState.h"
#include "documents/mvDocument.h"
#include "editing/WordKind.h"
#include "language/BufferLexer.h"
#include "language/DrawClass.h"
#include "language/LexClass.h"
#include "language/LineNumberGutter.h"
#include "language/PrintClass.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "support/IFrame.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <QMdiArea>
#include <QMouseEvent>
#include <QTimer>
#include <algorithm>

frmDocument::frmDocument(IFrame* frame)
    : frmDocument(frame, Qt::SubWindow | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {}

frmDocument::frmDocument(IFrame* frame, Qt::WindowFlags flags)
    : QMdiSubWindow(nullptr, flags), frame_(frame),
      frameWidget_(frame ? frame->OwnerWindow() : nullptr) {
    // The editor under a notice line that shows only when there is something to tell.
    auto* body = new QWidget(this);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    lblNotice_ = new QLabel(body);
    lblNotice_->setWordWrap(true);
    lblNotice_->setContentsMargins(6, 4, 6, 4);
    lblNotice_->setAutoFillBackground(true);
    lblNotice_->setBackgroundRole(QPalette::ToolTipBase);
    lblNotice_->setForegroundRole(QPalette::ToolTipText);
    lblNotice_->hide();
    txtText_ = new SourceView(body);
    layout->addWidget(lblNotice_);
    layout->addWidget(txtText_);
    setWidget(body);
    setFocusProxy(txtText_);
    setAttribute(Qt::WA_DeleteOnClose, false);
    focusTimer_ = new QTimer(this);
    focusTimer_->setSingleShot(true);
    connect(focusTimer_, &QTimer::timeout, this, &frmDocument::focusIfActive);
    if (frame_) {
        txtText_->SetCommandKeys(frame_->CommandKeys());
        frame_->DocumentArea()->addSubWindow(this, flags);
    }
}

frmDocument::~frmDocument() = default;

void frmDocument::Load() {
    // A new window follows the active child: maximised in an empty frame, normal beside a
    // minimised child, else the same state.
    int16_t state = Maximized;
    if (frame()) {
        // The current child, even while a menu or dialog has the focus (the recent list).
        if (auto* active = qobject_cast<frmDocument*>(frame()->DocumentArea()->currentSubWindow());
            active && active != this) {
            const int16_t activeState = active->WindowState();
            state = activeState == Minimized ? int16_t(Normal) : activeState;
        }
    }
    lastWindowState_ = state;

    lex_ = std::make_shared<LexClass>();
    draw_ = std::make_shared<DrawClass>(*txtText_);
    txtText_->Gutter().SetDrawHook(draw_);
    txtText_->SetPrintHook(std::make_shared<PrintClass>());
    // The document's own switch, which starts as the setting, and the one keyword table of
    // the settings, so that an edited list reaches every open document.
    const auto document = viewObject_.lock();
    lex_->Highlight = document ? document->Highlight() : Settings().Highlight;
    lex_->Keywords = Settings().Keywords;
    txtText_->Buffer().SetLex(lex_);
    ApplySettings();

    showInsertMode();
    if (frame())
        frame()->ShowDocumentPanes(true);

    connect(txtText_, &QsciScintilla::cursorPositionChanged, this, [this] {
        showCaret();
        checkSelection();
    });
    connect(txtText_, &QsciScintilla::selectionChanged, this, &frmDocument::checkSelection);
    connect(&txtText_->Gutter(), &LineNumberGutter::LinePressed, this, &frmDocument::marginPressed);
    connect(txtText_, &SourceView::ContextMenuRequested, this, [this](const QPoint& globalPos) {
        const QPoint at = txtText_->viewport()->mapFromGlobal(globalPos);
        Q_EMIT ContextMenuRequested(WordKindAt(at.x(), at.y()), globalPos);
    });
    connect(this, &frmDocument::ContextMenuRequested, this,
            [this](int16_t kind, const QPoint& globalPos) {
                if (IFrame* frame = this->frame())
                    frame->ShowContextMenu(kind, globalPos);
            });
    connect(this, &frmDocument::GotoRequested, this,
            [this](const std::shared_ptr<mvDocument>& document) {
                if (IFrame* frame = this->frame())
                    frame->HandleGoto(document, false);
            });
    connect(this, &frmDocument::OpenRequested, this,
            [this](const std::shared_ptr<mvDocument>& document) {
                if (IFrame* frame = this->frame())
                    frame->HandleOpen(document);
            });
    txtText_->installEventFilter(this);
    txtText_->viewport()->installEventFilter(this);
    connect(&txtText_->Buffer(), &ScintillaBuffer::ModifiedChanged, this, [this](bool modified) {
        // The auto-recover pass copies the documents that hold changes.
        autoSaveFlag_ = modified;
        if (frame())
            frame()->RefreshCommands();
    });
}

void frmDocument::ApplySettings() {
    const Moriox& settings = Settings();
    const QFont font = TokenStyleTable::FontOf(settings, txtText_->Lexer().defaultFont());
    txtText_->SetTabSize(settings.TabSize);
    txtText_->SetLineWrap(settings.LineWrap);
    screenStyles_ = TokenStyleTable::ForScreen(settings);
    printStyles_ = TokenStyleTable::ForPrinter(settings);
    screenStyles_.ApplyTo(*txtText_, font, settings.BackColor);
    txtText_->SetMargin(settings.Margin);
    txtText_->Gutter().Relayout();
}

void frmDocument::Activate() {
    if (frame() && frame()->DocumentArea()->activeSubWindow() != this)
        frame()->DocumentArea()->setActiveSubWindow(this);
    txtText_->setFocus();
}

void frmDocument::OnActivated() {
    if (!frame())
        return;
    ProcessState::Instance().ContextWord.clear();
    frame()->RefreshCommands();
    showCaret();
    showInsertMode();
    if (WindowState() == Maximized) {
        txtText_->setFocus();
        // The frame may not be the active window yet; try again shortly.
        if (!txtText_->hasFocus())
            focusTimer_->start(50);
    }
}

void frmDocument::focusIfActive() {
    if (frame() && frame()->DocumentArea()->activeSubWindow() == this)
        txtText_->setFocus();
}

void frmDocument::checkSelection() {
    const bool selection = txtText_->HasSelection();
    if (selection == selectionShown_)
        return;
    selectionShown_ = selection;
    if (frame())
        frame()->RefreshCommands();
}

bool frmDocument::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtText_) {
        switch (event->type()) {
        case QEvent::ShortcutOverride:
        case QEvent::KeyPress: {
            auto* key = static_cast<QKeyEvent*>(event);
            if (event->type() == QEvent::ShortcutOverride) {
                // Ours before the frame's shortcuts; the press itself then comes here.
                if (keyPress(key, false))
                    event->accept();
                return false;
            }
            return keyPress(key, true);
        }
        case QEvent::KeyRelease: {
            const auto* key = static_cast<QKeyEvent*>(event);
            if (key->key() == Qt::Key_Insert && key->modifiers() == Qt::NoModifier)
                showInsertMode();
            checkSelection();
            return false;
        }
        default:
            return false;
        }
    }
    if (watched == txtText_->viewport()) {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
            ProcessState::Instance().ContextWord.clear();
            doubleClicked_ = false;
            return false;
        case QEvent::MouseButtonDblClick:
            doubleClicked_ = true;
            return false;
        case QEvent::MouseButtonRelease:
            mouseRelease(static_cast<QMouseEvent*>(event));
            return false;
        default:
            return false;
        }
    }
    return QMdiSubWindow::eventFilter(watched, event);
}

bool frmDocument::keyPress(QKeyEvent* event, bool act) {
    const Qt::KeyboardModifiers modifiers =
        event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
    const int key = event->key();
    if (key == Qt::Key_Delete && modifiers == Qt::ShiftModifier) {
        if (act)
            txtText_->Cut();
        return true;
    }
    if (key == Qt::Key_Insert && modifiers == Qt::ControlModifier) {
        if (act)
            txtText_->Copy();
        return true;
    }
    if (key == Qt::Key_Insert && modifiers == Qt::ShiftModifier) {
        if (act)
            txtText_->Paste();
        return true;
    }
    // Ctrl+] and Ctrl+\ type codes 29 and 28: the value and subvalue marks.
    if (modifiers == Qt::ControlModifier &&
        (key == Qt::Key_BracketRight || key == Qt::Key_Backslash)) {
        if (auto document = act ? viewObject_.lock() : nullptr) {
            if (key == Qt::Key_BracketRight)
                document->InsValue();
            else
                document->InsSubValue();
        }
        return true;
    }
    return false;
}

void frmDocument::mouseRelease(QMouseEvent* event) {
    if (doubleClicked_) {
        doubleClicked_ = false;
        const int16_t kind = WordKindAt(lastMouse_.x(), lastMouse_.y());
        if (auto document = viewObject_.lock()) {
            if (kind == WordKind::GotoTarget)
                Q_EMIT GotoRequested(document);
            else if (kind == WordKind::CallName || kind == WordKind::IncludeItem)
                Q_EMIT OpenRequested(document);
        }
    }
    if (event->button() == Qt::LeftButton) {
        // The caret is put back where it stands, so that it is in view after the click; a
        // selection is kept with its direction.
        if (!(event->modifiers() & Qt::ShiftModifier)) {
            if (txtText_->HasSelection()) {
                int32_t sc = 0, sl = 0, ec = 0, el = 0;
                txtText_->GetSelection(sc, sl, ec, el);
                txtText_->SetCursor(txtText_->CursorCol(), txtText_->CursorLine());
                txtText_->SetSelection(sc, sl, ec, el);
            } else {
                txtText_->SetCursor(txtText_->CursorCol(), txtText_->CursorLine());
            }
        }
        lastMouse_ = event->position().toPoint();
        if (frame())
            frame()->RefreshCommands();
    }
}

void frmDocument::marginPressed(int32_t line, Qt::KeyboardModifiers modifiers) {
    if (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return;
    if (!(modifiers & Qt::ShiftModifier))
        anchorLine_ = line;
    txtText_->SetSelection(0, std::min(anchorLine_, line), 32767, std::max(anchorLine_, line));
}

int16_t frmDocument::WordKindAt(int x, int y) {
    int32_t column = 0;
    int32_t line = 0;
    txtText_->PointToPosition(x, y, column, line);
    if (line < 0 || line >= txtText_->Buffer().NumLines())
        return WordKind::Nothing;
    const std::vector<SourceToken> tokens = txtText_->Buffer().ScanLine(line);
    return WordKind::Classify(txtText_->Buffer().GetLine(line), tokens, column,
                              ProcessState::Instance().ContextWord);
}

void frmDocument::Show() {
    switch (lastWindowState_) {
    case Maximized:
        showMaximized();
        break;
    case Minimized:
        showMinimized();
        break;
    default:
        showNormal();
        break;
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
    const bool wasMaximized = isMaximized();
    hide();
    if (frame()) {
        QMdiArea* area = frame()->DocumentArea();
        area->removeSubWindow(this);
        // The children behind a maximised one were never shown at a size of their own:
        // the next one takes over the maximised state.
        if (wasMaximized)
            maximizeNext(*area);
    }
    // The window may be unloading from inside one of its own events.
    deleteLater();
    if (frame())
        frame()->RefreshCommands();
}

void frmDocument::maximizeNext(QMdiArea& area) {
    const QList<QMdiSubWindow*> order = area.subWindowList(QMdiArea::ActivationHistoryOrder);
    for (auto it = order.rbegin(); it != order.rend(); ++it) {
        auto* next = qobject_cast<frmDocument*>(*it);
        if (!next || next == this || next->unloading_ || next->isMinimized() || !next->isVisible())
            continue;
        area.setActiveSubWindow(next);
        next->SetWindowState(Maximized);
        return;
    }
}

void frmDocument::ShowNotice(const QString& text) {
    lblNotice_->setText(text);
    lblNotice_->setVisible(!text.isEmpty());
}

QString frmDocument::Notice() const {
    return lblNotice_->isHidden() ? QString() : lblNotice_->text();
}

void frmDocument::SetTitle(const QString& title) {
    titleText_ = title;
    setWindowTitle(title);
    if (frame() && WindowState() == Maximized)
        frame()->RefreshCaption();
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
        if (frame())
            frame()->RefreshCaption();
    }
}

void frmDocument::showCaret() {
    if (!frame() || frame()->DocumentArea()->activeSubWindow() != this)
        return;
    int32_t column = 0;
    int32_t line = 0;
    txtText_->ScreenPosition(txtText_->CursorCol(), txtText_->CursorLine(), column, line);
    frame()->SetPaneText(2, QStringLiteral("Ln %1, Col %2").arg(line + 1).arg(column + 1));
}

void frmDocument::showInsertMode() {
    if (frame())
        frame()->SetPaneText(3, txtText_->OvertypeMode() ? QStringLiteral("Ovr")
                                                         : QStringLiteral("Ins"));
}

void frmDocument::SetVisible(bool visible) {
    if (visible)
        Show();
    else
        hide();
}
