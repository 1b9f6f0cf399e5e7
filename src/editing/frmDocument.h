#pragma once

class QLabel;
class QMdiArea;

#include "documents/clsDocView.h"
#include "language/TokenStyleTable.h"

#include <QMdiSubWindow>
#include <QPoint>
#include <QPointer>
#include <memory>

class QTimer;

class DrawClass;
class LexClass;
class IFrame;

// The child window of one document. This form has no buttons of its own in its title bar;
// its twin frmDocumentx has minimise, maximise and close.
class frmDocument : public QMdiSubWindow, public clsDocView {
    Q_OBJECT

public:
    // Puts itself in the frame's document area when there is a frame.
    explicit frmDocument(IFrame* frame);
    ~frmDocument() override;

    // The window's set-up, run once right after it is made.
    void Load();
    // Applies the settings of the program to the control.
    void ApplySettings();
    // The frame made this the active child.
    void OnActivated();

    void Activate() override;
    void Show() override;
    bool QueryUnload() override;
    void Unload() override;
    SourceView* txtText() const override { return txtText_; }
    void ShowNotice(const QString& text) override;
    QString Notice() const;
    QString Title() const override { return titleText_; }
    void SetTitle(const QString& title) override;
    std::shared_ptr<mvDocument> ViewObject() const override { return viewObject_.lock(); }
    void SetViewObject(const std::shared_ptr<mvDocument>& document) override;
    bool AutoSaveFlag() const override { return autoSaveFlag_; }
    void SetAutoSaveFlag(bool flag) override { autoSaveFlag_ = flag; }
    QString Tag() const override { return tag_; }
    void SetTag(const QString& tag) override { tag_ = tag; }
    bool Visible() const override { return isVisible(); }
    void SetVisible(bool visible) override;
    int16_t WindowState() const override;
    void SetWindowState(int16_t state) override;
    QWidget* Widget() override { return this; }
    void HighlightChanged(bool highlight) override;

    // What stands under a point of the text area (a WordKind kind); the word found goes to
    // the process's ContextWord.
    int16_t WordKindAt(int x, int y);

    bool eventFilter(QObject* watched, QEvent* event) override;

    std::shared_ptr<LexClass> Lex() const { return lex_; }
    std::shared_ptr<DrawClass> Draw() const { return draw_; }
    // The token styles the printing draws with.
    const TokenStyleTable& PrintStyles() const { return printStyles_; }

Q_SIGNALS:
    // A double-click on a word to go to (kind 1) or to open (kinds 2 and 3).
    void GotoRequested(const std::shared_ptr<mvDocument>& document);
    void OpenRequested(const std::shared_ptr<mvDocument>& document);
    // A right-click, with the kind of the word under it.
    void ContextMenuRequested(int16_t kind, const QPoint& globalPos);

protected:
    frmDocument(IFrame* frame, Qt::WindowFlags flags);
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void maximizeNext(QMdiArea& area);
    void showCaret();
    void showInsertMode();
    // Tells the frame when the selection comes or goes.
    void checkSelection();
    // True for the keys this window takes; `act` carries them out.
    bool keyPress(QKeyEvent* event, bool act);
    void mouseRelease(QMouseEvent* event);
    void marginPressed(int32_t line, Qt::KeyboardModifiers modifiers);
    void focusIfActive();

    // The frame, while its window lives.
    IFrame* frame() const { return frameWidget_ ? frame_ : nullptr; }
    IFrame* frame_ = nullptr;
    QPointer<QWidget> frameWidget_;
    SourceView* txtText_ = nullptr;
    QLabel* lblNotice_ = nullptr;
    std::weak_ptr<mvDocument> viewObject_;
    std::shared_ptr<LexClass> lex_;
    std::shared_ptr<DrawClass> draw_;
    TokenStyleTable screenStyles_;
    TokenStyleTable printStyles_;
    QString titleText_;
    QString tag_;
    bool autoSaveFlag_ = false;
    int16_t lastWindowState_ = Normal;
    bool unloading_ = false;
    bool doubleClicked_ = false;
    QPoint lastMouse_;
    int32_t anchorLine_ = 0;
    bool selectionShown_ = false;
    // One-shot retry of the focus when the window could not take it at activation.
    QTimer* focusTimer_ = nullptr;
};
