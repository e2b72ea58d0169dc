// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "track/evidence/ChromaStream.h"
#include "track/evidence/OnsetEnvelopes.h"

namespace beatatlas::track::inner {

/** What speaks for a beat as the first of its bar. */
enum class BarFeature : std::size_t {
    chordChange,
    chordChangeOfTwoBeats,
    chordChangeOfFourBeats,
    bass,
    sessionVotes,
};
inline constexpr std::size_t kBarFeatures = 5;

/** A reading of the bars of a track. */
struct BarHypothesis {
    int beats = 4;  // a bar
    int phase = 0;  // the first bar's first beat
    std::array<double, kBarFeatures> features{};
    double score = 0.0;
    double share = 0.0;  // of all readings, as a probability
};

struct BarWeight {
    const char* name;
    double weight;
};
const std::array<BarWeight, kBarFeatures>& barWeights();

/** Judges bars of four beats, or of three where the chords change so.
 *  @param beats             seconds, at least nine
 *  @param sessionDownbeats  of a session, seconds
 *  @return all readings, the best first */
std::vector<BarHypothesis> judgeBars(const OnsetEnvelopes& onsets,
                                     const std::vector<Chroma>& chroma,
                                     const std::vector<double>& beats,
                                     const std::vector<double>& sessionDownbeats);

}  // namespace beatatlas::track::inner
