#include "app/DocumentObject.h"

#include "app/AutomationServer.h"
#include "app/DocumentAdaptor.h"
#include "documents/clsDocView.h"
#include "documents/mvDocument.h"
#include "language/SourceView.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QWidget>

DocumentObject::DocumentObject(AutomationServer& server,
                               const std::shared_ptr<mvDocument>& document)
    : QObject(&server), server_(server), document_(document),
      path_(AutomationServer::PathOf(*document).path()) {
    new DocumentAdaptor(*this);
    connect(document.get(), &mvDocument::DocumentClose, this, &DocumentObject::closed);
    // A document that goes without being closed (at shutdown) still tells its clients.
    connect(document.get(), &QObject::destroyed, this, &DocumentObject::closed);
    watch_ = std::make_unique<PropertyWatch>(
        path_, QStringLiteral("com.tolvek.Brix70.mvDocument"), [this] {
            QVariantMap values;
            if (const auto document = Document()) {
                values.insert(QStringLiteral("ReadOnly"), document->ReadOnly());
                values.insert(QStringLiteral("NewItem"), document->NewItem());
                values.insert(QStringLiteral("IsDirty"), document->IsDirty());
                values.insert(QStringLiteral("Path"), document->Path());
                values.insert(QStringLiteral("FileName"), document->FileName());
                values.insert(QStringLiteral("ItemID"), document->ItemID());
                values.insert(QStringLiteral("LocalFile"), document->LocalFile());
                values.insert(QStringLiteral("Highlight"), document->Highlight());
                values.insert(QStringLiteral("DisplayName"), document->DisplayName());
            }
            return values;
        });
    QDBusConnection::sessionBus().registerObject(path_, this);
    watchView();
}

DocumentObject::~DocumentObject() {
    QDBusConnection::sessionBus().unregisterObject(path_);
}

void DocumentObject::CheckProperties() {
    if (closeSent_)
        return;
    watchView();
    watch_->Check();
}

// Edits and title changes made by the user reach clients too.
void DocumentObject::watchView() {
    const auto document = Document();
    clsDocView* view = document ? document->View() : nullptr;
    QWidget* widget = dynamic_cast<QWidget*>(view);
    if (!widget || widget == watchedView_)
        return;
    watchedView_ = widget;
    connect(widget, &QWidget::windowTitleChanged, this, &DocumentObject::CheckProperties);
    if (SourceView* editor = document->Editor())
        connect(editor, &QsciScintilla::modificationChanged, this,
                &DocumentObject::CheckProperties);
}

void DocumentObject::closed() {
    if (closeSent_)
        return;
    closeSent_ = true;
    // Sent at once, with its path, before the object leaves the bus.
    QDBusConnection::sessionBus().send(QDBusMessage::createSignal(
        path_, QStringLiteral("com.tolvek.Brix70.mvDocument"), QStringLiteral("DocumentClose")));
    QDBusConnection::sessionBus().unregisterObject(path_);
    Q_EMIT Closed();
    server_.DocumentGone(this);
}
