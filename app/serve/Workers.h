// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace app {

/** Threads that do one task after another. */
class Workers {
public:
    using Task = std::function<void()>;

    explicit Workers(int threads);

    /** Drops the tasks that have not begun, and waits for those that have. */
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /** @param task  throws nothing */
    void add(Task task);

private:
    void run();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Task> tasks_;
    bool isEnding_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace app
