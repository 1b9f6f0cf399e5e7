#include "DocumentFrame.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/frmBrowse.h"
#include "documents/mvDocument.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"

#include <QApplication>
#include <QTimer>
#include <QtTest>
#include <memory>

DocumentFrame::DocumentFrame() {
    ProcessState& state = ProcessState::Instance();
    state.Documents = std::make_unique<DocumentCollection>();
    frame_ = new frmMain;
    frame_->setAttribute(Qt::WA_DeleteOnClose, false);
    state.MainWindow = frame_;
    frame_->Load();
    frame_->show();
    if (!QTest::qWaitForWindowExposed(frame_))
        qWarning("the frame was not exposed");
}

DocumentFrame::~DocumentFrame() {
    CloseAll();
    delete frame_;
}

void DocumentFrame::Reset() {
    Settings().RecordLocking = true;
    Settings().RecentList->Clear();
    ProcessState::Instance().Host = HostContext();
}

void DocumentFrame::CloseAll() {
    for (const auto& document : ProcessState::Instance().Documents->Snapshot())
        document->FileClose(false);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QStringList DocumentFrame::RecentItems() {
    QStringList items;
    const clsRecentList& recent = *Settings().RecentList;
    for (int16_t i = 1; i <= recent.ListCount(); ++i)
        items << recent.ListItem(i);
    return items;
}

void DocumentFrame::WhenBrowserShows(std::function<void(frmBrowse&)> fill) {
    auto poll = std::make_shared<std::function<void()>>();
    *poll = [fill, poll] {
        if (auto* browser = qobject_cast<frmBrowse*>(QApplication::activeModalWidget())) {
            fill(*browser);
            *poll = nullptr;
            return;
        }
        QTimer::singleShot(10, *poll);
    };
    QTimer::singleShot(0, *poll);
}
