// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <thread>

namespace beatatlas::track::inner {

/** A thread that is joined on destruction. It starts with the rounding mode of the thread that
 *  starts it.
 *
 *  Signals are blocked in it, so that the host's handlers run in the host's own threads. Only
 *  signals that report a fault of the thread itself are delivered to it. */
class JoinedThread {
public:
    JoinedThread() = default;
    ~JoinedThread() { join(); }
    JoinedThread(const JoinedThread&) = delete;
    JoinedThread& operator=(const JoinedThread&) = delete;

    /** @return false if the system cannot start a thread. @throws std::bad_alloc */
    bool start(std::function<void()> work);

    void join() {
        if (thread_.joinable()) thread_.join();
    }

private:
    std::thread thread_;
};

}  // namespace beatatlas::track::inner
