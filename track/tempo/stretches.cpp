// SPDX-License-Identifier: MIT
#include "track/tempo/stretches.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace beatatlas::track::inner {

namespace {

// The tempo is measured over this many beats, so that one late beat does not look like another
// tempo.
constexpr std::size_t kLocalBeats = 4;
constexpr double kOtherTempo = 0.04;

double meanInterval(const std::vector<double>& beats, std::size_t from, std::size_t to) {
    return (beats[to] - beats[from]) / static_cast<double>(to - from);
}

/** How far the tempo after a beat deviates from that of the section so far. */
double offAt(const std::vector<double>& beats, std::size_t first, std::size_t k) {
    const double soFar = meanInterval(beats, first, k);
    return std::abs(meanInterval(beats, k, k + kLocalBeats) / soFar - 1.0);
}

/** The beat at which another tempo begins, or the last beat. The deviation appears a few beats
 *  earlier and is largest at the beat itself. */
std::size_t endOf(const std::vector<double>& beats, std::size_t first) {
    for (std::size_t k = first + kLocalBeats; k + kLocalBeats < beats.size(); ++k) {
        if (offAt(beats, first, k) <= kOtherTempo) continue;
        const std::size_t last = std::min(k + kLocalBeats, beats.size() - kLocalBeats - 1);
        while (k < last && offAt(beats, first, k + 1) > offAt(beats, first, k)) ++k;
        return k;
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
