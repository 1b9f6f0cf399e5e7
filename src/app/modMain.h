#pragma once

class QApplication;

// Start-up: builds the process-wide state in its fixed order and brings up the frame.
// Gives false when start-up failed; the failure has been shown and Shutdown has run.
bool Main(QApplication& app);

// Takes down all that Main built, in its fixed order; runs once.
void Shutdown();

// The process from its first to its last event: Main, the event loop, Shutdown.
int RunBrix(int argc, char** argv);
