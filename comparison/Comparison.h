// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>

#include "comparison/BeatSheet.h"
#include "comparison/keyRelation.h"

namespace comparison {

/** How far two lists of beats agree: F-measures. */
struct Agreement {
    double within70 = 0.0;  ///< of beats that lie within 70 ms of each other
    double within20 = 0.0;  ///< 20 ms
};

/** How B's beats may be read, to be compared with A's. */
enum class Reading { same, twice, half, otherHalf, shifted };

constexpr std::array kReadings = {Reading::same, Reading::twice, Reading::half, Reading::otherHalf,
                                  Reading::shifted};

/** How far what A says of a track agrees with what B says. What one of them says nothing of is
 *  nothing. */
struct Comparison {
    std::optional<double> tempoRatio;  ///< A's through B's

    /** A's beats with each reading of B's, in the order of kReadings. */
    std::optional<std::array<Agreement, kReadings.size()>> beats;

    /** By how much A's beats lie behind B's, seconds, in the middle of those within 70 ms. */
    std::optional<double> lateness;

    std::optional<Agreement> downbeats;
    std::optional<KeyRelation> key;  ///< A's to B's

    /** The reading of B's beats that is most like A's; B's own where none is more. */
    Reading likeliest() const;
};

Comparison compareSheets(const BeatSheet& a, const BeatSheet& b);

}  // namespace comparison
