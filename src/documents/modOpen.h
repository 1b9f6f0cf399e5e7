#pragma once

#include <QString>
#include <QStringList>
#include <memory>

class QWidget;
class mvDocument;
class mvResource;

// The program's ways into a document: File Open with the browser, a path (command line,
// recent list, automation), files dropped on the main window. Each creates the document,
// opens it, and puts what opened on the recent list; what failed is closed again.
class modOpen {
public:
    // The browser for several items, then one document each.
    static void OpenCommand(QWidget* owner);
    // The opened document, or null when it failed and was closed again.
    static std::shared_ptr<mvDocument> OpenPath(const QString& path, bool readOnly = false);
    // Local file names, as a drop gives them.
    static void OpenDroppedFiles(const QStringList& fileNames);
    // Entry `index` (1 is the newest) of the recent list; a bad index does nothing.
    static std::shared_ptr<mvDocument> OpenRecent(int16_t index);

    // The form of a path that goes on the recent list: a host entry carries "*" for its
    // server and account, so that it opens on the connection in use; a local file is kept.
    static QString RecentPathOf(const QString& path);
    // A recent entry's "*" server and account taken from the host context (the profile's
    // own account when the context has none).
    static QString ResolveRecentPath(const QString& path);
    // `current`, or else the place of the host context (no item), where browsing starts.
    static std::shared_ptr<mvResource> DefaultResource(const std::shared_ptr<mvResource>& current);
    // Puts the recent form of a document's path first on the recent list.
    static void AddRecent(const QString& path);
};
