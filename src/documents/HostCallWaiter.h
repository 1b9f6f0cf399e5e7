#pragma once

#include <functional>

// Runs a blocking host call off the interface thread while that thread waits in a local
// event loop that takes no user input but keeps painting and running timers. A call that
// takes longer than PendingDelay() puts up the "Busy" pending message until it ends. An
// error the call raises is raised again on the calling thread. Off the interface thread, or
// without an application, the call simply runs.
class HostCallWaiter {
public:
    static void Run(const std::function<void()>& call);

    static int PendingDelay();
    // Tests shorten the wait before the message.
    static void SetPendingDelay(int milliseconds);
    static const char* PendingText();
};
