// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "track/evidence/EvidenceListener.h"
#include "track/tempo/bars.h"
#include "track/tempo/stretches.h"

namespace beatatlas::track::inner {

/** The downbeats of the sessions, seconds. */
struct SessionDownbeats {
    std::vector<double> simple;
    std::vector<double> varied;
};

/** How the beats of a track are numbered in bars. */
struct BarCount {
    int beatsPerBar = 4;
    /** The number of each beat in its bar; 1 is a downbeat. */
    std::vector<int> numbers;
    /** Probability of the chosen readings; the mean over several parts. */
    double share = 0.0;
};

/** Numbers the beats of a track in bars.
 *
 *  Music that continues in another tempo begins with a new bar. Therefore long sections of their
 *  own tempo are judged separately, and the count restarts with a section if the evidence there
 *  clearly supports it. All sections have bars of the same length.
 *  @param beats        seconds, at least kLeastBeatsForBars
 *  @param stretches    sections of nearly one tempo of these beats
 *  @param beatsPerBar  3 or 4 if known, else 0 */
BarCount countBars(const Evidence& evidence, const std::vector<double>& beats,
                   const std::vector<TempoStretch>& stretches, const SessionDownbeats& sessions,
                   int beatsPerBar);

}  // namespace beatatlas::track::inner
