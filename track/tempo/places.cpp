// SPDX-License-Identifier: MIT
#include "track/tempo/places.h"

#include <algorithm>
#include <cstddef>

namespace beatatlas::track::inner {

double placeOf(double time, const std::vector<double>& times) {
    const auto after = std::upper_bound(times.begin(), times.end(), time);
    if (after == times.begin()) return 0.0;
    const double before = static_cast<double>(after - times.begin() - 1);
    if (after == times.end()) return before;
    return before + (time - *(after - 1)) / (*after - *(after - 1));
}

double timeAt(double place, const std::vector<double>& times) {
    const double last = static_cast<double>(times.size() - 1);
    const double within = std::clamp(place, 0.0, last);
    const auto before = static_cast<std::size_t>(within);
    if (before + 1 == times.size()) return times.back();
    const double share = within - static_cast<double>(before);
    return times[before] + share * (times[before + 1] - times[before]);
}

}  // namespace beatatlas::track::inner
