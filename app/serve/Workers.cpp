// SPDX-License-Identifier: MIT
#include "serve/Workers.h"

#include <utility>

namespace app {

Workers::Workers(int threads) {
    for (int i = 0; i < threads; ++i) threads_.emplace_back([this] { run(); });
}

Workers::~Workers() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    changed_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

void Workers::add(Task task) {
    {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
    }
    changed_.notify_one();
}

void Workers::run() {
    while (true) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return isEnding_ || !tasks_.empty(); });
        if (isEnding_) return;
        const Task task = std::move(tasks_.front());
        tasks_.pop_front();
        lock.unlock();
        task();
    }
}

}  // namespace app
