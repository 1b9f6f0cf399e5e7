#include "SettingsSandbox.h"

#include "settings/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStringDecoder>
#include <memory>

namespace {

std::unique_ptr<QSettings> userStore() {
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                       QStringLiteral("Tolvek"),
                                       QStringLiteral("MultiValue Editor"));
}

std::unique_ptr<QSettings> legacyStore() {
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                       QStringLiteral("VB and VBA Program Settings"),
                                       QStringLiteral("Norvane MultiValue Editor"));
}

} // namespace

SettingsSandbox::SettingsSandbox(int mode, const QString& appDataDirectory) {
    if (mode >= 0) {
        QFile file(dir_.filePath(QStringLiteral("norvane70.ini")));
        file.open(QIODevice::WriteOnly);
        file.write(QStringLiteral("[Isolation]\r\nPersistSettings=%1\r\nAppDataDirectory=%2\r\n")
                       .arg(mode)
                       .arg(appDataDirectory.isEmpty() ? DataFolder() : appDataDirectory)
                       .toUtf8());
    }
    ClearUserStores();
    SettingsStore::Reinitialise(dir_.path());
}

SettingsSandbox::~SettingsSandbox() {
    SettingsStore::Reinitialise();
}

QByteArray SettingsSandbox::StateFileBytes() const {
    QFile file(StateFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString SettingsSandbox::StateFileText() const {
    const QByteArray bytes = StateFileBytes();
    if (bytes.startsWith("\xFF\xFE"))
        return QStringDecoder(QStringDecoder::Utf16LE)(bytes.mid(2));
    return QString::fromUtf8(bytes);
}

QString SettingsSandbox::UserStoreFile() {
    return userStore()->fileName();
}

QString SettingsSandbox::LegacyStoreFile() {
    return legacyStore()->fileName();
}

void SettingsSandbox::ClearUserStores() {
    QFile::remove(UserStoreFile());
    QFile::remove(LegacyStoreFile());
    userStore()->clear();
    legacyStore()->clear();
}

void SettingsSandbox::WriteLegacy(const QString& key, const QString& value) {
    legacyStore()->setValue(QStringLiteral("Settings/") + key, value);
}

QString SettingsSandbox::ReadUserStore(const QString& key) {
    return userStore()->value(QStringLiteral("Settings/") + key).toString();
}
