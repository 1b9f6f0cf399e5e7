#include "app/ApplicationAdaptor.h"

#include "app/Application.h"
#include "app/AutomationReply.h"
#include "app/AutomationServer.h"

ApplicationAdaptor::ApplicationAdaptor(AutomationServer& server)
    : QDBusAbstractAdaptor(&server), server_(server) {
    setAutoRelaySignals(false);
}

QDBusObjectPath ApplicationAdaptor::Documents() const {
    return QDBusObjectPath(AutomationServer::DocumentsPath);
}

// Property access runs on the live object or one made for it; reads never fail.
QString ApplicationAdaptor::ServerName() const {
    return server_.CallApplication()->ServerName();
}

void ApplicationAdaptor::SetServerName(const QString& value) {
    server_.CallApplication()->SetServerName(value);
    server_.CheckProperties();
}

QString ApplicationAdaptor::Provider() const {
    return server_.CallApplication()->Provider();
}

void ApplicationAdaptor::SetProvider(const QString& value) {
    server_.CallApplication()->SetProvider(value);
    server_.CheckProperties();
}

QString ApplicationAdaptor::Database() const {
    return server_.CallApplication()->Database();
}

void ApplicationAdaptor::SetDatabase(const QString& value) {
    server_.CallApplication()->SetDatabase(value);
    server_.CheckProperties();
}

QString ApplicationAdaptor::Folder() const {
    return server_.CallApplication()->Folder();
}

void ApplicationAdaptor::SetFolder(const QString& value) {
    server_.CallApplication()->SetFolder(value);
    server_.CheckProperties();
}

bool ApplicationAdaptor::Visible() const {
    return server_.CallApplication()->Visible();
}

void ApplicationAdaptor::SetVisible(bool visible) {
    server_.CallApplication()->SetVisible(visible);
    server_.CheckProperties();
}

void ApplicationAdaptor::Activate(const QDBusMessage& call) {
    AutomationReply::Run(call, "", [&] { server_.CallApplication()->Activate(); });
    server_.CheckProperties();
}

void ApplicationAdaptor::ExtendedCommand(const QString& Name, const QString& Caption, int Shortcut,
                                         const QDBusMessage& call) {
    AutomationReply::Run(
        call, "ssi", [&] { server_.CallApplication()->ExtendedCommand(Name, Caption, Shortcut); });
}

void ApplicationAdaptor::Attach(const QDBusMessage& call) {
    AutomationReply::Run(call, "", [&] { server_.Attach(call.service()); });
}

void ApplicationAdaptor::Detach(const QDBusMessage& call) {
    AutomationReply::Run(call, "", [&] { server_.Detach(call.service()); });
}
