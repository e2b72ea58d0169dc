// SPDX-License-Identifier: MIT
#include "peakss/grid/beatSearch.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>

#include "dsp/truncation.h"
#include "peakss/grid/BeatInfoFinder.h"

namespace peakss {

using beatatlas::truncToInt32;
using beatatlas::wrappingAdd;

namespace {

std::int64_t distance(std::int32_t a, std::int32_t b) {
    return std::abs(static_cast<std::int64_t>(a) - b);
}

std::int32_t saturatingAdd(std::int32_t a, std::int32_t b) {
    const std::int64_t sum = static_cast<std::int64_t>(a) + b;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(
        sum, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

// The eighth-beat point of a beat's own raster that lies nearest to a position; rounding is +0.5
// for a position behind the beat and −0.5 for one before it, since conversion truncates.
std::int32_t eighthBeatPoint(const BeatInfo& beat, std::int32_t pos, double rounding,
                             int samplingRate) {
    const double samplesPerMs = samplingRate / 1000.0;
    const double eighth = (static_cast<double>(beat.interval) * samplesPerMs) * 0.125;
    const double away = static_cast<double>(pos) - static_cast<double>(beat.pos);
    const int eighths = truncToInt32(away / eighth + rounding);
    return wrappingAdd(beat.pos, truncToInt32(eighths * eighth));
}

}  // namespace

int findFirstIdx(const BeatList& list, int start, int slot, const BpmCountTbl& table) {
    const int size = static_cast<int>(list.size());
    for (int i = std::max(start, 0); i < size; ++i) {
        const auto interval = static_cast<double>(list[static_cast<std::size_t>(i)].interval);
        if (table.intervalToSlot(interval) == slot) return i;
    }
    return -1;
}

int findPosAfter(const BeatList& list, std::int32_t pos) {
    std::size_t first = list.size();
    while (first > 0 && list[first - 1].pos >= pos) --first;
    return first < list.size() ? static_cast<int>(first) : -1;
}

int sampleToIndex(const BeatList& list, std::int32_t pos) {
    const auto found =
        std::lower_bound(list.begin(), list.end(), pos,
                         [](const BeatInfo& beat, std::int32_t value) { return beat.pos < value; });
    if (found == list.end() || found->pos != pos) return -1;
    return static_cast<int>(found - list.begin());
}

std::int32_t findNearPos(const BeatList& list, std::int32_t pos, int tolerance, int* index) {
    if (list.empty()) return -1;
    const int last = BeatInfoFinder::findIndex(list, saturatingAdd(pos, tolerance));
    int best = -1;
    std::int64_t bestDistance = 0;
    for (int i = BeatInfoFinder::findIndex(list, pos); i <= last; ++i) {
        const std::int32_t here = list[static_cast<std::size_t>(i)].pos;
        const std::int64_t away = distance(pos, here);
        if (away > tolerance) continue;
        if (best < 0 || away < bestDistance) {
            best = i;
            bestDistance = away;
        }
        if (here > pos) break;
    }
    if (index != nullptr) *index = best;
    return best < 0 ? -1 : list[static_cast<std::size_t>(best)].pos;
}

std::int32_t findXPos(const BeatList& list, std::int32_t pos, int tolerance, int samplingRate,
                      int* index) {
    int beat = BeatInfoFinder::findIndex(list, pos);
    if (beat < 0) return -1;
    const auto at = [&list](int i) -> const BeatInfo& { return list[static_cast<std::size_t>(i)]; };
    std::int32_t point = at(beat).pos;
    if (point > pos) {
        point = eighthBeatPoint(at(beat), pos, -0.5, samplingRate);
    } else if (point < pos) {
        point = eighthBeatPoint(at(beat), pos, 0.5, samplingRate);
        if (beat + 1 < static_cast<int>(list.size())) {
            const std::int32_t backward = eighthBeatPoint(at(beat + 1), pos, -0.5, samplingRate);
            if (distance(backward, pos) < distance(point, pos)) {
                point = backward;
                ++beat;
            }
        }
    }
    if (distance(point, pos) >= tolerance) return -1;
    *index = beat;
    return point;
}

float getBuffLevel(int count, const float* left, const float* right, int* index) {
    constexpr float kSilence = 0.005F;
    if (left == nullptr || right == nullptr || index == nullptr) return 0.0F;
    const int firstIndex = *index;
    float best = 0.0F;
    for (int i = 0; i < count; ++i) {
        const float level = std::max(std::fabs(left[i]), std::fabs(right[i])) / 32767.0F;
        if (level < kSilence || !(level > best)) continue;
        best = level;
        *index = wrappingAdd(firstIndex, i);
    }
    return best;
}

}  // namespace peakss
