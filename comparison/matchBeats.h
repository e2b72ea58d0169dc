// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

namespace comparison {

/** Times in seconds, in order. */
using Times = std::vector<double>;

/** How many beats of one list can be paired with one of the other each, so that none lies further
 *  from its partner than the window. */
std::size_t matchedBeats(const Times& one, const Times& other, double windowSeconds);

/** The F-measure of two lists of beats, 0 to 1: twice the pairs among all beats, as in S. Dixon,
 *  "Evaluation of the Audio Beat Tracking System BeatRoot", 2007. 0 where one of them is empty. */
double fMeasure(const Times& one, const Times& other, double windowSeconds);

/** Beats twice as often: halfway between each two, one more. */
Times doubled(const Times& beats);

/** Those between the beats alone. */
Times shifted(const Times& beats);

/** Every other beat. @param first  0 or 1: the number of the first one that is taken */
Times everyOther(const Times& beats, std::size_t first);

/** By how much beats come late, seconds, in the middle of all that have a reference within the
 *  window; nothing when none has. */
std::optional<double> medianLateness(const Times& beats, const Times& reference,
                                     double windowSeconds);

}  // namespace comparison
