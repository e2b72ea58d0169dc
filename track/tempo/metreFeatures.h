// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

#include "track/tempo/softmax.h"

namespace beatatlas::track::inner {

/** Features that speak for or against a reading of the beats. */
enum class MetreFeature : std::size_t {
    tempo,
    tempoSquared,
    barTempo,
    barTempoSquared,
    lowMiddleOnBeat,
    highMiddleOnBeat,
    lowAgainstHalf,
    lowAgainstThirds,
    middleAgainstQuarters,
    levelOfFirstHalf,
    backbeat,
    backbeatByTempo,
    middleAlternation,
    chordChange,
    chordChangeOfTwoSeconds,
    barOfChords,
    variedVotes,
    simpleVotes,
    firstOnset,
};
inline constexpr std::size_t kMetreFeatures = 19;

using MetreFeatures = std::array<double, kMetreFeatures>;

/** In the order of MetreFeature. Fitted by multinomial logistic regression over tracks of known
 *  metre: 48 styles of synthesised music, game music and electronic pieces, and the synthesised
 *  drum machine of the tests. */
inline constexpr std::array<FeatureWeight, kMetreFeatures> kMetreWeights = {{
    // Log-normal distributions of the tempo around 110 BPM and of the bar length around two
    // seconds.
    {"l", 1.1553},
    {"l2", -1.2091},
    {"lbar", -0.5180},
    {"lbar2", -1.0525},
    // Drums and chords are strong on beats,
    {"on_lm", 1.5283},
    {"on_hm", 0.8345},
    // the bass is stronger there than a half or a third of a beat later, and not all sixteenths are
    // filled.
    {"r_lo", 0.6546},
    {"t_lo", 0.6533},
    {"q_mi", 0.8428},
    // If beats are short, a note that begins on a beat has not died away half a beat later.
    {"e_lm", -1.9294},
    // Snares answer kicks one beat later, more so in slow music than in fast. If the middle
    // alternates while the bass does not, the tempo is probably twice too fast.
    {"alt_mi", 0.9659},
    {"l_alt", -1.2210},
    {"aa_mi", -1.8647},
    // Chords change on beats, and far more on every third or fourth beat than between.
    {"cm_h", 6.7419},
    {"cm_2", 11.7027},
    {"zb", 1.8812},
    // Agreement with the beats that the sessions found, and whether the first onset is on a beat.
    {"vp_varied", 2.8010},
    {"vp_simple", 1.2147},
    {"first", 1.0000},
}};

}  // namespace beatatlas::track::inner
