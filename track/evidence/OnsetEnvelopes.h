// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <vector>

#include "track/evidence/BandLevels.h"

namespace beatatlas::track::inner {

/** How strongly something begins, 150 times a second: the rise of the logarithmic spectrum, in groups of bands. Each
 *  group's mean over the track is 1, or all of it is 0. */
struct OnsetEnvelopes {
    using Groups = std::array<float, kGroups>;

    static constexpr double kFramesPerSecond = BandLevels::kFramesPerSecond;

    /** Rise within a frame, mean of the three upper groups. Tells when: deep onsets reach their peak 20 to 40 ms late on
     *  many tracks. */
    std::vector<float> sharp;
    /** Rise over two frames, mean of all groups. Tells how often. */
    std::vector<float> full;
    /** Rise over two frames, group by group. */
    std::vector<Groups> rises;

    /** What begins about a time: the largest rise of each group from 13 ms before to 27 ms after it. Of a track that has
     *  frames; outside the track its ends. */
    Groups strengthAt(double seconds) const;
};

/** Takes the levels out of `levels`, which has heard the whole track. Rounds to nearest, which the caller sees to. */
OnsetEnvelopes makeOnsetEnvelopes(BandLevels& levels);

}  // namespace beatatlas::track::inner
