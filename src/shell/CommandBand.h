#pragma once

#include "shell/CommandTool.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <memory>
#include <vector>

class QAction;
class QLabel;
class QWidget;

// One band of the command bar: the menu bar, a sub-menu, the tool bar, a popup menu or the
// status bar. Tools are addressed by key, exactly as written; a key may stand on several
// bands, each with its own action and so its own flags.
class CommandBand : public QObject {
    Q_OBJECT

public:
    enum class Kind { MenuBar, Menu, ToolBar, StatusBar, Popup };

    // `widget` is the QMenuBar, QMenu, QToolBar or QStatusBar that shows the band.
    CommandBand(const QString& key, Kind kind, QWidget* widget);
    ~CommandBand() override;

    QString Key() const { return key_; }
    Kind BandKind() const { return kind_; }
    QWidget* Widget() const { return widget_; }

    // Null when the band has no tool of that key.
    CommandTool* Tool(const QString& key) const;
    const std::vector<std::unique_ptr<CommandTool>>& Tools() const { return tools_; }
    // Adds at the end, or before the tool `beforeKey` when it stands on the band. A sub-menu
    // tool takes the given action (the menu's own); the others get a new one.
    CommandTool* AddTool(const QString& key, const QString& caption, CommandTool::Type type,
                         bool beginGroup, const QString& beforeKey = QString(),
                         QAction* subMenuAction = nullptr);
    // Deletes every tool whose key starts with `prefix`.
    void RemoveTools(const QString& prefix);

    // Status bar panels, addressed by key; panel text is their caption.
    QLabel* AddPanel(const QString& key, const QString& caption, const QString& toolTip,
                     bool stretch);
    QLabel* Panel(const QString& key) const;

Q_SIGNALS:
    void ToolClicked(CommandTool* tool);
    void AboutToShow();

private:
    void addAction(QAction* action, QAction* before);

    QString key_;
    Kind kind_;
    QPointer<QWidget> widget_;
    std::vector<std::unique_ptr<CommandTool>> tools_;
    std::vector<QPointer<QAction>> separators_; // parallel to tools_, null without a group
    std::vector<std::pair<QString, QPointer<QLabel>>> panels_;
};
