#include "app/DocumentsAdaptor.h"

#include "app/Application.h"
#include "app/AutomationReply.h"
#include "app/AutomationServer.h"
#include "documents/mvDocument.h"

DocumentsAdaptor::DocumentsAdaptor(AutomationServer& server, QObject* node)
    : QDBusAbstractAdaptor(node), server_(server) {}

QDBusObjectPath DocumentsAdaptor::Item(const QDBusVariant& Index, const QDBusMessage& call) {
    return AutomationReply::Run(call, "v", [&] {
        const auto application = server_.CallApplication();
        return AutomationServer::PathOf(*application->Documents().Item(Index.variant()));
    });
}

int DocumentsAdaptor::Count(const QDBusMessage& call) {
    return AutomationReply::Run(call, "",
                                [&] { return server_.CallApplication()->Documents().Count(); });
}

QDBusObjectPath DocumentsAdaptor::AddNew(const QDBusMessage& call) {
    const QDBusObjectPath path = AutomationReply::Run(call, "", [&] {
        const auto application = server_.CallApplication();
        return AutomationServer::PathOf(*application->Documents().AddNew());
    });
    server_.CheckProperties();
    return path;
}

QList<QDBusObjectPath> DocumentsAdaptor::NewEnum(const QDBusMessage& call) {
    return AutomationReply::Run(call, "", [&] {
        QList<QDBusObjectPath> paths;
        for (const auto& document : server_.CallApplication()->Documents().NewEnum())
            paths << AutomationServer::PathOf(*document);
        return paths;
    });
}
