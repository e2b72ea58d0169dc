// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "track/tempo/PulseSpectrum.h"

namespace beatatlas::track::inner {

/** A beat frequency and how strongly the onsets recur with it. */
struct Pulse {
    double hz = 0.0;  // 0: none
    double strength = 0.0;
};

/** The strongest pulse within ±share × hz of hz, to a small fraction of the resolution that the
 *  track's length allows. */
Pulse strongestPulseNear(PulseSpectrum& spectrum, double seconds, double hz, double share);

/** The exact tempo of a track, found near the approximate tempi that sessions propose.
 *
 *  The metrical level stays as proposed, unless a ratio of three to two or four to three gives a
 *  far stronger pulse.
 *  @param seconds   length of the track
 *  @param proposed  beats per second; the first is kept unless a later one is clearly stronger
 *  @return no pulse if nothing is proposed or the track has no onsets */
Pulse findExactTempo(PulseSpectrum& spectrum, double seconds, const std::vector<double>& proposed);

/** How far a pulse stands out among those of all tempi from 30 to 300 BPM: its strength relative to
 *  their median. Noise gives about 1, music with a clear pulse 5 and more. */
double clarityOf(const PulseSpectrum& spectrum, double hz);

}  // namespace beatatlas::track::inner
