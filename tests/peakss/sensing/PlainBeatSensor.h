// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "dsp/IirPassFilter.h"
#include "peakss/sensing/BeatSensorSignal.h"
#include "peakss/sensing/PeakBuffer.h"
#include "peakss/sensing/PeakSensor.h"

namespace beatatlas::test {

/** The six-band beat sensor written straight down, sample by sample and with a vote of plain loops:
 *  the oracle for the one in the library, of which it shares the filters and the peak sensing
 *  alone. */
class PlainBeatSensor {
public:
    PlainBeatSensor(int rate, int start, int end, peakss::BeatSensorSignal* signal)
        : start_(start), end_(end), signal_(signal) {
        const auto hz = static_cast<float>(rate);
        for (int b = 0; b < 6; ++b) {
            sensors_[b].setSamplingRate(rate);
            sensors_[b].setStep(8);
            sensors_[b].reset(start);
            buffers_[b].create(b);
        }
        filters_[0].createLowPathFilter(283.0F, hz, 0.70710677F);
        filters_[1].createBandPathFilterW(150.0F, hz, 1.5F);
        filters_[2].createMidPathFilterB(283.0F, 6000.0F, hz, 0.70710677F);
        filters_[3].createHiPathFilter(6000.0F, hz, 0.70710677F);
        sensors_[4].setDiffAnalyze(1.0F, 0);
        sensors_[5].setDiffAnalyze(0.2F, 3);
    }

    bool put(float sample) {
        float x[6];
        for (int b = 0; b < 4; ++b) {
            filters_[b].operate(&sample, &x[b], 1);
            x[b] = std::fabs(x[b]);
        }
        x[4] = sensors_[4].getDiff(x[0]);
        x[5] = sensors_[5].getDiff(x[3]);
        ++counter_;
        if (counter_ < start_ || counter_ >= end_) return false;
        for (int b = 0; b < 6; ++b) acc_[b] += x[b];
        if (++inStep_ < 8) return false;
        inStep_ = 0;
        for (int b = 0; b < 6; ++b) {
            buffers_[b].clearBeat();
            sensors_[b].putLevel(acc_[b] / 8.0F, buffers_[b]);
            acc_[b] = 0.0F;
        }
        if (!choose()) return false;
        for (peakss::PeakBuffer& buffer : buffers_)
            if (buffer.beatFound())
                signal_->changeStat(buffer.interval(), buffer.beatPos(), buffer.beatLevel(),
                                    &buffer);
        return true;
    }

private:
    static bool fits(float value, float reference) {
        const double share = static_cast<double>(reference) * 2400.0 / 60000.0;
        const auto limit = static_cast<float>(share < 20.0 ? share : 20.0);
        return std::fabs(value - reference) <= limit || std::fabs(2 * value - reference) <= limit ||
               std::fabs(value / 2 - reference) <= limit;
    }

    int mostVoted() const {
        int peak = -1;
        for (int bpm = 0; bpm < 256; ++bpm)
            if (hist_[bpm] > (peak < 0 ? 0 : hist_[peak])) peak = bpm;
        return peak;
    }

    bool choose() {
        int best = -1;
        for (int b = 0; b < 6; ++b) {
            if (!buffers_[b].beatFound()) continue;
            const int votes = static_cast<int>(4.0F / (buffers_[b].dev() + 1.0F));
            hist_[static_cast<int>(60000.0F / buffers_[b].interval() + 0.5F)] +=
                votes < 1 ? 1 : votes;
            if (best < 0 || buffers_[b].dev() < buffers_[best].dev()) best = b;
        }
        if (best < 0) return false;
        const float interval = buffers_[best].interval();
        while (!fits(60000.0F / static_cast<float>(mostVoted()), interval)) {
            if (hist_[static_cast<int>(60000.0F / interval + 0.5F)] <= 2) return false;
            for (int bpm = 1; bpm < 256; ++bpm)
                if (!fits(60000.0F / static_cast<float>(bpm), interval)) hist_[bpm] = 0;
        }
        const int peak = mostVoted();
        if (hist_[peak] <= 2) return false;
        for (peakss::PeakBuffer& buffer : buffers_)
            if (!fits(60000.0F / static_cast<float>(peak), buffer.interval())) buffer.clearBeat();
        return true;
    }

    int start_;
    int end_;
    peakss::BeatSensorSignal* signal_;
    beatatlas::IirPassFilter filters_[4];
    peakss::PeakSensor sensors_[6];
    peakss::PeakBuffer buffers_[6];
    float acc_[6] = {};
    int inStep_ = 0;
    std::int64_t counter_ = 0;
    int hist_[256] = {};
};

}  // namespace beatatlas::test
