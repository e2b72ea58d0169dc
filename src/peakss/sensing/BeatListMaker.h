// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"
#include "peakss/sensing/BeatListSignal.h"
#include "peakss/sensing/BeatSensor.h"

namespace peakss {

/** The raw beat list of a track, and the sensor that writes it.
 *
 *  Life: create() → put() per block → list(); create() again starts over. */
class BeatListMaker {
public:
    BeatListMaker() = default;
    BeatListMaker(const BeatListMaker&) = delete;
    BeatListMaker& operator=(const BeatListMaker&) = delete;

    /** An empty list for the samples start to end of a track (see BeatSensor::create); returns
     *  true. */
    bool create(int rate, int start, int end);

    void release();

    /** Takes the next n samples of the track (full scale ±1.0), at most 1/75 s of it, with their
     *  bands, and sends these to loudView if it is not null; see BeatSensor::put. */
    void put(const float* mono, const BandSignals& bands, int n, beatatlas::LVMakeBase* loudView) {
        sensor_.put(mono, bands, n, loudView);
    }

    /** The candidates found so far, ordered by position. */
    const BeatList& list() const { return list_; }

    int bandNum() const { return sensor_.bandNum(); }

private:
    BeatList list_;
    BeatSensor sensor_;
    BeatListSignal signal_;
};

}  // namespace peakss
