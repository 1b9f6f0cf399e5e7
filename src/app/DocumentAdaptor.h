#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QString>
#include <memory>

class DocumentObject;
class mvDocument;

// com.tolvek.Brix70.mvDocument on /Documents/<DocumentNumber>. By-reference arguments come
// back as out arguments after the result. PrintText and Compile answer that they are not
// available until printing and compiling are wired in.
class DocumentAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tolvek.Brix70.mvDocument")
    Q_CLASSINFO("D-Bus Introspection",
                ""
                "  <interface name=\"com.tolvek.Brix70.mvDocument\">\n"
                "    <property name=\"Application\" type=\"o\" access=\"read\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030014\"/>\n"
                "      <annotation name=\"org.freedesktop.DBus.Property.EmitsChangedSignal\" "
                "value=\"const\"/>\n"
                "    </property>\n"
                "    <method name=\"FileNew\">\n"
                "      <arg name=\"Result\" type=\"b\" direction=\"out\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030015\"/>\n"
                "    </method>\n"
                "    <method name=\"FileOpen\">\n"
                "      <arg name=\"Path\" type=\"s\" direction=\"in\"/>\n"
                "      <arg name=\"ReadOnly\" type=\"b\" direction=\"in\"/>\n"
                "      <arg name=\"Result\" type=\"b\" direction=\"out\"/>\n"
                "      <arg name=\"Path\" type=\"s\" direction=\"out\"/>\n"
                "      <arg name=\"ReadOnly\" type=\"b\" direction=\"out\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030017\"/>\n"
                "    </method>\n"
                "    <method name=\"FileSave\">\n"
                "      <arg name=\"Result\" type=\"b\" direction=\"out\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030019\"/>\n"
                "    </method>\n"
                "    <method name=\"FileSaveAs\">\n"
                "      <arg name=\"Path\" type=\"s\" direction=\"in\"/>\n"
                "      <arg name=\"Result\" type=\"b\" direction=\"out\"/>\n"
                "      <arg name=\"Path\" type=\"s\" direction=\"out\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x6003001A\"/>\n"
                "    </method>\n"
                "    <method name=\"FileClose\">\n"
                "      <arg name=\"Prompt\" type=\"b\" direction=\"in\"/>\n"
                "      <arg name=\"Result\" type=\"b\" direction=\"out\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x6003001C\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.Default.Prompt\" value=\"false\"/>\n"
                "    </method>\n"
                "    <method name=\"PrintText\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x6003001D\"/>\n"
                "    </method>\n"
                "    <method name=\"Compile\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030026\"/>\n"
                "    </method>\n"
                "    <method name=\"Format\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030027\"/>\n"
                "    </method>\n"
                "    <property name=\"ReadOnly\" type=\"b\" access=\"read\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030012\"/>\n"
                "    </property>\n"
                "    <property name=\"NewItem\" type=\"b\" access=\"read\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030011\"/>\n"
                "    </property>\n"
                "    <property name=\"IsDirty\" type=\"b\" access=\"read\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030010\"/>\n"
                "    </property>\n"
                "    <property name=\"Path\" type=\"s\" access=\"read\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x6803000F\"/>\n"
                "    </property>\n"
                "    <property name=\"FileName\" type=\"s\" access=\"read\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x6803000E\"/>\n"
                "    </property>\n"
                "    <property name=\"ItemID\" type=\"s\" access=\"read\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x6803000D\"/>\n"
                "    </property>\n"
                "    <property name=\"LocalFile\" type=\"b\" access=\"read\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x6803000C\"/>\n"
                "    </property>\n"
                "    <property name=\"Highlight\" type=\"b\" access=\"readwrite\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x6803000B\"/>\n"
                "    </property>\n"
                "    <property name=\"Text\" type=\"s\" access=\"readwrite\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x6803000A\"/>\n"
                "      <annotation name=\"org.freedesktop.DBus.Property.EmitsChangedSignal\" "
                "value=\"false\"/>\n"
                "    </property>\n"
                "    <property name=\"SelText\" type=\"s\" access=\"readwrite\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030007\"/>\n"
                "      <annotation name=\"org.freedesktop.DBus.Property.EmitsChangedSignal\" "
                "value=\"false\"/>\n"
                "    </property>\n"
                "    <method name=\"InsValue\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x6003002F\"/>\n"
                "    </method>\n"
                "    <method name=\"InsSubValue\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030030\"/>\n"
                "    </method>\n"
                "    <method name=\"Activate\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030031\"/>\n"
                "    </method>\n"
                "    <method name=\"GotoLabel\">\n"
                "      <arg name=\"Target\" type=\"s\" direction=\"in\"/>\n"
                "      <arg name=\"Target\" type=\"s\" direction=\"out\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030032\"/>\n"
                "    </method>\n"
                "    <method name=\"GotoLine\">\n"
                "      <arg name=\"Line\" type=\"i\" direction=\"in\"/>\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x60030033\"/>\n"
                "    </method>\n"
                "    <property name=\"DisplayName\" type=\"s\" access=\"read\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"0x68030003\"/>\n"
                "    </property>\n"
                "    <signal name=\"DocumentClose\">\n"
                "      <annotation name=\"com.tolvek.Brix70.DispId\" value=\"1\"/>\n"
                "    </signal>\n"
                "  </interface>\n")
    Q_PROPERTY(QDBusObjectPath Application READ Application)
    Q_PROPERTY(bool ReadOnly READ ReadOnly)
    Q_PROPERTY(bool NewItem READ NewItem)
    Q_PROPERTY(bool IsDirty READ IsDirty)
    Q_PROPERTY(QString Path READ Path)
    Q_PROPERTY(QString FileName READ FileName)
    Q_PROPERTY(QString ItemID READ ItemID)
    Q_PROPERTY(bool LocalFile READ LocalFile)
    Q_PROPERTY(bool Highlight READ Highlight WRITE SetHighlight)
    Q_PROPERTY(QString Text READ Text WRITE SetText)
    Q_PROPERTY(QString SelText READ SelText WRITE SetSelText)
    Q_PROPERTY(QString DisplayName READ DisplayName)

