// SPDX-License-Identifier: MIT
#include "envelope/WindowSum.h"

#include <algorithm>

#include "dsp/lanes/vectorLanes.h"

namespace beatatlas {

namespace {

template <std::size_t kWidth>
struct AddLevels {
    using Levels = Lanes<std::int16_t, 2 * kWidth>;
    using Sums = Lanes<std::int32_t, 2 * kWidth>;

    BEATATLAS_LANES static void run(const std::int16_t* levels, std::int32_t* sums, int n) {
        constexpr int kStep = static_cast<int>(2 * kWidth);
        int i = 0;
        for (; i + kStep <= n; i += kStep) {
            Levels added;
            Sums before;
            loadLanes(added, levels + i);
            loadLanes(before, sums + i);
            storeLanes(before + __builtin_convertvector(added, Sums), sums + i);
        }
        for (; i < n; ++i) sums[i] += levels[i];
    }
};

}  // namespace

void WindowSum::create(int width) {
    const auto levels = static_cast<std::size_t>(std::max(width, 0));
    std::vector<double>(levels).swap(sums_);
    std::vector<std::int32_t>(levels).swap(gathered_);
    gatheredCount_ = 0;
}

void WindowSum::clear() {
    std::fill(sums_.begin(), sums_.end(), 0.0);
    std::fill(gathered_.begin(), gathered_.end(), 0);
    gatheredCount_ = 0;
}

void WindowSum::add(const std::int16_t* levels) {
    if (gatheredCount_ == kMostGathered) settle();
    runInLanes<AddLevels>(levels, gathered_.data(), width());
    ++gatheredCount_;
}

void WindowSum::settle() {
    for (std::size_t k = 0; k < sums_.size(); ++k) sums_[k] += gathered_[k];
    std::fill(gathered_.begin(), gathered_.end(), 0);
    gatheredCount_ = 0;
}

WindowSum::Peak WindowSum::findBeatPosition(int count) {
    settle();
    Peak peak;
    if (count > width()) return peak;
    for (int k = 0; k < count; ++k) {
        const double sum = sums_[static_cast<std::size_t>(k)];
        if (sum > peak.value) peak = {sum, k};
    }
    return peak;
}

}  // namespace beatatlas
