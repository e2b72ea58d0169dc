// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "track/evidence/EvidenceListener.h"
#include "track/tempo/barFeatures.h"

namespace beatatlas::track::inner {

/** A reading of the bars of a track. */
struct BarReading {
    int beats = 4;  // beats per bar
    int phase = 0;  // index of the first downbeat
    BarFeatures features{};
    double score = 0.0;
    double share = 0.0;  // probability among all readings
};

/** With fewer beats nothing can be said about bars. */
inline constexpr std::size_t kLeastBeatsForBars = 13;

/** Judges bars of three, four and five beats in every phase.
 *  @param beats            seconds, at least kLeastBeatsForBars
 *  @param simpleDownbeats  downbeats of the simple session, seconds; variedDownbeats likewise
 *  @return all readings, the best first */
std::vector<BarReading> judgeBars(const Evidence& evidence, const std::vector<double>& beats,
                                  const std::vector<double>& simpleDownbeats,
                                  const std::vector<double>& variedDownbeats);

}  // namespace beatatlas::track::inner
