#include "editing/frmFind.h"

#include "app/ProcessState.h"
#include "documents/clsDocView.h"
#include "documents/mvDocument.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "support/IFrame.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

frmFind& frmFind::Instance() {
    ProcessState& state = ProcessState::Instance();
    if (auto* loaded = Loaded())
        return *loaded;
    IFrame* frame = state.Frame();
    auto* dialog = new frmFind(frame ? frame->OwnerWindow() : nullptr);
    state.FindWindow = dialog;
    return *dialog;
}

frmFind* frmFind::Loaded() {
    return qobject_cast<frmFind*>(ProcessState::Instance().FindWindow.data());
}

frmFind::frmFind(QWidget* owner) : QDialog(owner) {
    setModal(false);
    txtFind = new QLineEdit(this);
    txtRepl = new QLineEdit(this);
    auto* lblFind = new QLabel(QStringLiteral("Fi&nd what:"), this);
    lblFind->setBuddy(txtFind);
    lblRepl_ = new QLabel(QStringLiteral("Re&place with:"), this);
    lblRepl_->setBuddy(txtRepl);
    chkSelection = new QCheckBox(QStringLiteral("In &selection only"), this);
    chkWholeWord = new QCheckBox(QStringLiteral("Match &whole word only"), this);
    chkMatchCase = new QCheckBox(QStringLiteral("Match &case"), this);
    auto* direction = new QGroupBox(QStringLiteral("Direction"), this);
    optDirection[0] = new QRadioButton(QStringLiteral("&Up"), direction);
    optDirection[1] = new QRadioButton(QStringLiteral("&Down"), direction);
    optDirection[1]->setChecked(true);
    auto* directionLayout = new QHBoxLayout(direction);
    directionLayout->addWidget(optDirection[0]);
    directionLayout->addWidget(optDirection[1]);
    cmdFind = new QPushButton(QStringLiteral("&Find Next"), this);
    cmdRepl = new QPushButton(QStringLiteral("&Replace"), this);
    cmdAll = new QPushButton(QStringLiteral("Replace &All"), this);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdFind->setDefault(true);

    auto* fields = new QGridLayout;
    fields->addWidget(lblFind, 0, 0);
    fields->addWidget(txtFind, 0, 1);
    fields->addWidget(lblRepl_, 1, 0);
    fields->addWidget(txtRepl, 1, 1);
    auto* options = new QVBoxLayout;
    options->addWidget(chkSelection);
    options->addWidget(chkWholeWord);
    options->addWidget(chkMatchCase);
    auto* lower = new QHBoxLayout;
    lower->addLayout(options);
    lower->addWidget(direction, 0, Qt::AlignTop);
    auto* left = new QVBoxLayout;
    left->addLayout(fields);
    left->addLayout(lower);
    left->addStretch();
    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {cmdFind, cmdRepl, cmdAll, cmdCancel})
        buttons->addWidget(button);
    buttons->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(left, 1);
    layout->addLayout(buttons);
    txtFind->setMinimumWidth(260);

    connect(cmdFind, &QPushButton::clicked, this, &frmFind::FindNext);
    connect(cmdRepl, &QPushButton::clicked, this, &frmFind::ReplaceNext);
    connect(cmdAll, &QPushButton::clicked, this, &frmFind::ReplaceAll);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::hide);
    // A scope is taken again once the switch has been turned either way.
    connect(chkSelection, &QCheckBox::toggled, this, [this] { rescope_ = true; });
    const Moriox* settings = ProcessState::Instance().Settings.get();
    if (settings)
        SetFont(settings->FontName, settings->FontSize.toInt());
}

void frmFind::Find() {
    showFor(false);
}

void frmFind::Replace() {
    showFor(true);
}

void frmFind::showFor(bool replace) {
    setWindowTitle(replace ? QStringLiteral("Replace") : QStringLiteral("Find"));
    for (QWidget* widget : std::initializer_list<QWidget*>{lblRepl_, txtRepl, cmdRepl, cmdAll})
        widget->setVisible(replace);
    rescope_ = true;
    // A word selected within one line is what the user most likely looks for.
    if (auto document = activeDocument()) {
        const QString selected = document->SelectedText();
        if (!selected.isEmpty() && !selected.contains(QLatin1Char('\n')) &&
            !selected.contains(QLatin1Char('\r')))
            txtFind->setText(selected);
    }
    adjustSize();
    if (!placed_ && parentWidget()) {
        const QRect owner = parentWidget()->frameGeometry();
        move(owner.center() - rect().center());
        placed_ = true;
    }
    show();
    raise();
    activateWindow();
    txtFind->setFocus();
    txtFind->selectAll();
}

void frmFind::SetFont(const QString& name, int pointSize) {
    QFont font = txtFind->font();
    if (!name.isEmpty())
        font.setFamily(name);
    if (pointSize > 0)
        font.setPointSize(pointSize);
    txtFind->setFont(font);
    txtRepl->setFont(font);
}

std::shared_ptr<mvDocument> frmFind::activeDocument() const {
    IFrame* frame = ProcessState::Instance().Frame();
    return frame ? frame->ActiveDocument() : nullptr;
}

SearchScope frmFind::selectionScope(const SourceView& editor) {
    SearchScope scope;
    editor.GetSelection(scope.StartColumn, scope.StartLine, scope.EndColumn, scope.EndLine);
    if (scope.EndLine < scope.StartLine ||
        (scope.EndLine == scope.StartLine && scope.EndColumn < scope.StartColumn)) {
        std::swap(scope.StartColumn, scope.EndColumn);
        std::swap(scope.StartLine, scope.EndLine);
    }
    return scope;
}

