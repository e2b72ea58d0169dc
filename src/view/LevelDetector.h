// SPDX-License-Identifier: MIT
#pragma once

#include "view/PeakDetector.h"

namespace beatatlas {

/** Follows the level peaks of one rectified band, sample by sample, and writes them to the band's
 *  records.
 *
 *  A peak is a sample that comes up to a given share of the held level, at least 0.32 s after the
 *  peak before; within that time a louder sample only raises the held level. A level held for 1.714
 *  s without a peak begins to decay. */
class LevelDetector : public PeakDetector {
public:
    LevelDetector() : PeakDetector(kFloor) {}

    /** Takes the m samples (16-bit scale, not negative) of one chunk of at most a block.
     *  @param loudest  of these samples, 0 at the least; NaN counts for nothing */
    void put(PeakRecords& records, const float* samples, int m, float loudest);

    /** Where in the last chunk its last peak lies, counted from 1; 0 when it had none. */
    int peakPosition() const { return peakPosition_; }

private:
    static constexpr float kFloor = 0.01F;

    void follow(peak* records, const float* samples, int from, int to);
    void openFirstRecord(peak* records, float level, std::int64_t count, int position);
    void acceptPeak(peak* records, float held, std::int64_t count, int position);
    void closeTrack(peak* records);

    int peakPosition_ = 0;
};

}  // namespace beatatlas
