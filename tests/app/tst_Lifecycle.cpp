#include "TestEnv.h"

#include "app/ProcessState.h"
#include "app/modMain.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"

#include <QProcess>
#include <csignal>

// Start-up and shutdown, in this process and as a real program.
class tst_Lifecycle : public QObject {
    Q_OBJECT

    static QString brix() {
        return qEnvironmentVariable("BRIX_BUILD_DIR") + QStringLiteral("/brix");
    }

    // Starts the editor in a home of its own and waits until its frame is up.
    static bool startEditor(QProcess& process, const QString& home) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("HOME"), home);
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
        env.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/.local/share"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        process.setProcessEnvironment(env);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(brix(), {});
        if (!process.waitForStarted(10000))
            return false;
        // Up once it has run a moment without ending; a start-up failure ends it at once.
        return !process.waitForFinished(2500);
    }

private Q_SLOTS:
    // The ending signals close the program through its orderly path (SIGTERM: tst_modMain).
    void endingSignalsShutDownCleanly_data() {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGHUP") << SIGHUP;
    }
    void endingSignalsShutDownCleanly() {
        QFETCH(int, signal);
        QTemporaryDir home;
        QProcess process;
        QVERIFY(startEditor(process, home.path()));
        ::kill(static_cast<pid_t>(process.processId()), signal);
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
    }

    // In this process: Main builds the state in order, Shutdown takes it down once.
    void mainThenShutdownRunsOnce() {
        ProcessState& state = ProcessState::Instance();
        QVERIFY(Main(*qApp));
        QVERIFY(state.MainWindow);
        QVERIFY(state.Documents);
        QCOMPARE(state.Host.Provider, QStringLiteral("mvdb"));
        QCOMPARE(state.Host.ServerName, QStringLiteral("*"));
        // The mark strings are computed by start-up, not by the state's constructor.
        QCOMPARE(state.ValueMark, QString(QChar(29)));
        QCOMPARE(state.ValueMarkHost, QString(QChar(0xF8FD)));
        QCOMPARE(state.PrintableMarks[2], QStringLiteral("^"));
        // A start with an empty command line opens nothing.
        QCOMPARE(state.MainWindow->windowTitle(), QStringLiteral("Brix"));
        QCOMPARE(state.Documents->Count(), 0);

        state.MainWindow->NewDocument();
        std::weak_ptr<mvDocument> document = state.Documents->At(0);
        QPointer<frmMain> frame = state.MainWindow.data();
        const int32_t tabSize = state.Settings->TabSize + 1;
        state.Settings->TabSize = tabSize;
        Shutdown();
        QVERIFY(state.ShutdownStarted);
        QVERIFY(!state.MainWindow);
        QVERIFY(!state.Documents);
        QVERIFY(document.expired());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!frame);

        QVERIFY(!state.Settings);
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
