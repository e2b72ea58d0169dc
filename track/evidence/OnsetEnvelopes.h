// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "track/evidence/BandLevels.h"

namespace beatatlas::track::inner {

/** How strongly something begins, 150 times a second: the rise of the logarithmic spectrum, in
 *  groups of bands. */
struct OnsetEnvelopes {
    using Groups = std::array<float, kGroups>;

    static constexpr double kFramesPerSecond = BandLevels::kFramesPerSecond;

    /** Rise within a frame, mean of the three upper groups, 1 on average. Tells when: deep onsets
     *  reach their peak 20 to 40 ms late on many tracks. */
    std::vector<float> sharp;
    /** Rise over two frames, mean of all groups, 1 on average. Tells how often. */
    std::vector<float> full;
    /** The largest rise over two frames from 13 ms before to 27 ms after, mean of the three upper
     *  groups, clipped at 5. */
    std::vector<float> upper;
    /** The same largest rise group by group, 1 on average and clipped at 6. */
    std::vector<Groups> strength;
    /** The compressed level itself, group by group. */
    std::vector<Groups> level;

    /** The frame nearest to a time; outside the track its first or last one. Of a track that has
     *  frames. */
    std::size_t frameAt(double seconds) const;
};

/** Takes the levels out of `levels`, which has heard the whole track. Rounds to nearest, which the
 *  caller sees to. */
OnsetEnvelopes makeOnsetEnvelopes(BandLevels& levels);

}  // namespace beatatlas::track::inner
