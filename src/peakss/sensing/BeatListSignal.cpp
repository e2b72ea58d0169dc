// SPDX-License-Identifier: MIT
#include "peakss/sensing/BeatListSignal.h"

#include <algorithm>
#include <cstddef>

#include "dsp/truncation.h"
#include "peakss/beatInterval.h"
#include "peakss/sensing/PeakBuffer.h"

namespace peakss {

using beatatlas::truncToInt32;
using beatatlas::wrappingAdd;

namespace {

constexpr std::int32_t kWeightMask = 0xFF;

std::int32_t nextGroup(std::int32_t group) {
    return wrappingAdd(group, kWeightMask + 1) & ~kWeightMask;
}

// 64 bits, because the caller doubles it.
std::int64_t tenthsOfBpm(float intervalMs) {
    return truncToInt32(((60000.0F / intervalMs) * 10.0F) + 0.5F);
}

bool isSameTempo(float a, float b) {
    const std::int64_t bpmA = tenthsOfBpm(a);
    const std::int64_t bpmB = tenthsOfBpm(b);
    return bpmA == bpmB || 2 * bpmA == bpmB || bpmA == 2 * bpmB;
}

// Of the same tempo, or of tempi that cannot both be true; tempi a little apart are left to the
// analysis.
bool excludes(const BeatInfo& candidate, const BeatInfo& entry) {
    return isSameTempo(entry.interval, candidate.interval) ||
           missesTempoOf(entry.interval, candidate.interval);
}

}  // namespace

void BeatListSignal::create(BeatList* list) {
    list_ = list;
    group_ = 0;
}

void BeatListSignal::changeStat(float interval, int /*pos*/, float /*level*/, PeakBuffer* buffer) {
    if (list_ == nullptr || buffer == nullptr) return;
    const RingStack<PeakInfo>& ring = buffer->ring();
    group_ = wrappingAdd(group_, buffer->count() + 2);
    // A beat of n agreeing peaks reaches n + 1 entries back, but never to a slot that holds no
    // peak.
    for (int k = std::min(buffer->count() + 1, ring.count() - 1); k >= 0; --k)
        placeCandidate(candidateOf(ring.back(k), interval, buffer->band()));
    group_ = nextGroup(group_);
}

BeatInfo BeatListSignal::candidateOf(const PeakInfo& peak, float interval,
                                     std::int32_t band) const {
    BeatInfo candidate;
    candidate.pos = peak.pos;
    candidate.phase = quarterBeats(peak.interval, interval);
    candidate.interval = interval;
    candidate.group = group_;
    candidate.band = band;
    return candidate;
}

// Only the last seconds of the list are moved for an insertion: peaks come in the order of the
// track.
void BeatListSignal::placeCandidate(const BeatInfo& candidate) {
    const auto end =
        std::upper_bound(list_->begin(), list_->end(), candidate.pos,
                         [](std::int32_t pos, const BeatInfo& entry) { return pos < entry.pos; });
    for (auto entry = end; entry != list_->begin() && (entry - 1)->pos == candidate.pos;) {
        --entry;
        if (!excludes(candidate, *entry)) continue;
        if (groupWeight(candidate) <= groupWeight(*entry)) return;
        // The new one takes its place at the end of the position's candidates, not that of the one
        // it displaces.
        *std::move(entry + 1, end, entry) = candidate;
        return;
    }
    list_->insert(end, candidate);
}

}  // namespace peakss
