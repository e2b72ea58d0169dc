// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "track/evidence/DecimatedPowers.h"
#include "track/key/PeakFinder.h"
#include "track/key/PeakStore.h"
#include "track/key/Tuning.h"

namespace beatatlas::track::inner {

/** Finds the peaks of a track while it is fed, and its tuning: frames of three quarters of a second
 *  at an eighth of the rate, each overlapping the one before by half.
 *
 *  Life: construct, rounding to nearest → put() per block → finish() → getters. */
class PeakStream {
public:
    /** @param rate  44100 or 48000 Hz */
    explicit PeakStream(int rate);

    /** Takes the mean of both channels, full scale ±1.0. */
    void put(const float* mono, std::int64_t samples);

    /** Processes the frames that were still waiting to fill a batch; an incomplete frame at the end
     *  of the track is dropped. Call once. */
    void finish();

    const PeakStore& peaks() const { return store_; }
    double tuning() const { return tuning_.semitones(); }

    /** The hop from frame to frame, half a frame. */
    double secondsPerFrame() const;

private:
    void addFrame(const float* powers);

    DecimatedPowers powers_;
    PeakFinder finder_;
    bool hasBegun_ = false;
    std::vector<SpectralPeak> frame_;
    Tuning tuning_;
    PeakStore store_;
};

}  // namespace beatatlas::track::inner
