// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** While it lives, sleeps of the calling thread end when they are over. Linux otherwise lets them
 *  take some 50 µs longer, so that it can wake several threads at once: a sleep of zero length,
 *  meant to let others run, would make a long analysis wait where nobody else wants the processor.
 *
 *  The thread's own allowance comes back with the destruction. Elsewhere than on Linux it does
 *  nothing. */
class PromptSleeps {
public:
    PromptSleeps();
    ~PromptSleeps();
    PromptSleeps(const PromptSleeps&) = delete;
    PromptSleeps& operator=(const PromptSleeps&) = delete;

private:
    // In nanoseconds; 0: nothing was changed.
    long allowance_ = 0;
};

}  // namespace beatatlas
