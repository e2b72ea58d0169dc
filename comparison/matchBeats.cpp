// SPDX-License-Identifier: MIT
#include "comparison/matchBeats.h"

#include <algorithm>
#include <cmath>

namespace comparison {

/** All windows are of one width, so the earliest free partner is always the right one. */
std::size_t matchedBeats(const Times& one, const Times& other, double windowSeconds) {
    std::size_t matched = 0;
    auto next = other.begin();
    for (const double beat : one) {
        while (next != other.end() && *next < beat - windowSeconds) ++next;
        if (next == other.end()) break;
        if (*next > beat + windowSeconds) continue;
        ++matched;
        ++next;
    }
    return matched;
}

double fMeasure(const Times& one, const Times& other, double windowSeconds) {
    if (one.empty() || other.empty()) return 0.0;
    const auto matched = static_cast<double>(matchedBeats(one, other, windowSeconds));
    return 2.0 * matched / static_cast<double>(one.size() + other.size());
}

Times doubled(const Times& beats) {
    Times times;
    for (std::size_t i = 0; i < beats.size(); ++i) {
        if (i > 0) times.push_back(beats[i - 1] + 0.5 * (beats[i] - beats[i - 1]));
        times.push_back(beats[i]);
    }
    return times;
}

Times shifted(const Times& beats) {
    return everyOther(doubled(beats), 1);
}

Times everyOther(const Times& beats, std::size_t first) {
    Times times;
    for (std::size_t i = first; i < beats.size(); i += 2) times.push_back(beats[i]);
    return times;
}

std::optional<double> medianLateness(const Times& beats, const Times& reference,
                                     double windowSeconds) {
    Times lateness;
    for (const double wanted : reference) {
        const auto after = std::lower_bound(beats.begin(), beats.end(), wanted);
        double nearest = after != beats.end() ? *after - wanted : windowSeconds * 2.0;
        if (after != beats.begin() && wanted - *(after - 1) < std::abs(nearest))
            nearest = *(after - 1) - wanted;
        if (std::abs(nearest) <= windowSeconds) lateness.push_back(nearest);
    }
    if (lateness.empty()) return std::nullopt;
    std::sort(lateness.begin(), lateness.end());
    const std::size_t middle = lateness.size() / 2;
    if (lateness.size() % 2 == 1) return lateness[middle];
    return 0.5 * (lateness[middle - 1] + lateness[middle]);
}

}  // namespace comparison
