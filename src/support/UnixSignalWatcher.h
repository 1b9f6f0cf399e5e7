#pragma once

#include <QObject>
#include <initializer_list>
#include <memory>

class QSocketNotifier;

// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal on the interface thread, through a
// self-pipe: the handler itself only writes one byte.
class UnixSignalWatcher : public QObject {
    Q_OBJECT

public:
    explicit UnixSignalWatcher(std::initializer_list<int> signalNumbers, QObject* parent = nullptr);
    ~UnixSignalWatcher() override;

Q_SIGNALS:
    void Received(int signal);

private:
    void onReadable();

    QSocketNotifier* notifier_ = nullptr;
};
