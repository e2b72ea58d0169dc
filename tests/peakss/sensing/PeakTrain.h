// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "dsp/truncation.h"
#include "peakss/sensing/PeakBuffer.h"
#include "peakss/sensing/PeakSensor.h"

namespace beatatlas::test {

/** One band whose peaks are placed by the test: each goes through a real sensor into a real
 *  buffer. */
class PeakTrain {
public:
    static constexpr int kRate = 48000;  // 48 samples per ms

    explicit PeakTrain(int band = 0) {
        buffer.create(band);
        sensor.setSamplingRate(kRate);
    }

    /** A confirmed peak at pos; returns whether it closed a beat. */
    bool peakAt(int pos, float level = 1.0F) {
        sensor.reset(beatatlas::wrappingSubtract(pos, 1));
        sensor.setStep(1);
        buffer.clearBeat();
        sensor.putLevel(level, buffer);
        sensor.setStep(kRate);  // far enough to confirm in one step
        sensor.putLevel(0.0F, buffer);
        last = pos;
        return buffer.beatFound();
    }

    /** A peak so many ms after the last one. */
    bool peakAfterMs(int ms) { return peakAt(last + ms * (kRate / 1000)); }

    /** Peaks at the given distances; returns whether the last one closed a beat. */
    bool peaksAfterMs(const std::vector<int>& distances) {
        bool found = false;
        for (const int ms : distances) found = peakAfterMs(ms);
        return found;
    }

    peakss::PeakSensor sensor;
    peakss::PeakBuffer buffer;
    int last = 0;
};

}  // namespace beatatlas::test
