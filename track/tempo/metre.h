// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "track/evidence/EvidenceListener.h"
#include "track/tempo/BeatLine.h"
#include "track/tempo/metreFeatures.h"

namespace beatatlas::track::inner {

/** A reading of the beat line: on which parts of its beats the beats that people count fall. */
struct MetreReading {
    int period = 12;  // from beat to beat, in twelfths of a beat of the line
    int phase = 0;    // of the first one
    double bpm = 0.0;
    MetreFeatures features{};
    double score = 0.0;
    double share = 0.0;  // of all readings, as a probability
};

/** What the readings are judged by. */
struct MetreEvidence {
    const Evidence& heard;
    const BeatLine& line;
    double bpm;                       // of the line
    std::vector<double> variedBeats;  // of the sessions, seconds
    std::vector<double> simpleBeats;
    std::optional<double> firstOnset;  // seconds
};

/** Judges every reading between 40 and 250 BPM.
 *  @return all of them, the best first; none where the line is too short for eight beats */
std::vector<MetreReading> judgeMetre(const MetreEvidence& evidence);

}  // namespace beatatlas::track::inner
