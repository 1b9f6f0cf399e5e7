#pragma once

#include "app/mvDocuments.h"

#include <QObject>
#include <QString>
#include <cstdint>
#include <memory>

class mvDocument;

// The automation object that clients create. There is at most one at a time: it lives
// while a client or a document made under it holds it, and ActiveApplication points at it
// without holding it. When the last holder lets go in an automation start with no
// document open, the frame is unloaded shortly after.
class Application : public QObject {
    Q_OBJECT

public:
    // The live object, or a new one that becomes ActiveApplication.
    static std::shared_ptr<Application> Acquire();
    ~Application() override;

    // Shows the main window and brings it to the front.
    void Activate();
    mvDocuments& Documents() { return documents_; }

    // An empty string written is ignored.
    QString ServerName() const;
    void SetServerName(const QString& value);
    QString Provider() const;
    void SetProvider(const QString& value);
    QString Database() const;
    void SetDatabase(const QString& value);
    // Writing never changes the folder: a client names it through a path.
    QString Folder() const;
    void SetFolder(const QString& value);
    bool Visible() const;
    void SetVisible(bool visible);

    // Adds a tool to the Tools menu whose click raises Custom with its key. A key already
    // on that menu raises a BrixError.
    void ExtendedCommand(const QString& name, const QString& caption, int32_t shortcut);

    // A user tool was clicked: raises Custom on the document's Application, or on the
    // active one when the document has none. A key no client added does nothing.
    static void RaiseUserTool(const QString& key, const std::shared_ptr<mvDocument>& document);
    void RaiseQuit() { Q_EMIT Quit(); }

Q_SIGNALS:
    void Quit();
    void Custom(const QString& name);

private:
    struct Token {};

public:
    explicit Application(Token) {}

private:
    mvDocuments documents_;
};
