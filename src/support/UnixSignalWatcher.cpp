#include "support/UnixSignalWatcher.h"

#include <QSocketNotifier>
#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
int g_pipe[2] = {-1, -1};

extern "C" void onSignal(int signal) {
    const unsigned char byte = static_cast<unsigned char>(signal);
    // Nothing but an async-signal-safe write here.
    [[maybe_unused]] const ssize_t n = ::write(g_pipe[1], &byte, 1);
}
} // namespace

UnixSignalWatcher::UnixSignalWatcher(std::initializer_list<int> signalNumbers, QObject* parent)
    : QObject(parent) {
    if (g_pipe[0] < 0) {
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, g_pipe) != 0)
            return;
    }
    notifier_ = new QSocketNotifier(g_pipe[0], QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &UnixSignalWatcher::onReadable);
    for (int s : signalNumbers) {
        struct sigaction action = {};
        action.sa_handler = onSignal;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESTART;
        ::sigaction(s, &action, nullptr);
    }
}

UnixSignalWatcher::~UnixSignalWatcher() = default;

void UnixSignalWatcher::onReadable() {
    unsigned char byte = 0;
    while (::read(g_pipe[0], &byte, 1) == 1)
        Q_EMIT Received(byte);
}
