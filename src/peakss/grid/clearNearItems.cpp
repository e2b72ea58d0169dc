// SPDX-License-Identifier: MIT
#include "peakss/grid/clearNearItems.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "dsp/truncation.h"

namespace peakss {

namespace {

bool isNear(const BeatInfo& previous, const BeatInfo& beat, int samplingRate) {
    const float samples = (previous.interval * static_cast<float>(samplingRate)) / 1000.0F;
    const int limit = beatatlas::truncToInt32(samples * 0.7F);
    return std::abs(static_cast<std::int64_t>(beat.pos) - previous.pos) < limit;
}

}  // namespace

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
