#include "recovery/modAutoRecover.h"

namespace {
int32_t suspensions = 0;
} // namespace

int32_t modAutoRecover::SuspendAutoRecover() {
    return ++suspensions;
}

void modAutoRecover::ResumeAutoRecover(int32_t) {
    if (suspensions > 0)
        --suspensions;
}

int32_t modAutoRecover::Suspensions() {
    return suspensions;
}

void modAutoRecover::AutoRecoverPass() {}
