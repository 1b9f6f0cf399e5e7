#include "TestEnv.h"

#include "app/ProcessState.h"
#include "app/modMain.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"

// Start-up and shutdown in this process; the ending signals of a real run are tst_RecoveryCrash's.
class tst_Lifecycle : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Main builds the state in order, Shutdown takes it down once.
    void mainThenShutdownRunsOnce() {
        ProcessState& state = ProcessState::Instance();
        QVERIFY(Main(*qApp));
        QCOMPARE(state.Host.ServerName, QStringLiteral("*"));
        // The mark strings are computed by start-up, not by the state's constructor.
        QCOMPARE(state.ValueMarkHost, QString(QChar(0xF8FD)));
        // A start with an empty command line opens nothing.
        QCOMPARE(state.Documents->Count(), 0);

        state.MainWindow->NewDocument();
        std::weak_ptr<mvDocument> document = state.Documents->At(0);
        QPointer<frmMain> frame = state.MainWindow.data();
        const int32_t tabSize = state.Settings->TabSize + 1;
        state.Settings->TabSize = tabSize;
        Shutdown();
        QVERIFY(!state.Documents && document.expired());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!frame);

        // The settings went to the store on the way down.
        Moriox reloaded;
        reloaded.LoadSettings();
        QCOMPARE(reloaded.TabSize, tabSize);

        // A second run does nothing: it leaves alone what it would otherwise take down.
        state.Settings = std::make_unique<Moriox>();
        Shutdown();
        QVERIFY(state.Settings);
        state.Settings.reset();
    }
};

BRIX_TEST_MAIN(tst_Lifecycle)
#include "tst_Lifecycle.moc"
