// SPDX-License-Identifier: MIT
#include "envelope/WindowSum.h"

#include <algorithm>

namespace beatatlas {

void WindowSum::create(int width) {
    const auto places = static_cast<std::size_t>(std::max(width, 0));
    std::vector<double>(places).swap(sums_);
    std::vector<std::int32_t>(places).swap(gathered_);
    gatheredCount_ = 0;
}

void WindowSum::clear() {
    std::fill(sums_.begin(), sums_.end(), 0.0);
    std::fill(gathered_.begin(), gathered_.end(), 0);
    gatheredCount_ = 0;
}

void WindowSum::add(const std::int16_t* levels) {
    if (gatheredCount_ == kMostGathered) settle();
    std::int32_t* gathered = gathered_.data();
    const std::size_t places = gathered_.size();
    for (std::size_t k = 0; k < places; ++k) gathered[k] += levels[k];
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
