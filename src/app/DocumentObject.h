#pragma once

#include "app/PropertyWatch.h"

#include <QObject>
#include <QPointer>
#include <memory>

class AutomationServer;
class QWidget;
class mvDocument;

// One open document on the bus at /Documents/<DocumentNumber>. It holds the document
// weakly, sends DocumentClose once when it closes (whoever closed it) and then leaves the
// bus.
class DocumentObject : public QObject {
    Q_OBJECT

public:
    DocumentObject(AutomationServer& server, const std::shared_ptr<mvDocument>& document);
    ~DocumentObject() override;

    QString Path() const { return path_; }
    std::shared_ptr<mvDocument> Document() const { return document_.lock(); }
    AutomationServer& Server() const { return server_; }
    // Tells the bus which properties changed since the last look.
    void CheckProperties();

Q_SIGNALS:
    // DocumentClose went to the bus.
    void Closed();

private:
    void closed();
    void watchView();

    AutomationServer& server_;
    std::weak_ptr<mvDocument> document_;
    QString path_;
    std::unique_ptr<PropertyWatch> watch_;
    QPointer<QWidget> watchedView_;
    bool closeSent_ = false;
};
