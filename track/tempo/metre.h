// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "track/evidence/OnsetEnvelopes.h"

namespace beatatlas::track::inner {

/** What speaks for or against a reading of the beats. */
enum class MetreFeature : std::size_t {
    middleOnBeat,
    highMiddleOnBeat,
    highOnBeat,
    sessionVotes,
    tempo,
    tempoSquared,
    evenSixteenths,
};
inline constexpr std::size_t kMetreFeatures = 7;

/** A reading of the grid of sixteenths: on which of them the beats fall. */
struct MetreHypothesis {
    int period = 4;  // sixteenths from beat to beat
    int phase = 0;   // the first beat's sixteenth
    double bpm = 0.0;
    std::array<double, kMetreFeatures> features{};
    double score = 0.0;
    double share = 0.0;  // of all readings, as a probability
};

/** Name, weight and meaning of a feature, for programs that fit weights. */
struct MetreWeight {
    const char* name;
    double weight;
};
const std::array<MetreWeight, kMetreFeatures>& metreWeights();

/** Judges the readings of two, four and eight sixteenths a beat, in every phase.
 *  @param sixteenths    seconds, at least sixteen
 *  @param bpm           when every fourth one is a beat
 *  @param sessionBeats  beats of a session, seconds
 *  @return all readings, the best first */
std::vector<MetreHypothesis> judgeMetre(const OnsetEnvelopes& onsets,
                                        const std::vector<double>& sixteenths, double bpm,
                                        const std::vector<double>& sessionBeats);

}  // namespace beatatlas::track::inner
