#include "DocumentFrame.h"
#include "TestEnv.h"

#include "app/Application.h"
#include "app/AutomationServer.h"
#include "app/DocumentObject.h"
#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/clsDocView.h"
#include "documents/mvDocument.h"
#include "shell/CommandBar.h"
#include "shell/CommandDispatcher.h"
#include "shell/frmMain.h"

#include <QAction>
#include <QMdiSubWindow>
#include <QSignalSpy>

// The automation objects inside the program: user tools and the events clients get.
class tst_Application : public QObject {
    Q_OBJECT
    std::unique_ptr<DocumentFrame> frames;

private Q_SLOTS:
    void initTestCase() {
        frames = std::make_unique<DocumentFrame>();
        frames->Frame()->Dispatcher().UserTool = &Application::RaiseUserTool;
    }
    void cleanupTestCase() { frames.reset(); }

    // A tool added by a client stands on the Tools menu with its shortcut; its click
    // raises Custom with its key, and keys no client added raise nothing.
    void userToolRaisesCustom() {
        const auto application = Application::Acquire();
        QSignalSpy custom(application.get(), &Application::Custom);
        application->ExtendedCommand(QStringLiteral("Lint"), QStringLiteral("&Lint"), 51);
        const CommandTool* tool =
            frames->Frame()->Bar().Tool(QStringLiteral("tools"), QStringLiteral("Lint"));
        QCOMPARE(tool->Action()->shortcut(), QKeySequence(Qt::SHIFT | Qt::Key_F1));
        tool->Action()->trigger();
        frames->Frame()->Dispatcher().Dispatch(QStringLiteral("Unknown"), false);
        QCOMPARE(custom.count(), 1);
        QCOMPARE(custom.at(0).at(0).toString(), QStringLiteral("Lint"));
    }

    // The document's object on the bus tells DocumentClose once, also when the user
    // closes its window, and leaves the bus.
    void documentCloseOnceWhenTheUserCloses() {
        AutomationServer server;
        server.Start();
        auto document = mvDocument::Create();
        QVERIFY(document->FileNew());
        QSignalSpy closed(server.findChild<DocumentObject*>(), &DocumentObject::Closed);
        QVERIFY(dynamic_cast<QMdiSubWindow*>(document->View())->close());
        document.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(closed.count(), 1);
        QVERIFY(!server.findChild<DocumentObject*>());
    }
};

BRIX_TEST_MAIN(tst_Application)
#include "tst_Application.moc"
