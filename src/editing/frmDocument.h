#pragma once

#include "documents/clsDocView.h"
#include "language/TokenStyleTable.h"

#include <QMdiSubWindow>
#include <QPointer>
#include <memory>

class DrawClass;
class LexClass;
class frmMain;

// The child window of one document. This form has no buttons of its own in its title bar;
// its twin frmDocumentx has minimise, maximise and close.
class frmDocument : public QMdiSubWindow, public clsDocView {
    Q_OBJECT

public:
    // Puts itself in the frame's document area when there is a frame.
    explicit frmDocument(frmMain* frame);
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

    std::shared_ptr<LexClass> Lex() const { return lex_; }
    std::shared_ptr<DrawClass> Draw() const { return draw_; }
    // The token styles the printing draws with.
    const TokenStyleTable& PrintStyles() const { return printStyles_; }

protected:
    frmDocument(frmMain* frame, Qt::WindowFlags flags);
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void showCaret();
    void showInsertMode();

    QPointer<frmMain> frame_;
    SourceView* txtText_ = nullptr;
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
};
