// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

namespace beatatlas::track::inner {

/** What speaks for or against a reading of the beats. */
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

struct MetreWeight {
    const char* name;  // for programs that fit weights
    double weight;
};

/** In the order of MetreFeature. Fitted by multinomial logistic regression over tracks of known metre. */
inline constexpr std::array<MetreWeight, kMetreFeatures> kMetreWeights = {{
    // A log-normal distribution of the tempo about 110 BPM, and of the length of a bar about two seconds.
    {"l", 1.2430},
    {"l2", -1.2452},
    {"lbar", -0.8720},
    {"lbar2", -1.1882},
    // Drums and chords are strong on beats,
    {"on_lm", 1.9200},
    {"on_hm", 0.7402},
    // the bass stronger than half a beat or thirds of one later, and sixteenths do not fill everything.
    {"r_lo", 0.5048},
    {"t_lo", 0.9083},
    {"q_mi", 1.0470},
    // What begins on a beat has not died away half a beat later where beats are short.
    {"e_lm", -2.2763},
    // Snares answer kicks at a beat's distance, in slow music more than in fast; what alternates without bass is a beat
    // too many.
    {"alt_mi", 1.2911},
    {"l_alt", -1.5341},
    {"aa_mi", -1.7309},
    // Chords change on beats, and every third or fourth one much more than between.
    {"cm_h", 9.7126},
    {"cm_2", 18.1951},
    {"zb", 1.9279},
    // What the sessions took for beats, and that a track begins with one.
    {"vp_varied", 2.6372},
    {"vp_simple", 1.1741},
    {"first", 1.0000},
}};

}  // namespace beatatlas::track::inner
