// SPDX-License-Identifier: MIT
#include "envelope/PulsePeaks.h"

#include <cstddef>

namespace beatatlas {

namespace {

constexpr double kFallRatio = 1.5;  // a maximum counts once it stands this much above the level

/** Writes the level of every confirmed maximum; returns the average of those above 0. */
std::int64_t markMaxima(const std::vector<std::int16_t>& envelope,
                        std::vector<std::int16_t>& peakLevels) {
    std::int16_t highest = 0;
    std::size_t highestAt = 0;
    bool isRising = false;
    std::int64_t sum = 0;
    std::int64_t count = 0;
    for (std::size_t k = 1; k < envelope.size(); ++k) {
        const std::int16_t level = envelope[k];
        if (!isRising && level < envelope[k - 1]) highest = level;
        if (highest < level) {
            highest = level;
            highestAt = k;
            isRising = true;
        }
        // A level below 0 gives a ratio below 0: after so steep a fall the maximum waits until the
        // level is above 0 again.
        const bool hasFallen =
            level == 0 || static_cast<double>(highest) / static_cast<double>(level) > kFallRatio;
        if (!isRising || !hasFallen) continue;
        peakLevels[highestAt] = highest;
        if (highest > 0) {
            sum += highest;
            ++count;
        }
        highest = level;
        isRising = false;
    }
    return count == 0 ? 0 : sum / count;
}

}  // namespace

std::vector<int> retainPulsePeaks(const std::vector<std::int16_t>& envelope,
                                  std::vector<std::int16_t>& peakLevels) {
    std::vector<int> peaks;
    if (envelope.size() < 2) return peaks;
    const std::int64_t threshold = markMaxima(envelope, peakLevels);
    for (std::size_t k = 1; k < peakLevels.size(); ++k) {
        if (peakLevels[k] < threshold) {
            peakLevels[k] = 0;
        } else {
            peaks.push_back(static_cast<int>(k));
        }
    }
    return peaks;
}

}  // namespace beatatlas
