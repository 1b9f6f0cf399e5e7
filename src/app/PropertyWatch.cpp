#include "app/PropertyWatch.h"

#include <QDBusConnection>
#include <QDBusMessage>

PropertyWatch::PropertyWatch(QString path, QString interface, std::function<QVariantMap()> read)
    : path_(std::move(path)), interface_(std::move(interface)), read_(std::move(read)),
      last_(read_()) {}

void PropertyWatch::Check() {
    QVariantMap now;
    try {
        now = read_();
    } catch (...) {
        return;
    }
    QVariantMap changed;
    for (auto it = now.cbegin(); it != now.cend(); ++it)
        if (last_.value(it.key()) != it.value())
            changed.insert(it.key(), it.value());
    last_ = now;
    if (changed.isEmpty())
        return;
    QDBusMessage signal =
        QDBusMessage::createSignal(path_, QStringLiteral("org.freedesktop.DBus.Properties"),
                                   QStringLiteral("PropertiesChanged"));
    signal << interface_ << changed << QStringList();
    QDBusConnection::sessionBus().send(signal);
}
