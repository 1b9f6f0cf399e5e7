#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// A private session bus whose activation starts this build's editor ("brix --automation")
// in a home of its own. The bus ends with the object, and an editor it started with it.
class AutomationBus {
public:
    AutomationBus();
    ~AutomationBus();
    AutomationBus(const AutomationBus&) = delete;
    AutomationBus& operator=(const AutomationBus&) = delete;

    bool Up() const { return up_; }
    QString Home() const { return dir_.filePath(QStringLiteral("home")); }
    QString Path(const QString& relative) const { return dir_.filePath(relative); }
    // What an editor on this bus runs with: its home, offscreen, the bus address.
    QProcessEnvironment EditorEnvironment() const { return env_; }

    // Runs a client on the bus; gives its exit code, its output in `out`. `quiet` drops what
    // it writes to standard error.
    int Run(const QString& program, const QStringList& arguments, QByteArray* out,
            bool quiet = false) const;
    // One scenario of tests/app/automation_client.py under Debian's python3.
    int Client(const QStringList& scenario, QByteArray* out) const;
    // gdbus call to the editor: object path, interface.member, arguments in GVariant text.
    int Gdbus(const QString& path, const QString& method, const QStringList& arguments,
              QByteArray* out) const;

private:
    QTemporaryDir dir_;
    QProcess daemon_;
    QString address_;
    QProcessEnvironment env_;
    bool up_ = false;
};
