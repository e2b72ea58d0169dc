// SPDX-License-Identifier: MIT
#include "peakss/grid/gridLaying.h"

#include <cstddef>

#include "peakss/grid/tempoSegments.h"

namespace peakss {

LaidGrid gridLaying(const BeatList& segments, const std::vector<BandOffsets>& offsetsMs,
                    const BeatList& raw, const GridPhrase& phrase, int length, int samplingRate) {
    GridLayer layer(raw, phrase, samplingRate);
    for (std::size_t i = 0; i < segments.size(); ++i)
        layer.laySegment(segments[i], offsetsMs[i], segmentEnd(segments, i, length));
    return layer.finish();
}

}  // namespace peakss
