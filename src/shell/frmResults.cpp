#include "shell/frmResults.h"

#include "app/ProcessState.h"
#include "documents/mvDocument.h"
#include "settings/Moriox.h"
#include "shell/ResultsLineNumber.h"
#include "support/IFrame.h"
#include "support/UnicodeClipboard.h"

#include <QApplication>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QFontDialog>
#include <QKeyEvent>
#include <QMenuBar>
#include <QPrintDialog>
#include <QPrinter>
#include <QShortcut>
#include <QTextEdit>
#include <QTimer>

namespace {

// 120 twips, the gap to the frame's lower right corner.
int cornerGap(const QWidget& widget) {
    return qRound(120.0 * widget.logicalDpiX() / 1440.0);
}

} // namespace

frmResults* frmResults::ShowResults(const QString& text, QWidget* frame) {
    ProcessState& state = ProcessState::Instance();
    auto* window = qobject_cast<frmResults*>(state.ResultsWindow.data());
    if (!window) {
        window = new frmResults(frame);
        state.ResultsWindow = window;
    }
    if (!text.isEmpty())
        window->txResults_->setPlainText(text);
    if (!window->shown_) {
        window->shown_ = true;
        window->placeInFrameCorner();
    }
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

frmResults::frmResults(QWidget* frame) : QMainWindow(frame, Qt::Window), frame_(frame) {
    setObjectName(QStringLiteral("frmResults"));
    setWindowTitle(QStringLiteral("Results"));
    resize(560, 240);

    txResults_ = new QTextEdit(this);
    txResults_->setObjectName(QStringLiteral("txResults"));
    txResults_->setReadOnly(true);
    txResults_->setAcceptRichText(false);
    txResults_->setLineWrapMode(QTextEdit::NoWrap);
    txResults_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    txResults_->setToolTip(QStringLiteral("Double-click to edit source line"));
    txResults_->setContextMenuPolicy(Qt::NoContextMenu);
    txResults_->installEventFilter(this);
    txResults_->viewport()->installEventFilter(this);
    setCentralWidget(txResults_);

    const Moriox& settings = Settings();
    QFont font = txResults_->font();
    if (!settings.ResultsFontName.isEmpty())
        font.setFamily(settings.ResultsFontName);
    if (!settings.ResultsFontSize.isEmpty()) {
        const double size = settings.ResultsFontSize.toDouble();
        if (size > 0)
            font.setPointSizeF(size);
    }
    txResults_->setFont(font);

    dblClkTimer_ = new QTimer(this);
    dblClkTimer_->setSingleShot(true);
    connect(dblClkTimer_, &QTimer::timeout, this, &frmResults::DoubleClickTick);

    // Escape hides the window like its close box.
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, &QWidget::hide);
    buildMenus();
}

void frmResults::buildMenus() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    QAction* print = file->addAction(QStringLiteral("&Print"), this, &frmResults::PrintResults);
    print->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_P));
    file->addSeparator();
    file->addAction(QStringLiteral("Fon&t..."), this, &frmResults::ChooseFont);
    file->addSeparator();
    file->addAction(QStringLiteral("&Close"), this, &QWidget::hide);

    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Edit"));
    QAction* copy = edit->addAction(QStringLiteral("&Copy"), this, &frmResults::CopyResults);
    copy->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_C));
    QAction* all = edit->addAction(QStringLiteral("Select &All"), this, &frmResults::SelectAll);
    all->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_A));
    QAction* none = edit->addAction(QStringLiteral("Select &None"), this, &frmResults::SelectNone);
    for (QAction* action : {print, copy, all})
        action->setShortcutContext(Qt::WindowShortcut);

    popup_ = new QMenu(this);
    popup_->addAction(print);
    popup_->addSeparator();
    popup_->addAction(copy);
    popup_->addAction(all);
    popup_->addAction(none);
}

void frmResults::placeInFrameCorner() {
    if (!frame_)
        return;
    const QRect outer = frame_->frameGeometry();
    // Not shown yet, the window has no border of its own: it gets the frame's.
    const QSize border = outer.size() - frame_->size();
    const QSize size =
        frameGeometry().size() == this->size() ? this->size() + border : frameGeometry().size();
    const int gap = cornerGap(*this);
    move(outer.left() + outer.width() - size.width() - gap,
         outer.top() + outer.height() - size.height() - gap);
}

void frmResults::PrintTo(QPrinter& printer) {
    txResults_->print(&printer);
}

void frmResults::PrintResults() {
    QPrinter printer(QPrinter::HighResolution);
    QPrintDialog dialog(&printer, this);
    if (txResults_->textCursor().hasSelection()) {
        dialog.setOption(QAbstractPrintDialog::PrintSelection, true);
        printer.setPrintRange(QPrinter::Selection);
    }
    if (dialog.exec() == QDialog::Accepted)
        PrintTo(printer);
}

void frmResults::CopyResults() {
    UnicodeClipboard::SetText(txResults_->textCursor().selectedText().replace(
        QChar::ParagraphSeparator, QStringLiteral("\r\n")));
}

void frmResults::SelectAll() {
    txResults_->selectAll();
}

void frmResults::SelectNone() {
    QTextCursor cursor = txResults_->textCursor();
    cursor.setPosition(0);
    txResults_->setTextCursor(cursor);
}

void frmResults::ChooseFont() {
    bool ok = false;
    const QFont font = QFontDialog::getFont(&ok, txResults_->font(), this);
    if (!ok)
        return;
    Moriox& settings = Settings();
    settings.ResultsFontName = font.family();
    settings.ResultsFontSize = QString::number(font.pointSizeF());
    txResults_->setFont(font);
}

void frmResults::DoubleClickTick() {
    try {
        const QTextCursor cursor = txResults_->textCursor();
        const int32_t line = ResultsLineNumber::Find(
            txResults_->toPlainText(), cursor.selectionStart(), cursor.selectedText());
        if (line <= 0)
            return;
        // The output has no link to its source: the jump goes to the active document.
        IFrame* frame = ProcessState::Instance().Frame();
        if (auto document = frame ? frame->ActiveDocument() : nullptr) {
            document->GotoLine(line);
            document->Activate();
        }
    } catch (...) {
        // A line without a usable number, or no document to go to: nothing happens.
    }
}

void frmResults::closeEvent(QCloseEvent* event) {
    // The window stays loaded, with its text, for the life of the process.
    event->ignore();
    hide();
}

bool frmResults::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txResults_->viewport()) {
        if (event->type() == QEvent::MouseButtonDblClick)
            dblClkTimer_->start(50);
        if (event->type() == QEvent::MouseButtonPress) {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() == Qt::RightButton && !(mouse->modifiers() & Qt::ShiftModifier)) {
                popup_->popup(mouse->globalPosition().toPoint());
                return true;
            }
        }
    } else if (watched == txResults_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            hide();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}
