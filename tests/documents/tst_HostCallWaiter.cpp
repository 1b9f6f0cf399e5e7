#include "TestEnv.h"

#include "documents/HostCallWaiter.h"

#include <QMessageBox>
#include <QThread>
#include <QTimer>
#include <atomic>

// While a host call runs, the interface thread shows the pending message once it takes long.
class tst_HostCallWaiter : public QObject {
    Q_OBJECT

    static QMessageBox* visibleBusyBox() {
        for (QWidget* w : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(w);
            if (box && box->isVisible() && box->windowTitle() == QLatin1String("Busy"))
                return box;
        }
        return nullptr;
    }

private slots:
    void cleanup() { HostCallWaiter::SetPendingDelay(30000); }

    // The call ends only when the interface thread has seen the message: it must have
    // kept running its timers while waiting.
    void pendingMessageShowsWhileTheCallWaits() {
        HostCallWaiter::SetPendingDelay(0);
        std::atomic<bool> seen{false};
        QString text;
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, [&] {
            if (QMessageBox* box = visibleBusyBox()) {
                text = box->text();
                seen = true;
            }
        });
        watch.start(10);
        HostCallWaiter::Run([&] {
            while (!seen)
                QThread::msleep(5);
        });
        QCOMPARE(text, QStringLiteral("A request to the MultiValue database server is pending. "
                                      "Please wait."));
        QCoreApplication::processEvents();
        QVERIFY(!visibleBusyBox());
    }
};

BRIX_TEST_MAIN(tst_HostCallWaiter)
#include "tst_HostCallWaiter.moc"
