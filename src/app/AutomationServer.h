#pragma once

#include "app/PropertyWatch.h"

#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <map>
#include <memory>

class Application;
class DocumentObject;
class QDBusServiceWatcher;
class mvDocument;

// The automation objects on the session bus under the name com.tolvek.Brix: /Application,
// /Documents and one /Documents/<DocumentNumber> per open document. A client holds the
// Application from Attach until Detach or until it leaves the bus.
class AutomationServer : public QObject {
    Q_OBJECT

public:
    static const QString ServiceName;
    static const QString ApplicationPath;
    static const QString DocumentsPath;

    AutomationServer();
    ~AutomationServer() override;

    // Puts the objects and the open documents on the bus and takes the name. False when
    // there is no session bus or another editor holds the name; the editor then runs
    // without automation.
    bool Start();

    static QDBusObjectPath PathOf(const mvDocument& document);

    // The Application that a call works on: the live one, or one made for the call, which
    // goes again when the call is done unless something took it.
    std::shared_ptr<Application> CallApplication();
    void Attach(const QString& client);
    void Detach(const QString& client);
    int Clients() const { return static_cast<int>(clients_.size()); }

    // Tells the bus what changed in the properties of the application and the documents.
    void CheckProperties();
    void DocumentGone(DocumentObject* object);

    // Sends Quit and waits until the bus has it, for the process ends right after.
    void SendQuit();

Q_SIGNALS:
    // The bus went away; an editor started for clients ends with it.
    void BusLost();

private Q_SLOTS:
    void busDisconnected();

private:
    void addDocument(const std::shared_ptr<mvDocument>& document);
    void listenTo(Application& application);

    QObject* documentsNode_ = nullptr;
    QDBusServiceWatcher* watcher_ = nullptr;
    std::map<QString, std::shared_ptr<Application>> clients_;
    std::map<QString, DocumentObject*> documents_; // children of this object
    Application* listened_ = nullptr;
    std::unique_ptr<PropertyWatch> watch_;
    bool checkPending_ = false;
    bool started_ = false;
};
