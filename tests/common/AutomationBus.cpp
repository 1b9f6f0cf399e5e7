#include "AutomationBus.h"

#include <QDir>
#include <QFile>
#include <QProcessEnvironment>
#include <QThread>

namespace {

const QString ServiceName = QStringLiteral("com.tolvek.Brix");

// Running, not ended and waiting to be reaped.
bool running(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = stat.readAll();
    return text.mid(text.lastIndexOf(')') + 2, 1) != "Z";
}

} // namespace

AutomationBus::AutomationBus() {
    const QString home = Home();
    for (const char* sub : {"", "/.config", "/.local/share", "/.cache", "/runtime"})
        QDir().mkpath(home + QLatin1String(sub));
    QFile::setPermissions(home + QStringLiteral("/runtime"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString services =
        qEnvironmentVariable("BRIX_BUILD_DIR") + QStringLiteral("/dbus-1/services");
    const QString socket = dir_.filePath(QStringLiteral("bus"));
    address_ = QStringLiteral("unix:path=") + socket;
    QFile config(dir_.filePath(QStringLiteral("bus.conf")));
    if (!config.open(QIODevice::WriteOnly))
        return;
    config.write(
        QStringLiteral(
            R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>%1</listen>
  <servicedir>%2</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)")
            .arg(address_, services)
            .toUtf8());
    config.close();

    // What the bus hands to the editor it starts.
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), home);
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
    env.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/.local/share"));
    env.insert(QStringLiteral("XDG_CACHE_HOME"), home + QStringLiteral("/.cache"));
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), home + QStringLiteral("/runtime"));
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address_);
    env_ = env;
    daemon_.setProcessEnvironment(env);
    daemon_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    daemon_.start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--nofork"), QStringLiteral("--print-address=1"),
                   QStringLiteral("--config-file=") + config.fileName()});
    // Ready once it has told its address.
    up_ = daemon_.waitForStarted(10000) && daemon_.waitForReadyRead(10000);
}

AutomationBus::~AutomationBus() {
    // The editor that the bus started ends with the bus; its home goes only after that.
    QByteArray out;
    qint64 editor = 0;
    if (Run(QStringLiteral("gdbus"),
            {QStringLiteral("call"), QStringLiteral("--session"), QStringLiteral("--dest"),
             QStringLiteral("org.freedesktop.DBus"), QStringLiteral("--object-path"),
             QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("--method"),
             QStringLiteral("org.freedesktop.DBus.GetConnectionUnixProcessID"), ServiceName},
            &out, true) == 0)
        editor = out.mid(out.indexOf(' ') + 1).split(',').value(0).toLongLong();
    daemon_.terminate();
    daemon_.waitForFinished(10000);
    for (int i = 0; editor > 0 && i < 2000 && running(editor); ++i)
        QThread::msleep(10);
}

int AutomationBus::Run(const QString& program, const QStringList& arguments, QByteArray* out,
                       bool quiet) const {
    QProcess client;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address_);
    client.setProcessEnvironment(env);
    client.setProcessChannelMode(quiet ? QProcess::SeparateChannels
                                       : QProcess::ForwardedErrorChannel);
    client.start(program, arguments);
    if (!client.waitForFinished(120000))
        return -1;
    if (out)
        *out = client.readAllStandardOutput();
    return client.exitStatus() == QProcess::NormalExit ? client.exitCode() : -1;
}

int AutomationBus::Client(const QStringList& scenario, QByteArray* out) const {
    const QString script = QStringLiteral(BRIX_TESTS_DIR "/app/automation_client.py");
    return Run(QStringLiteral("/usr/bin/python3"), QStringList{script} + scenario, out);
}

int AutomationBus::Gdbus(const QString& path, const QString& method, const QStringList& arguments,
                         QByteArray* out) const {
    return Run(QStringLiteral("gdbus"),
               QStringList{QStringLiteral("call"), QStringLiteral("--session"),
                           QStringLiteral("--dest"), QStringLiteral("com.tolvek.Brix"),
                           QStringLiteral("--object-path"), path, QStringLiteral("--method"),
                           method} +
                   arguments,
               out);
}
