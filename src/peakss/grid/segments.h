// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "peakss/BeatInfo.h"

namespace peakss {

// A stretch of one tempo is kept as a beat record: pos its start, interval its beat in ms, group the distance of
// the beats its grid is tied to, in quarter beats, and band the whole beats from its start to the best of them.

/** Where a segment ends: at the start of the next, or at the end of the track. */
inline std::int32_t segmentEnd(const BeatList& segments, std::size_t index, int length) {
    return index + 1 < segments.size() ? segments[index + 1].pos : length;
}

/** A segment that begins at a raw beat and has the given interval in ms. */
inline BeatInfo segmentFrom(const BeatInfo& beat, float interval) {
    BeatInfo segment = beat;
    segment.interval = interval;
    segment.band = 0;
    return segment;
}

/** The BPM of the longest segment, the earlier of equals; the first counts from the start of the track. 0 when
 *  there is no segment.
 *
 *  @param length  of the track in samples */
float findMainTempo(const BeatList& segments, int length);

}  // namespace peakss
