// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "beatatlas/track.h"
#include "track/key/KeyFrames.h"
#include "track/key/scoreKeys.h"

namespace beatatlas::track::inner {

/** A section of a track in one key. */
struct KeySegment {
    double from;  // seconds
    double to;
    std::size_t key;
    KeyValues probabilities;  // of all keys in this section
};

/** The bounds of the windows in which the key is determined: eight bars each if there are bars,
 *  else sixteen seconds. The remainder at the end belongs to the last window.
 *  @param seconds  length of the track
 *  @return ascending, from 0 to that length */
std::vector<double> keyWindows(const std::vector<BA_TrackBeat>& beats, double seconds);

/** Finds where another key clearly holds for at least two windows: the best path of keys through
 *  the windows, in which every change costs something.
 *  @param frames       at least one
 *  @param windows      the result of keyWindows()
 *  @param wholeScores  of the whole track: if there is no change, its best key is that of the
 *                      single segment
 *  @return in order of time, without gaps, at least one; neighbours have different keys */
std::vector<KeySegment> findKeySegments(const KeyFrames& frames, const std::vector<double>& windows,
                                        const KeyValues& wholeScores);

}  // namespace beatatlas::track::inner
