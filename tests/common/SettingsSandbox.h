#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

// A byte string literal with its NUL bytes, without the terminating one.
template <size_t N> QByteArray Bytes(const char (&text)[N]) {
    return QByteArray(text, N - 1);
}

// A settings store of a test's own: a temporary folder stands in for the executable's, with
// a "norvane70.ini" that picks the backing (none at all for mode -1), "appstate.ini" going
// to its "data" subfolder. The per-user stores start empty. Going out of scope returns the
// store to the real executable's folder.
class SettingsSandbox {
public:
    explicit SettingsSandbox(int mode, const QString& appDataDirectory = QString());
    ~SettingsSandbox();

    QString ExecutableFolder() const { return dir_.path(); }
    QString DataFolder() const { return dir_.filePath(QStringLiteral("data")); }
    QString StateFile() const { return DataFolder() + QStringLiteral("/appstate.ini"); }
    QByteArray StateFileBytes() const;
    // The state file decoded, whatever its encoding.
    QString StateFileText() const;

    // The per-user store of this version and the earlier version's settings area.
    static QString UserStoreFile();
    static QString LegacyStoreFile();
    static void ClearUserStores();
    static void WriteLegacy(const QString& key, const QString& value);
    static QString ReadUserStore(const QString& key);

private:
    QTemporaryDir dir_;
};
