// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "peakss/BeatInfo.h"

namespace beatatlas {

/** Where the pulses of a track lie against its provisional beats. */
struct BeatPhase {
    /** False: the pulses lie half a beat off the beats. */
    bool isOnPulse;
    /** Envelope index of the pulse of the first beat; may be negative. */
    std::int64_t start;
};

/** Slides the first minute's beats over the envelope and compares what they collect with what the
 *  points half a beat later collect.
 *
 *  @param envelope      one level per 128 frames
 *  @param envelopeRate  values per second
 *  @param beatLength    envelope values per beat
 *  @param bpm           above 0; as many beats take part as a minute of this tempo has
 *  @param beats         provisional beats, at least one */
BeatPhase findBeatPhase(const std::vector<std::int16_t>& envelope, double envelopeRate,
                        double beatLength, float bpm, const peakss::BeatList& beats);

}  // namespace beatatlas
