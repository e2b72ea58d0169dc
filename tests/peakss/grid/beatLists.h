// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "peakss/BeatInfo.h"
#include "peakss/grid/segments.h"

namespace beatatlas::test {

inline constexpr int kRate = 48000;
inline constexpr int kLowest = std::numeric_limits<int>::min();
inline constexpr int kHighest = std::numeric_limits<int>::max();

/** A candidate of band 2, whose offset is −3 ms: 144 samples at 48 kHz. */
inline peakss::BeatInfo beatAt(std::int32_t pos, float interval = 500.0F, int group = 0,
                               int weight = 20, int band = 2) {
    peakss::BeatInfo beat;
    beat.pos = pos;
    beat.interval = interval;
    beat.group = (group << 8) | weight;
    beat.band = band;
    return beat;
}

/** Candidates at the given positions, each in a group of its own. */
inline peakss::BeatList beatsAt(const std::vector<std::int32_t>& positions,
                                float interval = 500.0F) {
    peakss::BeatList list;
    for (const std::int32_t pos : positions)
        list.push_back(beatAt(pos, interval, static_cast<int>(list.size())));
    return list;
}

/** Candidates of the given intervals in ms, half a second apart, each in a group of its own. */
inline peakss::BeatList beatsOfIntervals(const std::vector<float>& intervals) {
    peakss::BeatList list;
    for (const float interval : intervals) {
        const int index = static_cast<int>(list.size());
        list.push_back(beatAt(index * 24000, interval, index));
    }
    return list;
}

/** count candidates from a position on, so many samples apart. */
inline peakss::BeatList evenBeats(std::int32_t first, std::int32_t distance, int count,
                                  float interval = 500.0F) {
    std::vector<std::int32_t> positions;
    for (int i = 0; i < count; ++i) positions.push_back(first + i * distance);
    return beatsAt(positions, interval);
}

/** One list behind the other. */
inline peakss::BeatList joined(peakss::BeatList list, const peakss::BeatList& behind) {
    list.insert(list.end(), behind.begin(), behind.end());
    return list;
}

/** A segment record as it stands before adjustment. */
inline peakss::BeatInfo segmentAt(std::int32_t pos, float interval = 500.0F) {
    peakss::BeatInfo segment;
    segment.pos = pos;
    segment.interval = interval;
    peakss::setAnchorSpacing(segment, 4);
    return segment;
}

inline std::vector<std::int32_t> positionsOf(const peakss::BeatList& list) {
    std::vector<std::int32_t> positions;
    for (const peakss::BeatInfo& beat : list) positions.push_back(beat.pos);
    return positions;
}

inline std::vector<float> intervalsOf(const peakss::BeatList& list) {
    std::vector<float> intervals;
    for (const peakss::BeatInfo& beat : list) intervals.push_back(beat.interval);
    return intervals;
}

inline std::vector<int> bandsOf(const peakss::BeatList& list) {
    std::vector<int> bands;
    for (const peakss::BeatInfo& beat : list) bands.push_back(beat.band);
    return bands;
}

inline std::vector<int> groupsOf(const peakss::BeatList& list) {
    std::vector<int> groups;
    for (const peakss::BeatInfo& beat : list) groups.push_back(beat.group);
    return groups;
}

/** How often the processor was yielded since the test program began. Yields take no time in it. */
long yieldCount();

}  // namespace beatatlas::test
