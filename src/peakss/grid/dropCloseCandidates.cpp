// SPDX-License-Identifier: MIT
#include "peakss/grid/dropCloseCandidates.h"

#include <cstddef>
#include <cstdlib>
#include <unordered_map>

#include "dsp/processorYield.h"
#include "dsp/truncation.h"
#include "peakss/grid/segments.h"

namespace peakss {

namespace {

using GroupWeights = std::unordered_map<std::int32_t, std::int32_t>;

// The weight grows while a group is heard; its first beat's stands for the group.
GroupWeights groupWeights(const BeatList& raw) {
    GroupWeights weights;
    for (const BeatInfo& beat : raw) weights.emplace(groupNumber(beat), groupWeight(beat));
    return weights;
}

// In single precision, step by step: the truncation falls on the last product.
int eighthOfBeat(float interval, int samplingRate) {
    const float samples = (static_cast<float>(samplingRate) * interval) / 1000.0F;
    return beatatlas::truncToInt32(samples * 0.125F);
}

bool isClose(const BeatInfo& a, const BeatInfo& b, int limit) {
    return std::abs(static_cast<std::int64_t>(a.pos) - b.pos) < limit;
}

bool isNear(const BeatInfo& previous, const BeatInfo& beat, int samplingRate) {
    const float samples = (previous.interval * static_cast<float>(samplingRate)) / 1000.0F;
    const int limit = beatatlas::truncToInt32(samples * 0.7F);
    return std::abs(static_cast<std::int64_t>(beat.pos) - previous.pos) < limit;
}

}  // namespace

void dropCloseCandidates(BeatList& raw, const BeatList& segments, int length, int samplingRate) {
    if (raw.empty()) return;
    const GroupWeights weights = groupWeights(raw);
    const auto weight = [&weights](const BeatInfo& beat) { return weights.at(groupNumber(beat)); };
    std::size_t last = 0;  // of the beats kept
    std::size_t i = 1;
    for (std::size_t s = 0; s < segments.size(); ++s) {
        const int limit = eighthOfBeat(segments[s].interval, samplingRate);
        const std::int32_t end = segmentEnd(segments, s, length);
        for (; i < raw.size() && raw[i].pos < end; ++i) {
            beatatlas::yieldProcessor();
            const BeatInfo beat = raw[i];
            if (!isClose(raw[last], beat, limit)) {
                raw[++last] = beat;
            } else if (weight(raw[last]) < weight(beat)) {
                raw[last] = beat;
            }
        }
    }
    while (i < raw.size()) raw[++last] = raw[i++];
    raw.resize(last + 1);
}

void clearNearItems(BeatList& list, int samplingRate) {
    if (list.empty()) return;
    std::size_t last = 0;  // of the beats kept
    for (std::size_t i = 1; i < list.size(); ++i) {
        const BeatInfo beat = list[i];
        if (!isNear(list[last], beat, samplingRate)) {
            list[++last] = beat;
        } else if (beat.segHead) {
            list[last] = beat;
        }
    }
    list.resize(last + 1);
}

}  // namespace peakss
