// SPDX-License-Identifier: MIT
#include "peakss/grid/numberBars.h"

#include <algorithm>

#include "peakss/grid/BandOffsets.h"
#include "peakss/grid/BeatInfoFinder.h"

namespace peakss {

void numberBars(BeatList& grid, std::int32_t reference, int barBeats) {
    if (grid.empty()) return;
    const int bar = std::max(4, barBeats);
    int number = (bar - BeatInfoFinder::findIndex(grid, reference) % bar) % bar;
    for (BeatInfo& beat : grid) {
        beat.group = number + 1;
        number = (number + 1) % bar;
    }
}

std::int32_t firstAnchorPosition(const BeatList& grid) {
    const auto found = std::find_if(grid.begin(), grid.end(),
                                    [](const BeatInfo& beat) { return isDetectorBand(beat.band); });
    return found != grid.end() ? found->pos : 0;
}

void trimToTrack(BeatList& grid, int length) {
    std::erase_if(grid,
                  [length](const BeatInfo& beat) { return beat.pos < 0 || beat.pos > length; });
}

}  // namespace peakss
