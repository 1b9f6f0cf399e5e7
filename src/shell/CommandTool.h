#pragma once

#include <QPointer>
#include <QString>

class QAction;

// One tool of one band: its key, type and the action that shows it. Caption, shortcut,
// tool tip and the three flags live in the action, so what the bar shows is what is read.
class CommandTool {
public:
    enum class Type { Button, Check, SubMenu };

    CommandTool(const QString& key, Type type, QAction* action);

    QString Key() const { return key_; }
    Type ToolType() const { return type_; }
    QAction* Action() const { return action_; }

    QString Caption() const;
    void SetCaption(const QString& caption);
    // Stored as typed ("shift+ctrl+s"); the action gets the parsed sequence.
    QString Shortcut() const { return shortcut_; }
    void SetShortcut(const QString& shortcut);
    QString ToolTip() const;
    void SetToolTip(const QString& toolTip);
    bool Enabled() const;
    void SetEnabled(bool enabled);
    bool Checked() const;
    void SetChecked(bool checked);
    bool Visible() const;
    void SetVisible(bool visible);
    bool BeginGroup() const { return beginGroup_; }
    void SetBeginGroup(bool beginGroup) { beginGroup_ = beginGroup; }

private:
    QString key_;
    Type type_;
    QPointer<QAction> action_;
    QString shortcut_;
    bool beginGroup_ = false;
};
