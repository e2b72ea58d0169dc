// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "view/DetectorTiming.h"
#include "view/LevelDetector.h"
#include "view/PeakRecords.h"
#include "view/PeakSum.h"

namespace beatatlas {

/** One band's way from the samples to its strip of peak sums. */
class LoudBand {
public:
    /** @param ratio  share of the held level from which a sample is a peak candidate
     *  @param chunksPerSlot  chunks to two points of the strip, may be a fraction */
    void create(const DetectorTiming& timing, float ratio, float chunksPerSlot);

    /** Back to the state after create(). */
    void reset();

    void release();

    /** Takes one chunk of the rectified band, full scale ±1.0, m samples and at most a block, and
     *  follows its level peaks. */
    void put(const float* band, int m);

    /** Enters the peaks of the chunk into the strip.
     *  @param chunk  chunks fed so far, this one included */
    void sumPeaks(std::int64_t chunk) {
        sum_.put(records_, detector_.recordCount(), detector_.ended(), chunk);
    }

    const LevelDetector& detector() const { return detector_; }
    const PeakSum& sum() const { return sum_; }
    /** The last chunk, rectified, in 16-bit scale. */
    const float* scaled() const { return scaled_.data(); }
    /** The largest of that chunk, at least 0. */
    float loudest() const { return loudest_; }
    PeakRecords& records() { return records_; }

private:
    std::vector<float> scaled_;
    float loudest_ = 0.0F;
    PeakRecords records_;
    LevelDetector detector_;
    PeakSum sum_;
};

}  // namespace beatatlas
