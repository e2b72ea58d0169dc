// SPDX-License-Identifier: MIT
#include "peakss/grid/constantTempo.h"

#include <cstddef>

#include "dsp/processorYield.h"
#include "peakss/beatInterval.h"
#include "peakss/grid/BpmCountTbl.h"

namespace peakss {

float findTrackInterval(const BeatList& raw, int length) {
    BpmCountTbl coarse;
    coarse.create(kCoarseSlots, kCoarseDigits);
    coarse.count(raw, 0, length);
    const int peak = coarse.getAverageIndex();
    if (peak < 0) return 0.0F;

    BpmCountTbl fine;
    fine.create(kFineSlots, kFineDigits);
    fine.count(raw, 0, length);
    const int slot = fine.getAverageIndex(peak, kCoarseDigits);
    return slot < 0 ? 0.0F : fineSlotInterval(slot);
}

void dropOtherTempi(BeatList& raw, float trackInterval) {
    // The walk begins with the tolerance itself where an interval is meant: in effect the first
    // beat must match the track. Kept, since a very fast track's first beat may pass by it.
    float previous = intervalTolerance(trackInterval);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        beatatlas::yieldProcessor();
        const BeatInfo beat = raw[i];
        if (matchesTempo(beat.interval, trackInterval) || matchesTempo(beat.interval, previous))
            raw[kept++] = beat;
        // The raw beat before, also when that one was dropped: keeps slow drifts.
        previous = beat.interval;
    }
    raw.resize(kept);
}

}  // namespace peakss
