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
    /** A range in BPM to bring the tempo into; both 0: none. */
    double lowestBpm = 0.0;
    double highestBpm = 0.0;
    /** 3 or 4; 0: not known. */
    int beatsPerBar = 0;
};

/** Another reading of the beats, and how likely it is. */
struct TempoAlternative {
    double bpm = 0.0;
    /** Its tempo divided by that of the answer. */
    double tempoRatio = 1.0;
    /** How far its first beat lies after a beat of the answer, in beats of the answer, 0 … 1. */
    double shiftBeats = 0.0;
    double share = 0.0;  // 0 … 1
};

/** The tempo of a track, and what led to it. */
struct TempoAnswer {
    /** 0 if no tempo was found; there are no beats then. */
    double bpm = 0.0;
    /** The tempo before it was brought into the host's range. */
    double rawBpm = 0.0;
    /** Seconds, ascending. */
    std::vector<double> beats;
    /** The beats that begin a bar. */
    std::vector<double> downbeats;
    /** How these beats are numbered in bars. */
    BarCount bars;
    bool isSteady = true;
    /** Sections of nearly one tempo; a single one if the tempo is steady. */
    std::vector<TempoStretch> stretches;
    /** Other readings, the likeliest first. */
    std::vector<TempoAlternative> alternatives;
    TempoConfidence confidence;

    /** How clear the pulse is, see clarityOf(). */
    double clarity = 0.0;
    /** See LocalTempo. */
    double standing = 0.0;
    Steadiness steadiness;
    /** The beats on which all readings are based, seconds. */
    std::vector<double> line;
    /** All readings, the best first. */
    std::vector<MetreReading> metres;
};

/** Weighs the results of two sessions of the core against the evidence found in the track.
 *
 *  The same bits in every rounding mode and vector form. With another mathematics library, exp,
 *  log, sin and cos may differ in their last bits, and so may the answer. */
TempoAnswer decideTempo(const Evidence& evidence, const SessionGrids& sessions, int rate,
                        const TempoWishes& wishes);

}  // namespace beatatlas::track::inner
