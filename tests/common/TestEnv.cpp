#include "TestEnv.h"

#include <QDir>
#include <QStandardPaths>
#include <cstdlib>

namespace {
QTemporaryDir* g_home = nullptr;
}

void TestEnv::Init() {
    static QTemporaryDir home(QDir::tempPath() + QStringLiteral("/brix-tst-XXXXXX"));
    g_home = &home;
    const QByteArray root = home.path().toLocal8Bit();
    auto set = [&](const char* name, const char* sub) {
        const QByteArray path = root + sub;
        QDir().mkpath(QString::fromLocal8Bit(path));
        ::setenv(name, path.constData(), 1);
    };
    set("HOME", "");
    set("XDG_CONFIG_HOME", "/.config");
    set("XDG_DATA_HOME", "/.local/share");
    set("XDG_CACHE_HOME", "/.cache");
    set("XDG_STATE_HOME", "/.local/state");
    if (!std::getenv("XDG_RUNTIME_DIR")) {
        const QByteArray runtime = root + "/runtime";
        QDir().mkpath(QString::fromLocal8Bit(runtime));
        QFile::setPermissions(QString::fromLocal8Bit(runtime),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        ::setenv("XDG_RUNTIME_DIR", runtime.constData(), 1);
    }
    if (!std::getenv("QT_QPA_PLATFORM"))
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QStandardPaths::setTestModeEnabled(true);
}

QString TestEnv::Home() { return g_home ? g_home->path() : QDir::homePath(); }

QString TestEnv::Fixture(const QString& name) {
    return QStringLiteral(BRIX_FIXTURES) + QLatin1Char('/') + name;
}

QString TestEnv::Shared(const QString& name) {
    return QStringLiteral(BRIX_SHARED) + QLatin1Char('/') + name;
}
