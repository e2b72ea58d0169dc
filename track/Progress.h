// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <mutex>

namespace beatatlas::track::inner {

/** Reports the progress of an analysis to the host. The work is counted in units whose total is
 *  known beforehand. May be shared by threads. */
class Progress {
public:
    using Callback = int (*)(void* host, double fraction);

    /** @param callback  null: nothing is reported
     *  @param total     units of the whole analysis, above 0 */
    Progress(Callback callback, void* host, std::int64_t total)
        : callback_(callback), host_(host), total_(total) {}

    /** Adds finished work and calls the host. @throws Failure when the host asks to stop, or has
     *  asked before */
    void add(std::int64_t units);

private:
    Callback callback_;
    void* host_;
    std::int64_t total_;
    // Protects what follows, and the host's call.
    std::mutex mutex_;
    std::int64_t done_ = 0;
    bool isStopped_ = false;
};

}  // namespace beatatlas::track::inner
