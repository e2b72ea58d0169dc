// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "media/FrameChain.h"
#include "media/PlanarFloats.h"
#include "media/Recording.h"

namespace media {

/** Gathers a track as it is: no channel folded, no rate converted. NaN and infinite samples become
 *  silence. */
class RecordingChain : public FrameChain {
public:
    /** @param expectedSeconds  how long the track may be; memory is reserved for it
     *  @param counted          is called after each frame with the number of sample frames so
     *                          far */
    RecordingChain(double expectedSeconds, std::function<void(std::size_t)> counted)
        : expectedSeconds_(expectedSeconds), counted_(std::move(counted)) {}

    void dropFrames(std::int64_t frames) override { framesToDrop_ += frames; }

    /** @throws TrackError when rate or channels change within the track
     *  @throws Interrupted */
    void begin(const AVFrame& frame) override;
    void put(const AVFrame& frame) override;
    void putSilence(std::int64_t frames) override;
    void finish() override {}
    int trackRate() const override { return recording_.rate; }
    int outputRate() const override { return recording_.rate; }

    Recording& recording() { return recording_; }

private:
    double expectedSeconds_;
    std::function<void(std::size_t)> counted_;
    PlanarFloats floats_;
    Recording recording_;
    std::int64_t framesToDrop_ = 0;
};

}  // namespace media
