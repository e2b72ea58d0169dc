// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "track/evidence/EvidenceListener.h"
#include "track/tempo/SessionPair.h"
#include "track/tempo/confidence.h"
#include "track/tempo/countBars.h"
#include "track/tempo/metre.h"
#include "track/tempo/steadiness.h"
#include "track/tempo/stretches.h"

namespace beatatlas::track::inner {

/** What a host knows about the tempo or wants it to be. */
struct TempoWishes {
    double lowestBpm = 0.0;  // a range to bring the tempo into; both 0: none
    double highestBpm = 0.0;
    int beatsPerBar = 0;  // 0: not known
};

/** Another reading of the beats, and how likely it is. */
struct TempoAlternative {
    double bpm = 0.0;
    double tempoRatio = 1.0;  // its tempo divided by that of the answer
    /** How far its first beat lies after a beat of the answer, in beats of the answer, 0 … 1. */
    double shiftBeats = 0.0;
    double share = 0.0;  // 0 … 1
};

/** The tempo of a track, and what led to it. */
struct TempoAnswer {
    double bpm = 0.0;               // 0, without beats: no tempo
    double rawBpm = 0.0;            // before it was brought into the host's range
    std::vector<double> beats;      // seconds, ascending
    std::vector<double> downbeats;  // the beats that begin a bar
    BarCount bars;                  // of these beats
    bool isSteady = true;
    std::vector<TempoStretch> stretches;         // one if it is steady
    std::vector<TempoAlternative> alternatives;  // the likeliest first
    TempoConfidence confidence;

    double clarity = 0.0;   // see clarityOf()
    double standing = 0.0;  // see LocalTempo
    Steadiness steadiness;
    std::vector<double> line;          // the beats on which all readings are based, seconds
    std::vector<MetreReading> metres;  // the best first
};

/** Weighs the results of two sessions of the core against the evidence found in the track.
 *
 *  The same bits in every rounding mode and vector form. With another mathematics library, exp,
 *  log, sin and cos may differ in their last bits, and so may the answer. */
TempoAnswer decideTempo(const Evidence& evidence, const SessionGrids& sessions, int rate,
                        const TempoWishes& wishes);

}  // namespace beatatlas::track::inner
