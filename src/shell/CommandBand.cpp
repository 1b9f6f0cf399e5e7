#include "shell/CommandBand.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>

CommandBand::CommandBand(const QString& key, Kind kind, QWidget* widget)
    : QObject(widget), key_(key), kind_(kind), widget_(widget) {
    if (auto* menu = qobject_cast<QMenu*>(widget))
        connect(menu, &QMenu::aboutToShow, this, &CommandBand::AboutToShow);
}

CommandBand::~CommandBand() = default;

CommandTool* CommandBand::Tool(const QString& key) const {
    for (const auto& tool : tools_)
        if (tool->Key() == key)
            return tool.get();
    return nullptr;
}

void CommandBand::addAction(QAction* action, QAction* before) {
    if (widget_)
        widget_->insertAction(before, action);
}

CommandTool* CommandBand::AddTool(const QString& key, const QString& caption,
                                  CommandTool::Type type, bool beginGroup, const QString& beforeKey,
                                  QAction* subMenuAction) {
    size_t at = tools_.size();
    QAction* before = nullptr;
    for (size_t i = 0; i < tools_.size(); ++i)
        if (tools_[i]->Key() == beforeKey) {
            at = i;
            before = separators_[i] ? separators_[i].data() : tools_[i]->Action();
            break;
        }
    QPointer<QAction> separator;
    if (beginGroup && kind_ != Kind::MenuBar) {
        separator = new QAction(widget_);
        separator->setSeparator(true);
        addAction(separator, before);
    }
    QAction* action = subMenuAction ? subMenuAction : new QAction(widget_);
    auto tool = std::make_unique<CommandTool>(key, type, action);
    tool->SetCaption(caption);
    tool->SetBeginGroup(beginGroup);
    CommandTool* raw = tool.get();
    if (type != CommandTool::Type::SubMenu)
        connect(action, &QAction::triggered, this, [this, raw] { Q_EMIT ToolClicked(raw); });
    addAction(action, before);
    tools_.insert(tools_.begin() + static_cast<std::ptrdiff_t>(at), std::move(tool));
    separators_.insert(separators_.begin() + static_cast<std::ptrdiff_t>(at), separator);
    return raw;
}

void CommandBand::RemoveTools(const QString& prefix) {
    for (size_t i = tools_.size(); i-- > 0;) {
        if (!tools_[i]->Key().startsWith(prefix))
            continue;
        delete separators_[i].data();
        delete tools_[i]->Action();
        tools_.erase(tools_.begin() + static_cast<std::ptrdiff_t>(i));
        separators_.erase(separators_.begin() + static_cast<std::ptrdiff_t>(i));
    }
}

QLabel* CommandBand::AddPanel(const QString& key, const QString& caption, const QString& toolTip,
                              bool stretch) {
    auto* bar = qobject_cast<QStatusBar*>(widget_.data());
    if (!bar)
        return nullptr;
    auto* label = new QLabel(caption, bar);
    label->setObjectName(key);
    label->setToolTip(toolTip);
    if (stretch)
        bar->addWidget(label, 1);
    else
        bar->addPermanentWidget(label);
    panels_.emplace_back(key, label);
    return label;
}

QLabel* CommandBand::Panel(const QString& key) const {
    for (const auto& [panelKey, label] : panels_)
        if (panelKey.compare(key, Qt::CaseInsensitive) == 0)
            return label;
    return nullptr;
}
