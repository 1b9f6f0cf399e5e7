#pragma once

#include <QString>
#include <QVariantMap>
#include <functional>

// Sends org.freedesktop.DBus.Properties.PropertiesChanged for the properties of one
// object's interface whose values differ from the last look.
class PropertyWatch {
public:
    PropertyWatch(QString path, QString interface, std::function<QVariantMap()> read);

    // Compares with the last look and tells the bus what changed.
    void Check();

private:
    QString path_;
    QString interface_;
    std::function<QVariantMap()> read_;
    QVariantMap last_;
};
