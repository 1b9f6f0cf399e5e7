#include "shell/CommandTool.h"

#include <QAction>
#include <QKeySequence>

CommandTool::CommandTool(const QString& key, Type type, QAction* action)
    : key_(key), type_(type), action_(action) {
    action_->setCheckable(type == Type::Check);
}

QString CommandTool::Caption() const {
    return action_ ? action_->text() : QString();
}

void CommandTool::SetCaption(const QString& caption) {
    if (action_)
        action_->setText(caption);
}

void CommandTool::SetShortcut(const QString& shortcut) {
    shortcut_ = shortcut;
    if (action_)
        action_->setShortcut(QKeySequence::fromString(
            QString(shortcut).replace(QLatin1String("Bkspc"), QLatin1String("Backspace")),
            QKeySequence::PortableText));
}

QString CommandTool::ToolTip() const {
    return action_ ? action_->toolTip() : QString();
}

void CommandTool::SetToolTip(const QString& toolTip) {
    if (action_)
        action_->setToolTip(toolTip);
}

bool CommandTool::Enabled() const {
    return action_ && action_->isEnabled();
}

void CommandTool::SetEnabled(bool enabled) {
    if (action_)
        action_->setEnabled(enabled);
}

bool CommandTool::Checked() const {
    return action_ && action_->isChecked();
}

void CommandTool::SetChecked(bool checked) {
    if (action_)
        action_->setChecked(checked);
}

bool CommandTool::Visible() const {
    return action_ && action_->isVisible();
}

void CommandTool::SetVisible(bool visible) {
    if (action_)
        action_->setVisible(visible);
}
