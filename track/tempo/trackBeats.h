// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "track/tempo/LocalTempo.h"

namespace beatatlas::track::inner {

/** The beats of a track whose tempo changes: the sequence of times that lie on strong onsets, at
 *  intervals close to those of the local tempo.
 *  @param sharp  the onset envelope, 150 values a second, at least one
 *  @return seconds, ascending, at least one; may begin a little before the track */
std::vector<double> trackBeats(const std::vector<float>& sharp, const LocalTempo& tempo);

}  // namespace beatatlas::track::inner
