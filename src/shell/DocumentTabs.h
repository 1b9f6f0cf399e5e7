#pragma once

#include <QObject>
#include <QPointer>
#include <cstdint>

class CommandBar;
class QMdiArea;
class QMdiSubWindow;
class QTabBar;
class QToolBar;
class clsDocView;

// The "Document list" band: one tab per document window in the order of opening, with a
// close button and a context menu (the tabctx band).
class DocumentTabs : public QObject {
    Q_OBJECT

public:
    DocumentTabs(QMdiArea& area, CommandBar& bar, QToolBar& band);

    QTabBar* TabBar() const { return tabBar_; }
    // Tabs again from the document area's windows.
    void Refresh();

    // The view behind a document window, or null.
    static clsDocView* FindViewByWindow(QMdiSubWindow* window);

    // Asks the window's document as closing its window does; Cancel leaves the tab.
    void CloseTab(int index);
    // Sets up the tabctx band for the tab under `pos` and pops it up.
    void ShowTabMenu(const QPoint& pos);

    // The tools of tabctx, on the tab that the menu was opened on.
    void ActivateFromMenu();
    void CloseFromMenu();
    // Toggles the window between `state` (1 minimised, 2 maximised) and normal.
    void ToggleStateFromMenu(int16_t state);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QMdiSubWindow* windowAt(int index) const;
    void closeView(QMdiSubWindow* window);

    QMdiArea& area_;
    CommandBar& bar_;
    QTabBar* tabBar_ = nullptr;
    // The tag of tabctx: the window whose tab the menu was opened on.
    QPointer<QMdiSubWindow> menuWindow_;
    bool refreshing_ = false;
};
