// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "track/tempo/PulseSpectrum.h"

namespace beatatlas::track::inner {

/** A frequency of beats and how strongly the onsets recur with it. */
struct Pulse {
    double hz = 0.0;  // 0: none
    double strength = 0.0;
};

/** The strongest pulse within a share of hz about it, to a small part of what the track's length
 *  can tell apart. */
Pulse strongestPulseNear(PulseSpectrum& spectrum, double seconds, double hz, double share);

/** The exact tempo of a track for which sessions have proposed roughly known ones.
 *
 *  Which level of the metre the beats are on is left as proposed, unless a ratio of three to two or
 *  four to three gives a far stronger pulse.
 *  @param seconds   of the track
 *  @param proposed  beats a second; the first is kept unless a later one is clearly stronger
 *  @return no pulse when nothing is proposed, or nothing ever begins */
Pulse findExactTempo(PulseSpectrum& spectrum, double seconds, const std::vector<double>& proposed);

/** How far a pulse stands out of those of all tempi from 30 to 300 BPM: its strength in parts of
 *  theirs, the middle one. Noise gives about 1, clear music 5 and more. */
double clarityOf(const PulseSpectrum& spectrum, double hz);

}  // namespace beatatlas::track::inner
