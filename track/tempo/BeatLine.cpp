// SPDX-License-Identifier: MIT
#include "track/tempo/BeatLine.h"

#include <algorithm>

namespace beatatlas::track::inner {

double BeatLine::timeAt(double place) const {
    const auto lastStart = static_cast<double>(seconds_.size() - 2);
    const auto before = static_cast<std::size_t>(std::clamp(place, 0.0, lastStart));
    const double share = place - static_cast<double>(before);
    return seconds_[before] + share * (seconds_[before + 1] - seconds_[before]);
}

double BeatLine::placeOf(double time) const {
    const auto after = std::upper_bound(seconds_.begin(), seconds_.end(), time);
    if (after == seconds_.begin()) return 0.0;
    const auto before = static_cast<double>(after - seconds_.begin() - 1);
    if (after == seconds_.end()) return before;
    return before + (time - *(after - 1)) / (*after - *(after - 1));
}

}  // namespace beatatlas::track::inner