bool frmFind::readScope(mvDocument& document) {
    clsDocView* view = document.View();
    QWidget* window = view ? view->Widget() : nullptr;
    bool taken = false;
    if (rescope_ || scopeWindow_ != window) {
        SourceView* editor = document.Editor();
        if (chkSelection->isChecked() && editor && editor->HasSelection()) {
            scopeWindow_ = window;
            scope_ = selectionScope(*editor);
            taken = true;
        } else {
            scopeWindow_ = nullptr;
            scope_ = SearchScope();
        }
    }
    rescope_ = false;
    return taken;
}

void frmFind::startOf(bool fresh, bool up, int32_t& column, int32_t& line) const {
    // A selection just taken as the scope is searched from its far end, not from the
    // caret that stands at its end.
    column = line = -1;
    if (fresh) {
        column = up ? scope_.EndColumn : scope_.StartColumn;
        line = up ? scope_.EndLine : scope_.StartLine;
    }
}

QString frmFind::scopeWord(const char* whole, const char* selection) const {
    return QLatin1String(scope_.Whole() ? whole : selection);
}

QWidget* frmFind::boxOwner() {
    if (isVisible())
        return this;
    IFrame* frame = ProcessState::Instance().Frame();
    return frame ? frame->OwnerWindow() : nullptr;
}

bool frmFind::FindNext() {
    const QString text = txtFind->text();
    auto document = activeDocument();
    if (!document || text.isEmpty())
        return false;
    document_ = document;
    const bool fresh = readScope(*document);
    const bool up = optDirection[0]->isChecked();
    int32_t column = -1;
    int32_t line = -1;
    startOf(fresh, up, column, line);
    if (document->Find(text, up, chkWholeWord->isChecked(), chkMatchCase->isChecked(), column, line,
                       scope_))
        return true;
    return wrapSearch(*document, text, up);
}

bool frmFind::wrapSearch(mvDocument& document, const QString& text, bool up) {
    QApplication::beep();
    const QString question = QStringLiteral("Search has reached the ") +
                             QLatin1String(up ? "beginning" : "end") + QStringLiteral(" of the ") +
                             scopeWord("document", "selection") +
                             QStringLiteral(". Do you want to continue searching at the ") +
                             QLatin1String(up ? "end?" : "beginning?");
    const int32_t answer =
        BrixMessage(question, MsgBox::YesNoCancel | MsgBox::Question, boxOwner()) & ~MsgBox::Ticked;
    if (answer != MsgBox::Yes)
        return false;
    int32_t column = 0;
    int32_t line = 0;
    if (!scope_.Whole()) {
        column = up ? scope_.EndColumn : scope_.StartColumn;
        line = up ? scope_.EndLine : scope_.StartLine;
    } else if (up && document.Buffer()) {
        line = document.Buffer()->NumLines() - 1;
        column = document.Buffer()->GetLineLength(line);
    }
    if (document.Find(text, up, chkWholeWord->isChecked(), chkMatchCase->isChecked(), column, line,
                      scope_))
        return true;
    BrixMessage(QStringLiteral("Search text not found in ") + scopeWord("document.", "selection."),
                MsgBox::OKOnly | MsgBox::Information, boxOwner());
    return false;
}

void frmFind::ReplaceNext() {
    const QString text = txtFind->text();
    auto document = activeDocument();
    if (!document || text.isEmpty())
        return;
    document_ = document;
    const bool fresh = readScope(*document);
    const QString replacement = txtRepl->text();
    const QString selected = document->SelectedText();
    const bool same = chkMatchCase->isChecked() ? selected == text
                                                : selected.compare(text, Qt::CaseInsensitive) == 0;
    if (same) {
        int32_t startColumn = 0, startLine = 0, endColumn = 0, endLine = 0;
        document->Editor()->GetSelection(startColumn, startLine, endColumn, endLine);
        document->ReplaceSelection(replacement);
        // The scope keeps its end when its last line grew or shrank.
        if (!scope_.Whole() && std::min(startLine, endLine) == scope_.EndLine)
            scope_.EndColumn += static_cast<int32_t>(replacement.size() - text.size());
    }
    const bool up = optDirection[0]->isChecked();
    int32_t column = -1;
    int32_t line = -1;
    startOf(fresh && !same, up, column, line);
    if (!document->Find(text, up, chkWholeWord->isChecked(), chkMatchCase->isChecked(), column,
                        line, scope_))
        wrapSearch(*document, text, up);
}

int32_t frmFind::ReplaceAll() {
    const QString text = txtFind->text();
    if (text.isEmpty())
        return 0;
    auto document = activeDocument();
    if (!document)
        return 0;
    document_ = document;
    SourceView* editor = document->Editor();
    const bool inSelection = chkSelection->isChecked() && editor && editor->HasSelection();
    const SearchScope scope = inSelection ? selectionScope(*editor) : SearchScope();
    const int32_t count = document->ReplaceAll(text, txtRepl->text(), chkWholeWord->isChecked(),
                                               chkMatchCase->isChecked(), scope);
    const QString message = count < 1
                                ? QStringLiteral("Search text not found in ") +
                                      QLatin1String(inSelection ? "selection." : "document.")
                                : QString::number(count) + QStringLiteral(" occurrences replaced.");
    BrixMessage(message, MsgBox::OKOnly | MsgBox::Information, boxOwner());
    return count;
}
