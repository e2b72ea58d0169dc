// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "peakss/BeatInfo.h"

namespace peakss {

// A segment, a part of the track of one tempo, is kept in the record of a beat: pos is its start,
// interval its beat in ms. What two other fields hold is read and written by the functions here
// alone.

/** Quarter beats from one anchor to the next: the beats that the grid is tied to. Means nothing
 *  before the segment has been refined. */
inline std::int32_t anchorSpacing(const BeatInfo& segment) {
    return segment.group;
}

inline void setAnchorSpacing(BeatInfo& segment, std::int32_t quarterBeats) {
    segment.group = quarterBeats;
}

/** Whole beats from the segment's start to its first anchor. */
inline std::int32_t skippedBeats(const BeatInfo& segment) {
    return segment.band;
}

inline void setSkippedBeats(BeatInfo& segment, std::int32_t beats) {
    segment.band = beats;
}

/** A segment that begins at a raw beat and has the given interval in ms. */
inline BeatInfo segmentFrom(const BeatInfo& beat, float interval) {
    BeatInfo segment = beat;
    segment.interval = interval;
    setSkippedBeats(segment, 0);
    return segment;
}

/** Where a segment ends, in samples: at the start of the next, or at the end of the track. */
inline std::int32_t segmentEnd(const BeatList& segments, std::size_t index, int length) {
    return index + 1 < segments.size() ? segments[index + 1].pos : length;
}

/** The BPM of the longest segment, the earlier of equals; the first counts from the start of the
 *  track. 0 when there is no segment.
 *
 *  @param length  of the track in samples */
float findMainTempo(const BeatList& segments, int length);

}  // namespace peakss
