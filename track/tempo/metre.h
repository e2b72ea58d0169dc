// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "track/evidence/EvidenceListener.h"
#include "track/tempo/BeatLine.h"
#include "track/tempo/metreFeatures.h"

namespace beatatlas::track::inner {

/** A reading of the beat line: the positions on the line of the beats that people count. */
struct MetreReading {
    /** Beat interval in twelfths of a beat of the line. */
    int period = 12;
    /** Position of the first beat, in the same unit. */
    int phase = 0;
    double bpm = 0.0;
    MetreFeatures features{};
    double score = 0.0;
    /** Probability among all readings. */
    double share = 0.0;
    /** False for a bare pulse: no sound says how many pulses a beat has, or a bar. */
    bool isHeard = true;
};

/** The evidence by which the readings are judged. */
struct MetreEvidence {
    const Evidence& heard;
    const BeatLine& line;
    double bpm;                       // of the line
    std::vector<double> variedBeats;  // of the varied session, seconds
    std::vector<double> simpleBeats;
    std::optional<double> firstOnset;  // seconds
};

/** Judges every reading between 40 and 250 BPM; of a bare pulse, those whose beats are pulses.
 *  @return all readings, the best first; none if the line is too short for eight beats */
std::vector<MetreReading> judgeMetre(const MetreEvidence& evidence);

}  // namespace beatatlas::track::inner
