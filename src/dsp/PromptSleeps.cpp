// SPDX-License-Identifier: MIT
#include "dsp/PromptSleeps.h"

#if defined(__linux__)
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace beatatlas {

#if defined(__linux__)

namespace {

constexpr long kLeast = 1;

// The C library's prctl() would cut an allowance of more than two seconds off.
long allowanceOfThread() {
    return syscall(SYS_prctl, PR_GET_TIMERSLACK, 0L, 0L, 0L, 0L);
}

}  // namespace

// A thread with a real-time policy has an allowance of 0 already, and 0 cannot be set: it stands
// for the default.
PromptSleeps::PromptSleeps() {
    const long allowance = allowanceOfThread();
    if (allowance <= kLeast) return;
    if (prctl(PR_SET_TIMERSLACK, kLeast, 0L, 0L, 0L) == 0) allowance_ = allowance;
}

PromptSleeps::~PromptSleeps() {
    if (allowance_ > 0) prctl(PR_SET_TIMERSLACK, allowance_, 0L, 0L, 0L);
}

#else

PromptSleeps::PromptSleeps() = default;
PromptSleeps::~PromptSleeps() = default;

#endif

}  // namespace beatatlas
