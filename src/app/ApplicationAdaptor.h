#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QString>

class AutomationServer;

// com.tolvek.Brix70.Application on /Application. Attach and Detach stand for a client's
// reference; any other call made without one is served by the live object, or by one
// made for that call alone.
class ApplicationAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tolvek.Brix70.Application")
    Q_CLASSINFO("D-Bus Introspection",
                ""
                "  <interface name=\"com.tolvek.Brix70.Application\">\n"
                "    <method name=\"Activate\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030006\"/>\n"
                "    </method>\n"
                "    <property name=\"Documents\" type=\"o\" access=\"read\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030005\"/>\n"
                "      <annotation name=\"org.freedesktop.DBus.Property.EmitsChangedSignal\" "
                "value=\"const\"/>\n"
                "    </property>\n"
                "    <property name=\"ServerName\" type=\"s\" access=\"readwrite\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030004\"/>\n"
                "    </property>\n"
                "    <property name=\"Provider\" type=\"s\" access=\"readwrite\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030003\"/>\n"
                "    </property>\n"
                "    <property name=\"Database\" type=\"s\" access=\"readwrite\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030002\"/>\n"
                "    </property>\n"
                "    <property name=\"Folder\" type=\"s\" access=\"readwrite\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030001\"/>\n"
                "    </property>\n"
                "    <property name=\"Visible\" type=\"b\" access=\"readwrite\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030000\"/>\n"
                "    </property>\n"
                "    <method name=\"ExtendedCommand\">\n"
                "      <arg name=\"Name\" type=\"s\" direction=\"in\"/>\n"
                "      <arg name=\"Caption\" type=\"s\" direction=\"in\"/>\n"
                "      <arg name=\"Shortcut\" type=\"i\" direction=\"in\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030007\"/>\n"
                "    </method>\n"
                "    <method name=\"Attach\"/>\n"
                "    <method name=\"Detach\"/>\n"
                "    <signal name=\"Quit\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"1\"/>\n"
                "    </signal>\n"
                "    <signal name=\"Custom\">\n"
                "      <arg name=\"Name\" type=\"s\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"2\"/>\n"
                "    </signal>\n"
                "  </interface>\n")
    Q_PROPERTY(QDBusObjectPath Documents READ Documents)
    Q_PROPERTY(QString ServerName READ ServerName WRITE SetServerName)
    Q_PROPERTY(QString Provider READ Provider WRITE SetProvider)
    Q_PROPERTY(QString Database READ Database WRITE SetDatabase)
    Q_PROPERTY(QString Folder READ Folder WRITE SetFolder)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible)

public:
    explicit ApplicationAdaptor(AutomationServer& server);

    QDBusObjectPath Documents() const;
    QString ServerName() const;
    void SetServerName(const QString& value);
    QString Provider() const;
    void SetProvider(const QString& value);
    QString Database() const;
    void SetDatabase(const QString& value);
    QString Folder() const;
    void SetFolder(const QString& value);
    bool Visible() const;
    void SetVisible(bool visible);

public Q_SLOTS:
    void Activate(const QDBusMessage& call);
    void ExtendedCommand(const QString& Name, const QString& Caption, int Shortcut,
                         const QDBusMessage& call);
    void Attach(const QDBusMessage& call);
    void Detach(const QDBusMessage& call);

private:
    AutomationServer& server_;
};
