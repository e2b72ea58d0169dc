// SPDX-License-Identifier: MIT
#include "track/Progress.h"

#include "track/Outcome.h"

namespace beatatlas::track::inner {

void Progress::add(std::int64_t units) {
    if (callback_ == nullptr) return;
    const std::lock_guard lock(mutex_);
    if (isStopped_) throw Failure{BA_TRACK_STOPPED};
    done_ += units;
    // Stays true if the callback throws.
    isStopped_ = true;
    isStopped_ = callback_(host_, static_cast<double>(done_) / static_cast<double>(total_)) != 0;
    if (isStopped_) throw Failure{BA_TRACK_STOPPED};
}

}  // namespace beatatlas::track::inner
