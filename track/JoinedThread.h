// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <thread>

namespace beatatlas::track::inner {

/** A thread that has ended when this goes. It begins with the rounding mode of the one that starts
 *  it.
 *
 *  The host's signal handlers run in the host's own threads: here signals are blocked. Only those
 *  that tell of a fault of the thread itself reach it as they reach any other. */
class JoinedThread {
public:
    JoinedThread() = default;
    ~JoinedThread() { join(); }
    JoinedThread(const JoinedThread&) = delete;
    JoinedThread& operator=(const JoinedThread&) = delete;

    /** @return false when the system has no thread to give. @throws std::bad_alloc */
    bool start(std::function<void()> work);

    void join() {
        if (thread_.joinable()) thread_.join();
    }

private:
    std::thread thread_;
};

}  // namespace beatatlas::track::inner
