#include "app/AutomationServer.h"

#include "app/Application.h"
#include "app/ApplicationAdaptor.h"
#include "app/DocumentObject.h"
#include "app/DocumentsAdaptor.h"
#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "shell/frmMain.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QTimer>

const QString AutomationServer::ServiceName = QStringLiteral("com.tolvek.Brix");
const QString AutomationServer::ApplicationPath = QStringLiteral("/Application");
const QString AutomationServer::DocumentsPath = QStringLiteral("/Documents");

namespace {

QDBusConnection bus() {
    return QDBusConnection::sessionBus();
}

QVariantMap applicationValues() {
    const HostContext& host = ProcessState::Instance().Host;
    const frmMain* frame = ProcessState::Instance().MainWindow.data();
    return {{QStringLiteral("ServerName"), host.ServerName},
            {QStringLiteral("Provider"), host.Provider},
            {QStringLiteral("Database"), host.Database},
            {QStringLiteral("Folder"), host.Folder},
            {QStringLiteral("Visible"), frame && frame->isVisible()}};
}

} // namespace

AutomationServer::AutomationServer() : documentsNode_(new QObject(this)) {
    new ApplicationAdaptor(*this);
    new DocumentsAdaptor(*this, documentsNode_);
    watcher_ = new QDBusServiceWatcher(this);
    watcher_->setConnection(bus());
    watcher_->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(watcher_, &QDBusServiceWatcher::serviceUnregistered, this, &AutomationServer::Detach);
}

AutomationServer::~AutomationServer() {
    ProcessState& state = ProcessState::Instance();
    if (state.Documents)
        state.Documents->Added = nullptr;
    if (started_) {
        bus().unregisterService(ServiceName);
        bus().unregisterObject(ApplicationPath);
        bus().unregisterObject(DocumentsPath);
    }
    clients_.clear();
}

bool AutomationServer::Start() {
    QDBusConnection connection = bus();
    if (!connection.isConnected())
        return false;
    connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                       QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                       this, SLOT(busDisconnected()));
    if (!connection.registerObject(ApplicationPath, this) ||
        !connection.registerObject(DocumentsPath, documentsNode_))
        return false;
    ProcessState& state = ProcessState::Instance();
    if (!state.Documents)
        state.Documents = std::make_unique<DocumentCollection>();
    for (const auto& document : state.Documents->Snapshot())
        addDocument(document);
    state.Documents->Added = [this](const std::shared_ptr<mvDocument>& document) {
        addDocument(document);
    };
    watch_ = std::make_unique<PropertyWatch>(
        ApplicationPath, QStringLiteral("com.tolvek.Brix70.Application"), applicationValues);
    started_ = true;
    // Taken last: an activated client calls as soon as the name is there.
    return connection.registerService(ServiceName);
}

QDBusObjectPath AutomationServer::PathOf(const mvDocument& document) {
    return QDBusObjectPath(DocumentsPath + QLatin1Char('/') +
                           QString::number(document.DocumentNumber()));
}

std::shared_ptr<Application> AutomationServer::CallApplication() {
    auto application = Application::Acquire();
    listenTo(*application);
    return application;
}

void AutomationServer::listenTo(Application& application) {
    if (listened_ == &application)
        return;
    listened_ = &application;
    connect(&application, &Application::Custom, this, [](const QString& name) {
        QDBusMessage signal = QDBusMessage::createSignal(
            ApplicationPath, QStringLiteral("com.tolvek.Brix70.Application"),
            QStringLiteral("Custom"));
        signal << name;
        bus().send(signal);
    });
    connect(&application, &Application::Quit, this, &AutomationServer::SendQuit);
    connect(&application, &QObject::destroyed, this, [this, &application] {
        if (listened_ == &application)
            listened_ = nullptr;
    });
}

void AutomationServer::Attach(const QString& client) {
    if (client.isEmpty() || clients_.count(client))
        return;
    clients_[client] = CallApplication();
    watcher_->addWatchedService(client);
}

void AutomationServer::Detach(const QString& client) {
    auto it = clients_.find(client);
    if (it == clients_.end())
        return;
    watcher_->removeWatchedService(client);
    // Out of the map first: letting go may end the Application, which looks at the map.
    std::shared_ptr<Application> held = std::move(it->second);
    clients_.erase(it);
    held.reset();
}

void AutomationServer::CheckProperties() {
    if (checkPending_)
        return;
    checkPending_ = true;
    // Once the call has done all it does.
    QTimer::singleShot(0, this, [this] {
        checkPending_ = false;
        if (watch_)
            watch_->Check();
        for (const auto& [path, object] : documents_)
            object->CheckProperties();
    });
}

void AutomationServer::addDocument(const std::shared_ptr<mvDocument>& document) {
    const QString path = PathOf(*document).path();
    if (documents_.count(path))
        return;
    documents_[path] = new DocumentObject(*this, document);
}

void AutomationServer::DocumentGone(DocumentObject* object) {
    documents_.erase(object->Path());
    object->deleteLater();
    CheckProperties();
}

void AutomationServer::SendQuit() {
    bus().send(QDBusMessage::createSignal(
        ApplicationPath, QStringLiteral("com.tolvek.Brix70.Application"), QStringLiteral("Quit")));
    // Messages leave in order: once the bus has answered this, it has the signal too.
    bus().interface()->serviceOwner(ServiceName);
}

void AutomationServer::busDisconnected() {
    Q_EMIT BusLost();
}
