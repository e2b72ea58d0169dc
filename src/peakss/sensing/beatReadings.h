// SPDX-License-Identifier: MIT
#pragma once

#include <array>

namespace peakss {

/** One way to read the interval between two level peaks: as so many beats, when it lies strictly
 *  between the bounds (ms). */
struct BeatReading {
    float aboveMs;
    float belowMs;
    float beats;

    constexpr bool holds(float intervalMs) const {
        return aboveMs < intervalMs && intervalMs < belowMs;
    }
};

using BeatReadings = std::array<BeatReading, 9>;

// Both tables hold the same nine readings, each open up to about 70 BPM; they differ in the order
// of trial. Where the bounds overlap, the earlier row is tried first.

/** For the newest interval. All rows that hold it are tried; of equally well confirmed ones the
 *  earlier wins. */
inline constexpr BeatReadings kFirstReadings = {{
    {500.0F, 1276.0F, 1.5F},
    {468.0F, 1071.0F, 1.25F},
    {923.0F, 2142.0F, 2.5F},
    {290.0F, 638.0F, 0.75F},
    {320.0F, 860.0F, 1.0F},
    {290.0F, 428.0F, 0.5F},
    {666.0F, 1714.0F, 2.0F},
    {1500.0F, 3333.0F, 4.0F},
    {1125.0F, 2580.0F, 3.0F},
}};

/** For the older intervals: the first row that holds the interval and gives the supposed beat. */
inline constexpr BeatReadings kOlderReadings = {{
    {1500.0F, 3333.0F, 4.0F},
    {923.0F, 2142.0F, 2.5F},
    {666.0F, 1714.0F, 2.0F},
    {500.0F, 1276.0F, 1.5F},
    {468.0F, 1071.0F, 1.25F},
    {320.0F, 860.0F, 1.0F},
    {290.0F, 638.0F, 0.75F},
    {290.0F, 428.0F, 0.5F},
    {1125.0F, 2580.0F, 3.0F},
}};

}  // namespace peakss
