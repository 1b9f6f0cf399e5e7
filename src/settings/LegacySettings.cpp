#include "settings/LegacySettings.h"

#include "settings/SettingText.h"

#include <QSettings>

QString LegacySettings::Read(const QString& key, const QString& defaultValue) {
    QSettings settings(QSettings::NativeFormat, QSettings::UserScope,
                       QStringLiteral("VB and VBA Program Settings"),
                       QStringLiteral("Norvane MultiValue Editor"));
    settings.beginGroup(QStringLiteral("Settings"));
    const QVariant value = settings.value(key);
    if (!value.isValid())
        return defaultValue;
    return SettingText::FromStored(value);
}
