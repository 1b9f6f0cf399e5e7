#include "shell/DocumentTabs.h"

#include "app/ProcessState.h"
#include "documents/clsDocView.h"
#include "settings/Moriox.h"
#include "shell/CommandBar.h"

#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTabBar>
#include <QTimer>
#include <QToolBar>

DocumentTabs::DocumentTabs(QMdiArea& area, CommandBar& bar, QToolBar& band)
    : QObject(&band), area_(area), bar_(bar) {
    tabBar_ = new QTabBar(&band);
    tabBar_->setObjectName(QStringLiteral("Taskbar"));
    tabBar_->setTabsClosable(true);
    tabBar_->setExpanding(false);
    tabBar_->setDocumentMode(true);
    tabBar_->setContextMenuPolicy(Qt::CustomContextMenu);
    band.addWidget(tabBar_);
    connect(tabBar_, &QTabBar::tabBarClicked, this, [this](int index) {
        if (clsDocView* view = FindViewByWindow(windowAt(index)))
            view->Activate();
    });
    connect(tabBar_, &QTabBar::tabCloseRequested, this, &DocumentTabs::CloseTab);
    connect(tabBar_, &QWidget::customContextMenuRequested, this, &DocumentTabs::ShowTabMenu);
    connect(&area_, &QMdiArea::subWindowActivated, this, [this] { Refresh(); });
}

clsDocView* DocumentTabs::FindViewByWindow(QMdiSubWindow* window) {
    return dynamic_cast<clsDocView*>(window);
}

QMdiSubWindow* DocumentTabs::windowAt(int index) const {
    if (index < 0 || index >= tabBar_->count())
        return nullptr;
    return tabBar_->tabData(index).value<QPointer<QMdiSubWindow>>();
}

void DocumentTabs::Refresh() {
    if (refreshing_)
        return;
    refreshing_ = true;
    const QList<QMdiSubWindow*> windows = area_.subWindowList(QMdiArea::CreationOrder);
    int index = 0;
    for (QMdiSubWindow* window : windows) {
        clsDocView* view = FindViewByWindow(window);
        if (!view || !window->isVisible())
            continue;
        if (!window->property("brixTabWatched").toBool()) {
            window->setProperty("brixTabWatched", true);
            window->installEventFilter(this);
            connect(window, &QObject::destroyed, this,
                    [this] { QTimer::singleShot(0, this, [this] { Refresh(); }); });
        }
        if (index >= tabBar_->count())
            tabBar_->addTab(QString());
        tabBar_->setTabText(index, view->Title());
        tabBar_->setTabData(index, QVariant::fromValue(QPointer<QMdiSubWindow>(window)));
        if (window == area_.activeSubWindow())
            tabBar_->setCurrentIndex(index);
        ++index;
    }
    while (tabBar_->count() > index)
        tabBar_->removeTab(tabBar_->count() - 1);
    refreshing_ = false;
}

bool DocumentTabs::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::WindowTitleChange:
    case QEvent::Show:
    case QEvent::Hide:
        QTimer::singleShot(0, this, [this] { Refresh(); });
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void DocumentTabs::closeView(QMdiSubWindow* window) {
    clsDocView* view = FindViewByWindow(window);
    if (!view)
        return;
    if (view->QueryUnload())
        view->Unload();
    Refresh();
}

void DocumentTabs::CloseTab(int index) {
    closeView(windowAt(index));
}

void DocumentTabs::ShowTabMenu(const QPoint& pos) {
    QMdiSubWindow* window = windowAt(tabBar_->tabAt(pos));
    clsDocView* view = FindViewByWindow(window);
    if (!view)
        return;
    menuWindow_ = window;
    const bool minMax = Settings().MinMaxClose;
    const bool active = window == area_.activeSubWindow();
    CommandTool* min = bar_.Tool(QStringLiteral("tabctx"), QStringLiteral("tab_min"));
    CommandTool* max = bar_.Tool(QStringLiteral("tabctx"), QStringLiteral("tab_max"));
    for (auto [tool, state] : {std::pair{min, 1}, std::pair{max, 2}}) {
        tool->SetVisible(minMax);
        if (minMax) {
            tool->SetChecked(view->WindowState() == state);
            tool->SetEnabled(active);
        }
    }
    bar_.ShowPopup(QStringLiteral("tabctx"), tabBar_->mapToGlobal(pos));
}

void DocumentTabs::ActivateFromMenu() {
    if (clsDocView* view = FindViewByWindow(menuWindow_))
        view->Activate();
}

void DocumentTabs::CloseFromMenu() {
    closeView(menuWindow_);
}

void DocumentTabs::ToggleStateFromMenu(int16_t state) {
    if (clsDocView* view = FindViewByWindow(menuWindow_))
        view->SetWindowState(view->WindowState() != state ? state : int16_t(clsDocView::Normal));
}
