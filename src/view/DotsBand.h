// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "view/DecimatedDetector.h"
#include "view/DotsSum.h"
#include "view/LoudBand.h"

namespace beatatlas {

/** The way from a loudness band's chunks to its strip of dots; shares that band's records. */
class DotsBand {
public:
    /** @param ratio  share of the held level from which a group of samples is a peak candidate */
    void create(const DetectorTiming& timing, float ratio, std::int32_t chunksPerDot) {
        detector_.create(timing, ratio);
        sum_.create(chunksPerDot);
    }

    void reset() {
        detector_.reset();
        sum_.reset();
    }

    /** Follows the m samples that the band has taken last. */
    void put(LoudBand& band, int m) {
        detector_.put(band.records(), band.scaled(), m, band.loudest());
    }

    /** Enters the peaks of the chunk into the dots.
     *  @param chunk  chunks fed so far, this one included */
    void sumPeaks(LoudBand& band, std::int64_t chunk) {
        sum_.put(band.records(), detector_.recordCount(), detector_.ended(), chunk);
    }

    const DecimatedDetector& detector() const { return detector_; }
    const DotsSum& sum() const { return sum_; }

private:
    DecimatedDetector detector_;
    DotsSum sum_;
};

}  // namespace beatatlas
