#pragma once

#include <QObject>
#include <QPointer>

class frmMain;
class QKeyEvent;

// Sees the Tab key before any widget while the frame is the active window: Ctrl+Tab and
// Ctrl+Shift+Tab step between documents, Tab and Shift+Tab on a selection of several lines
// indent and outdent it, and Shift+Tab elsewhere in the editor is a backspace.
class KeyboardFilter : public QObject {
    Q_OBJECT

public:
    explicit KeyboardFilter(frmMain& frame);

    // The filter is installed by its first user and removed when the last lets go.
    static void Install(frmMain& frame);
    static void Remove();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool handleTab(QKeyEvent* event);

    QPointer<frmMain> frame_;
};
