#include "shell/CommandBar.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>

CommandBar::CommandBar(QMainWindow& frame) : QObject(&frame), frame_(frame) {
    addBand(QStringLiteral("MainMenu"), CommandBand::Kind::MenuBar, frame.menuBar());
    toolBar_ = new QToolBar(QStringLiteral("Tool Bar"), &frame);
    toolBar_->setObjectName(QStringLiteral("toolbar"));
    toolBar_->setMovable(false);
    frame.addToolBar(Qt::TopToolBarArea, toolBar_);
    addBand(QStringLiteral("ToolBar"), CommandBand::Kind::ToolBar, toolBar_);
    addBand(QStringLiteral("StatusBar"), CommandBand::Kind::StatusBar, frame.statusBar());
}

CommandBar::~CommandBar() = default;

CommandBand* CommandBar::addBand(const QString& key, CommandBand::Kind kind, QWidget* widget) {
    auto* band = new CommandBand(key, kind, widget);
    connect(band, &CommandBand::ToolClicked, this, &CommandBar::ToolClicked);
    connect(band, &CommandBand::AboutToShow, this, [this, key] { Q_EMIT MenuAboutToShow(key); });
    bands_.push_back(band);
    return band;
}

CommandBand* CommandBar::Band(const QString& key) const {
    for (CommandBand* band : bands_)
        if (band->Key().compare(key, Qt::CaseInsensitive) == 0)
            return band;
    return nullptr;
}

CommandTool* CommandBar::Tool(const QString& bandKey, const QString& toolKey) const {
    const CommandBand* band = Band(bandKey);
    return band ? band->Tool(toolKey) : nullptr;
}

CommandBand* CommandBar::AddSubMenu(const QString& key, const QString& caption) {
    auto* menu = new QMenu(caption, frame_.menuBar());
    menu->setObjectName(key);
    Band(QStringLiteral("MainMenu"))
        ->AddTool(key, caption, CommandTool::Type::SubMenu, false, QString(), menu->menuAction());
    return addBand(key, CommandBand::Kind::Menu, menu);
}

CommandBand* CommandBar::AddPopup(const QString& key) {
    auto* menu = new QMenu(&frame_);
    menu->setObjectName(key);
    return addBand(key, CommandBand::Kind::Popup, menu);
}

QStatusBar* CommandBar::StatusBarWidget() const {
    return frame_.statusBar();
}

QMenu* CommandBar::PopupMenu(const QString& key) const {
    const CommandBand* band = Band(key);
    return band ? qobject_cast<QMenu*>(band->Widget()) : nullptr;
}

void CommandBar::ShowPopup(const QString& key, const QPoint& globalPos) {
    if (QMenu* menu = PopupMenu(key))
        menu->popup(globalPos);
}
