#pragma once

#include <QObject>
#include <QPointer>

class QLabel;
class QTimer;

// Status panels 4 and 5 as system panels: "CAPS" and "NUM", drawn dim while the key's
// light is off and blank where the window system doesn't tell. Read again after each key
// and every second while the program is in front, for a light switched in another window.
class LockKeyPanels : public QObject {
    Q_OBJECT

public:
    LockKeyPanels(QLabel* capsPanel, QLabel* numPanel, QObject* parent);

    void Refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPointer<QLabel> caps_;
    QPointer<QLabel> num_;
    QTimer* timer_ = nullptr;
};
