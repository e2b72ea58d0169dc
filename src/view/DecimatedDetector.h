// SPDX-License-Identifier: MIT
#pragma once

#include "view/PeakDetector.h"

namespace beatatlas {

/** Follows the level peaks of one rectified band by the maxima of groups of four samples, deaf to
 *  levels up to a hundredth of full scale: the source of the dots. Writes the field level900 of the
 *  band's records. */
class DecimatedDetector : public PeakDetector {
public:
    DecimatedDetector() : PeakDetector(kFloor) {}

    /** Takes the m samples (16-bit scale, not negative) of one chunk of at most a block.
     *  @param loudest  of these samples, 0 at the least; NaN counts for nothing */
    void put(PeakRecords& records, const float* samples, int m, float loudest);

private:
    static constexpr float kFloor = 327.68F;

    void followToEnd(peak* records, const float* samples, int m, bool shortChunk);
    bool follow(peak* records, const float* samples, int from, int to);
    void judgeGroup(peak* records);
    void openFirstRecord(peak* records);
    void takeCandidate(peak* records);
    void decayHeldLevel();
    void closeTrack(peak* records);

    float groupMax_ = 0.0F;
};

}  // namespace beatatlas
