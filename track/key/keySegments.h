// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "beatatlas/track.h"
#include "track/key/KeyFrames.h"
#include "track/key/scoreKeys.h"

namespace beatatlas::track::inner {

/** A stretch of a track in one key. */
struct KeySegment {
    double from;  // seconds
    double to;
    std::size_t key;
    KeyValues probabilities;  // of all keys there
};

/** The ends of the windows in which the key is looked for: eight bars each where there are bars,
 *  else sixteen seconds. What remains at the end belongs to the last window.
 *  @param seconds  length of the track
 *  @return ascending, from 0 to that length */
std::vector<double> keyWindows(const std::vector<BA_TrackBeat>& beats, double seconds);

/** Finds where another key holds clearly for at least two windows: the best path of keys through
 *  the windows, in which every change has its price.
 *  @param frames       at least one
 *  @param windows      as of keyWindows()
 *  @param wholeScores  of the whole track: without a change its best key is that of the one segment
 *  @return in order of time, without gaps, at least one; neighbours have different keys */
std::vector<KeySegment> findKeySegments(const KeyFrames& frames, const std::vector<double>& windows,
                                        const KeyValues& wholeScores);

}  // namespace beatatlas::track::inner
