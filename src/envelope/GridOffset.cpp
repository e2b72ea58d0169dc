// SPDX-License-Identifier: MIT
#include "envelope/GridOffset.h"

#include <algorithm>

namespace beatatlas {

namespace {

using Count = peakss::BeatList::difference_type;

void fillHead(peakss::BeatList& beats, std::int32_t step) {
    peakss::BeatInfo beat = beats.front();
    beat.segHead = false;
    peakss::BeatList added;
    while (std::int64_t{beat.pos} - step >= 0) {
        beat.pos -= step;
        beat.group = previousBeatNumber(beat.group);
        added.push_back(beat);
    }
    beats.insert(beats.begin(), added.rbegin(), added.rend());
}

void fillTail(peakss::BeatList& beats, std::int32_t step, std::int32_t length) {
    peakss::BeatInfo beat = beats.back();
    beat.segHead = false;
    while (std::int64_t{beat.pos} + step <= length) {
        beat.pos += step;
        beat.group = nextBeatNumber(beat.group);
        beats.push_back(beat);
    }
}

}  // namespace

void shiftBeats(peakss::BeatList& beats, std::int32_t shift, std::int32_t length) {
    Count before = 0;
    Count beyond = 0;
    for (peakss::BeatInfo& beat : beats) {
        const std::int64_t moved = std::int64_t{beat.pos} + shift;
        if (moved < 0) ++before;
        // Moved twice: a beat within one more shift of the end goes too, and fillEnds() lays the
        // end anew.
        if (moved + shift > length) ++beyond;
        beat.pos = static_cast<std::int32_t>(moved);
    }
    const auto size = static_cast<Count>(beats.size());
    beats.erase(beats.begin(), beats.begin() + before);
    beats.erase(beats.end() - std::min(beyond, size - before), beats.end());
}

void fillEnds(peakss::BeatList& beats, std::int32_t step, std::int32_t length) {
    if (beats.empty() || step <= 0) return;
    fillHead(beats, step);
    fillTail(beats, step, length);
}

}  // namespace beatatlas
