// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "track/evidence/BandLevels.h"

namespace beatatlas::track::inner {

/** Onset strength, 150 times a second: the rise of the logarithmic spectrum, in groups of bands. */
struct OnsetEnvelopes {
    using Groups = std::array<float, kGroups>;

    static constexpr double kFramesPerSecond = BandLevels::kFramesPerSecond;

    /** Rise over one frame, mean of the three upper groups, 1 on average. Shows when onsets occur:
     *  in the low groups onsets peak 20 to 40 ms late on many tracks. */
    std::vector<float> sharp;
    /** Rise over two frames, mean of all groups, 1 on average. Shows how often onsets occur. */
    std::vector<float> full;
    /** The largest rise over two frames from 13 ms before to 27 ms after, mean of the three upper
     *  groups, clipped at 5. */
    std::vector<float> upper;
    /** The largest rise in the same range, group by group, 1 on average and clipped at 6. */
    std::vector<Groups> strength;
    /** The compressed level, group by group. */
    std::vector<Groups> level;

    /** The frame nearest to a time; outside the track the first or last one. The track must have
     *  frames. */
    std::size_t frameAt(double seconds) const;
};

/** Computes the envelopes from `levels`, which must have received the whole track, and empties it.
 *  The caller sets rounding to nearest. */
OnsetEnvelopes makeOnsetEnvelopes(BandLevels& levels);

}  // namespace beatatlas::track::inner
