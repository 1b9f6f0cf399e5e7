#include "shell/LockKeyPanels.h"

#include "support/LockKeyState.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QTimer>

namespace {

void show(QLabel* panel, std::optional<bool> on, const QString& caption) {
    if (!panel)
        return;
    panel->setText(on ? caption : QString());
    panel->setEnabled(on.value_or(false));
}

} // namespace

LockKeyPanels::LockKeyPanels(QLabel* capsPanel, QLabel* numPanel, QObject* parent)
    : QObject(parent), caps_(capsPanel), num_(numPanel), timer_(new QTimer(this)) {
    for (QLabel* panel : {capsPanel, numPanel})
        if (panel) {
            panel->setAlignment(Qt::AlignCenter);
            panel->setMinimumWidth(panel->fontMetrics().horizontalAdvance(QStringLiteral("CAPS")) +
                                   8);
        }
    timer_->setInterval(1000);
    connect(timer_, &QTimer::timeout, this, &LockKeyPanels::Refresh);
    connect(qApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) {
                if (state == Qt::ApplicationActive) {
                    Refresh();
                    timer_->start();
                } else {
                    timer_->stop();
                }
            });
    qApp->installEventFilter(this);
    Refresh();
}

void LockKeyPanels::Refresh() {
    show(caps_, LockKeyState::IsOn(LockKeyState::Key::CapsLock), QStringLiteral("CAPS"));
    show(num_, LockKeyState::IsOn(LockKeyState::Key::NumLock), QStringLiteral("NUM"));
}

bool LockKeyPanels::eventFilter(QObject* watched, QEvent* event) {
    // The light changes when the key's press reaches the server; its release comes after.
    if (event->type() == QEvent::KeyRelease) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_CapsLock || key == Qt::Key_NumLock)
            Refresh();
    }
    return QObject::eventFilter(watched, event);
}
