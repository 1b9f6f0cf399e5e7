#pragma once

#include <cstdint>

// The auto-recover store's entry points around host round trips: every read and write of
// a document is bracketed by a suspension, so that the timed recovery pass never sees a
// half-loaded or half-saved buffer.
class modAutoRecover {
public:
    // Begins a host operation; gives the token that the matching resume takes.
    static int32_t SuspendAutoRecover();
    static void ResumeAutoRecover(int32_t token);
    // Suspensions begun and not yet resumed.
    static int32_t Suspensions();

    // The timed pass that writes recovery copies of changed documents.
    static void AutoRecoverPass();

    // Suspends for its lifetime, so that every ending path resumes.
    class Suspension {
    public:
        Suspension() : token_(SuspendAutoRecover()) {}
        ~Suspension() { ResumeAutoRecover(token_); }
        Suspension(const Suspension&) = delete;
        Suspension& operator=(const Suspension&) = delete;

    private:
        int32_t token_;
    };
};
