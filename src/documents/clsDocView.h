#pragma once

#include <QString>
#include <memory>

class QWidget;
class SourceView;
class mvDocument;

// The window side of a document, as the rest of the program sees it. Two window forms
// implement it; nothing else needs to know which one a document has.
class clsDocView {
public:
    enum State : int16_t { Normal = 0, Minimized = 1, Maximized = 2 };

    virtual ~clsDocView() = default;

    virtual void Activate() = 0;
    virtual void Show() = 0;
    // Whether the window may close: false keeps it open.
    virtual bool QueryUnload() = 0;
    // Destroys the window.
    virtual void Unload() = 0;
    virtual SourceView* txtText() const = 0;
    virtual QString Title() const = 0;
    virtual void SetTitle(const QString& title) = 0;
    // The document shown; cleared before Unload so that late events find none.
    virtual std::shared_ptr<mvDocument> ViewObject() const = 0;
    virtual void SetViewObject(const std::shared_ptr<mvDocument>& document) = 0;
    virtual bool AutoSaveFlag() const = 0;
    virtual void SetAutoSaveFlag(bool flag) = 0;
    virtual QString Tag() const = 0;
    virtual void SetTag(const QString& tag) = 0;
    virtual bool Visible() const = 0;
    virtual void SetVisible(bool visible) = 0;
    virtual int16_t WindowState() const = 0;
    virtual void SetWindowState(int16_t state) = 0;

    // The window itself, so that its owner can tell when Qt has destroyed it.
    virtual QWidget* Widget() = 0;
    // The document's colouring was switched: rescan and repaint.
    virtual void HighlightChanged(bool highlight) = 0;
    // A line above the text that tells something about the document, without asking
    // anything; an empty text takes it away.
    virtual void ShowNotice(const QString& text) = 0;
};
