#include "documents/HostCallWaiter.h"

#include <QApplication>
#include <QEventLoop>
#include <QMessageBox>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <atomic>
#include <exception>

namespace {

std::atomic<int> pendingDelay{30000};

} // namespace

int HostCallWaiter::PendingDelay() {
    return pendingDelay;
}

void HostCallWaiter::SetPendingDelay(int milliseconds) {
    pendingDelay = milliseconds;
}

const char* HostCallWaiter::PendingText() {
    return "A request to the MultiValue database server is pending. Please wait.";
}

void HostCallWaiter::Run(const std::function<void()>& call) {
    auto* app = qobject_cast<QApplication*>(QCoreApplication::instance());
    if (!app || QThread::currentThread() != app->thread()) {
        call();
        return;
    }
    std::exception_ptr error;
    QEventLoop loop;
    std::unique_ptr<QThread> worker(QThread::create([&call, &error] {
        try {
            call();
        } catch (...) {
            error = std::current_exception();
        }
    }));
    QObject::connect(worker.get(), &QThread::finished, &loop, &QEventLoop::quit);

    QPointer<QMessageBox> pending;
    QTimer delay;
    delay.setSingleShot(true);
    QObject::connect(&delay, &QTimer::timeout, &loop, [&pending] {
        // Shown, not run: the loop below takes no input, so it closes when the call ends.
        pending = new QMessageBox(QMessageBox::Information, QStringLiteral("Busy"),
                                  QString::fromLatin1(PendingText()), QMessageBox::NoButton,
                                  QApplication::activeWindow());
        pending->setStandardButtons(QMessageBox::NoButton);
        pending->show();
    });
    worker->start();
    delay.start(pendingDelay);
    if (!worker->isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    worker->wait();
    delay.stop();
    // A message box without buttons refuses to close.
    if (pending) {
        pending->hide();
        pending->deleteLater();
    }
    if (error)
        std::rethrow_exception(error);
}
