// SPDX-License-Identifier: MIT
#include "peakss/grid/representativeInterval.h"

#include "peakss/grid/BpmCountTbl.h"
#include "peakss/grid/tempoTables.h"

namespace peakss {

float representativeInterval(const BeatList& raw, int length) {
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

}  // namespace peakss
