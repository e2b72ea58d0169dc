// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <memory>

#include "peakss/sensing/BeatSensor.h"
#include "support/PlainBands.h"

namespace beatatlas::test {

/** A beat sensor that filters for itself and takes any number of samples. */
class MonoFedSensor : public peakss::BeatSensor {
public:
    bool create(int rate, int start, int end, int decim, int bands) {
        block_ = rate / 75;
        filters_ = std::make_unique<PlainBands>(rate, std::max(bands, 0));
        return BeatSensor::create(rate, start, end, decim, bands);
    }

    bool put(const float* mono, int n, LVMakeBase* loudView) {
        if (mono == nullptr || block_ < 1)
            return BeatSensor::put(mono, {nullptr, nullptr}, n, loudView);
        bool chosen = false;
        for (int done = 0; done < n; done += block_) {
            const int count = std::min(block_, n - done);
            const peakss::BandSignals bands = filters_->operate(mono + done, count);
            chosen = BeatSensor::put(mono + done, bands, count, loudView) || chosen;
        }
        return chosen;
    }

private:
    int block_ = 0;
    std::unique_ptr<PlainBands> filters_;
};

}  // namespace beatatlas::test
