#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QList>

class AutomationServer;

// com.tolvek.Brix70.mvDocuments on /Documents; documents travel as their object paths.
class DocumentsAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tolvek.Brix70.mvDocuments")
    Q_CLASSINFO("D-Bus Introspection",
                ""
                "  <interface name=\"com.tolvek.Brix70.mvDocuments\">\n"
                "    <method name=\"Item\">\n"
                "      <arg name=\"Index\" type=\"v\" direction=\"in\"/>\n"
                "      <arg name=\"Result\" type=\"o\" direction=\"out\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0\"/>\n"
                "    </method>\n"
                "    <method name=\"Count\">\n"
                "      <arg name=\"Result\" type=\"i\" direction=\"out\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030000\"/>\n"
                "    </method>\n"
                "    <method name=\"AddNew\">\n"
                "      <arg name=\"Result\" type=\"o\" direction=\"out\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030001\"/>\n"
                "    </method>\n"
                "    <method name=\"NewEnum\">\n"
                "      <arg name=\"Result\" type=\"ao\" direction=\"out\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"-4\"/>\n"
                "    </method>\n"
                "  </interface>\n")

public:
    DocumentsAdaptor(AutomationServer& server, QObject* node);

public Q_SLOTS:
    QDBusObjectPath Item(const QDBusVariant& Index, const QDBusMessage& call);
    int Count(const QDBusMessage& call);
    QDBusObjectPath AddNew(const QDBusMessage& call);
    QList<QDBusObjectPath> NewEnum(const QDBusMessage& call);

private:
    AutomationServer& server_;
};
