#pragma once

#include "shell/CommandBand.h"

#include <QObject>
#include <QString>
#include <memory>
#include <vector>

class QMainWindow;
class QMenu;
class QPoint;
class QStatusBar;
class QToolBar;

// The frame's command bar: menu bar, tool bar, status bar and popup menus as bands of
// tools addressed by key. Band keys, sub-menus included, match without regard to case.
// Every click of every band comes out of one signal.
class CommandBar : public QObject {
    Q_OBJECT

public:
    // Takes the frame's menu bar and status bar and adds a tool bar to it.
    explicit CommandBar(QMainWindow& frame);
    ~CommandBar() override;

    CommandBand* Band(const QString& key) const;
    const std::vector<CommandBand*>& Bands() const { return bands_; }
    // Null when the band or the tool is missing.
    CommandTool* Tool(const QString& bandKey, const QString& toolKey) const;

    // A drop-down on the menu bar, which is then a band of its own under `key`.
    CommandBand* AddSubMenu(const QString& key, const QString& caption);
    CommandBand* AddPopup(const QString& key);

    QToolBar* ToolBarWidget() const { return toolBar_; }
    QStatusBar* StatusBarWidget() const;
    QMenu* PopupMenu(const QString& key) const;
    void ShowPopup(const QString& key, const QPoint& globalPos);

Q_SIGNALS:
    void ToolClicked(CommandTool* tool);
    // A menu is about to drop down; the key of its band.
    void MenuAboutToShow(const QString& key);

private:
    CommandBand* addBand(const QString& key, CommandBand::Kind kind, QWidget* widget);

    QMainWindow& frame_;
    QToolBar* toolBar_ = nullptr;
    std::vector<CommandBand*> bands_; // owned by their widgets
};
