// SPDX-License-Identifier: MIT
#include "track/tempo/stretches.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace beatatlas::track::inner {

namespace {

// Of so many beats, so that one that comes late is not taken for another tempo.
constexpr std::size_t kLocalBeats = 4;
constexpr double kOtherTempo = 0.04;

double meanInterval(const std::vector<double>& beats, std::size_t from, std::size_t to) {
    return (beats[to] - beats[from]) / static_cast<double>(to - from);
}

/** The beat at which another tempo begins, or the last one. */
std::size_t endOf(const std::vector<double>& beats, std::size_t first) {
    for (std::size_t k = first + kLocalBeats; k + kLocalBeats < beats.size(); ++k) {
        const double soFar = meanInterval(beats, first, k);
        const double ahead = meanInterval(beats, k, k + kLocalBeats);
        if (std::abs(ahead / soFar - 1.0) > kOtherTempo) return k;
    }
    return beats.size() - 1;
}

}  // namespace

std::vector<TempoStretch> findStretches(const std::vector<double>& beats) {
    std::vector<TempoStretch> stretches;
    for (std::size_t first = 0; first + 1 < beats.size();) {
        const std::size_t end = endOf(beats, first);
        stretches.push_back({beats[first], beats[end], 60.0 / meanInterval(beats, first, end)});
        first = end;
    }
    return stretches;
}

}  // namespace beatatlas::track::inner
