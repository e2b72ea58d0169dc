// SPDX-License-Identifier: MIT
#include "track/JoinedThread.h"

#include <system_error>
#include <utility>

#include <signal.h>

namespace beatatlas::track::inner {

namespace {

/** While it lives, blocks signals in the calling thread, and so in every thread it starts. */
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t signals;
        sigfillset(&signals);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS})
            sigdelset(&signals, fault);
        pthread_sigmask(SIG_BLOCK, &signals, &callersMask_);
    }
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &callersMask_, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t callersMask_;
};

}  // namespace

bool JoinedThread::start(std::function<void()> work) {
    const BlockedSignals signals;
    try {
        thread_ = std::thread(std::move(work));
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

}  // namespace beatatlas::track::inner
