// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

#include "track/tempo/softmax.h"

namespace beatatlas::track::inner {

/** Features that support a bar length and the positions of the downbeats. */
enum class BarFeature : std::size_t {
    three,
    five,
    chordChanges,
    repetition,
    newness,
    backbeat,
    middle,
    bass,
    middleLevel,
    simpleVotes,
    variedVotes,
};
inline constexpr std::size_t kBarFeatures = 11;

using BarFeatures = std::array<double, kBarFeatures>;

/** In the order of BarFeature. Fitted by multinomial logistic regression over tracks of known
 *  bars. */
inline constexpr std::array<FeatureWeight, kBarFeatures> kBarWeights = {{
    // Bars of other than four beats are rare.
    {"n3", -0.3451},
    {"n5", -0.8675},
    // Chords change with the bar, drums repeat with it, and the sections of a piece begin with one.
    {"z", 0.6889},
    {"acA", 3.2700},
    {"nov", 2.6042},
    // Snares on two and four; kick and chords on one.
    {"bk4", 2.2191},
    {"a_mi", 2.9607},
    {"a_lo", 1.3201},
    {"e_mi", -3.7868},
    // Agreement with the downbeats that the sessions found.
    {"v_simple", 2.2983},
    {"v_varied", 1.1664},
}};

}  // namespace beatatlas::track::inner
