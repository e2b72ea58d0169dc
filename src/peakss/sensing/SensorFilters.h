// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "dsp/FilterBank.h"
#include "dsp/IirPassFilter.h"
#include "peakss/sensing/designBands.h"

namespace peakss {

/** The filters of a beat sensor that is fed with the mono signal alone.
 *
 *  Life: create() → operate() chunk by chunk; release() is idempotent. Memory: a block of each
 *  band, allocated in create(); filters outside the bank allocate once more on the first block. */
class SensorFilters {
public:
    /** How many of a sensor's bands are filtered; the others are the onsets of these. */
    static int filteredBands(int bands);

    /** @param blockLen  the most samples of a chunk
     *  @param bands     of the sensor */
    void create(float rate, int blockLen, int bands);

    void release();

    /** Filters and rectifies the next n samples; the bands lie in arrays of this object.
     *  @param forView  whether a loudness view wants its low band as well, where the bank has it */
    BandSignals operate(const float* chunk, int n, bool forView);

private:
    void filterEachBand(const float* chunk, int n);

    std::size_t blockLen_ = 0;
    std::vector<float> samples_;  // one block for each band, and one for the view's low band
    std::vector<float*> bands_;
    std::optional<beatatlas::FilterBank> bank_;            // of four and six bands
    std::unique_ptr<beatatlas::IirPassFilter[]> filters_;  // of any other number
};

}  // namespace peakss