public:
    explicit DocumentAdaptor(DocumentObject& object);

    // Property reads never fail: a closed document reads as the defaults.
    QDBusObjectPath Application() const;
    bool ReadOnly() const;
    bool NewItem() const;
    bool IsDirty() const;
    QString Path() const;
    QString FileName() const;
    QString ItemID() const;
    bool LocalFile() const;
    bool Highlight() const;
    void SetHighlight(bool highlight);
    QString Text() const;
    void SetText(const QString& text);
    QString SelText() const;
    void SetSelText(const QString& text);
    QString DisplayName() const;

public Q_SLOTS:
    bool FileNew(const QDBusMessage& call);
    bool FileOpen(const QString& Path, bool ReadOnly, const QDBusMessage& call, QString& PathOut,
                  bool& ReadOnlyOut);
    bool FileSave(const QDBusMessage& call);
    bool FileSaveAs(const QString& Path, const QDBusMessage& call, QString& PathOut);
    bool FileClose(bool Prompt, const QDBusMessage& call);
    // Prompt left out: false.
    bool FileClose(const QDBusMessage& call);
    void PrintText(const QDBusMessage& call);
    void Compile(const QDBusMessage& call);
    void Format(const QDBusMessage& call);
    void InsValue(const QDBusMessage& call);
    void InsSubValue(const QDBusMessage& call);
    void Activate(const QDBusMessage& call);
    void GotoLabel(const QString& Target, const QDBusMessage& call, QString& TargetOut);
    void GotoLine(int Line, const QDBusMessage& call);

private:
    // The document of the call; raises a BrixError when it has gone.
    std::shared_ptr<mvDocument> document() const;
    template <typename Value, typename Read> Value read(Read&& reader) const;
    void changed() const;

    DocumentObject& object_;
};
