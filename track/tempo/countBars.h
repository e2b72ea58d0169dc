// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "track/evidence/EvidenceListener.h"
#include "track/tempo/bars.h"
#include "track/tempo/stretches.h"

namespace beatatlas::track::inner {

/** The first beats of the sessions' bars, seconds. */
struct SessionDownbeats {
    std::vector<double> simple;
    std::vector<double> varied;
};

/** How the beats of a track are counted. */
struct BarCount {
    int beatsPerBar = 4;
    std::vector<int> numbers;  // of each beat in its bar; 1 is a downbeat
    double share = 0.0;  // of the readings chosen, as a probability; of several parts their mean
};

/** Counts the beats of a track in bars.
 *
 *  Music that goes on in another tempo goes on with a new bar: long stretches of their own tempo
 *  are judged on their own, and the count begins anew with one where what is heard there clearly
 *  says so. All have bars of the same length.
 *  @param beats        seconds, at least kLeastBeatsForBars
 *  @param stretches    of these beats
 *  @param beatsPerBar  3 or 4 where it is known, else 0 */
BarCount countBars(const Evidence& evidence, const std::vector<double>& beats,
                   const std::vector<TempoStretch>& stretches, const SessionDownbeats& sessions,
                   int beatsPerBar);

}  // namespace beatatlas::track::inner
