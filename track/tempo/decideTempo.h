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

/** What a host knows or wants of the tempo. */
struct TempoWishes {
    double lowestBpm = 0.0;  // a range to bring the tempo into; both 0: none
    double highestBpm = 0.0;
    int beatsPerBar = 0;  // 0: not known
};

/** Another reading of the beats, and how likely it is. */
struct TempoAlternative {
    double bpm = 0.0;
    double tempoRatio = 1.0;  // of its tempo to the answer's
    /** How far its first beat lies behind one of the answer's, in beats of the answer. */
    double shiftBeats = 0.0;
    double share = 0.0;  // 0 … 1
};

/** The tempo of a track, and what led to it. */
struct TempoAnswer {
    double bpm = 0.0;               // 0, without beats: no tempo
    double rawBpm = 0.0;            // before it was brought into the range wished for
    std::vector<double> beats;      // seconds, ascending
    std::vector<double> downbeats;  // those that begin a bar
    BarCount bars;                  // of these beats
    bool isSteady = true;
    std::vector<TempoStretch> stretches;         // one when it is steady
    std::vector<TempoAlternative> alternatives;  // the likeliest first
    TempoConfidence confidence;

    double clarity = 0.0;   // see clarityOf()
    double standing = 0.0;  // see LocalTempo
    Steadiness steadiness;
    std::vector<double> line;          // the beats that all readings are measured on, seconds
    std::vector<MetreReading> metres;  // the best first
};

/** Weighs what two sessions of the core found and what else was heard of a track.
 *
 *  The same bits whatever the rounding mode and vector form. Where another maths library gives
 *  other last bits (of exp, log, sin, cos), those of the answer may differ too. */
TempoAnswer decideTempo(const Evidence& evidence, const SessionGrids& sessions, int rate,
                        const TempoWishes& wishes);

}  // namespace beatatlas::track::inner
