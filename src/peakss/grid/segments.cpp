// SPDX-License-Identifier: MIT
#include "peakss/grid/segments.h"

#include <cstddef>

#include "dsp/processorYield.h"

namespace peakss {

float findMainTempo(const BeatList& segments, int length) {
    float bpm = 0.0F;
    std::int64_t longest = 0;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        beatatlas::yieldProcessor();
        const std::int64_t start = i == 0 ? 0 : segments[i].pos;
        const std::int64_t span = segmentEnd(segments, i, length) - start;
        if (i > 0 && span <= longest) continue;
        longest = span;
        bpm = 60000.0F / segments[i].interval;
    }
    return bpm;
}

}  // namespace peakss
