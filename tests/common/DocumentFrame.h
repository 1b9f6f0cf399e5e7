#pragma once

#include <QPointer>
#include <QStringList>
#include <functional>

class frmBrowse;
class frmMain;

// The program's frame, shown and registered as the main window, with an empty Documents:
// documents opened under it count, title and report as they do in the program.
class DocumentFrame {
public:
    DocumentFrame();
    ~DocumentFrame();
    DocumentFrame(const DocumentFrame&) = delete;
    DocumentFrame& operator=(const DocumentFrame&) = delete;

    frmMain* Frame() const { return frame_; }
    // The settings and context a test starts from: record locking on, an empty recent list,
    // the host context of a fresh start.
    static void Reset();
    // Closes every open document without a question and lets their windows go.
    static void CloseAll();
    // The recent list, newest first.
    static QStringList RecentItems();
    // Runs `fill` on the browser once it is up; `fill` accepts or rejects it.
    static void WhenBrowserShows(std::function<void(frmBrowse&)> fill);

private:
    QPointer<frmMain> frame_;
};
