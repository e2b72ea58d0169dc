// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "media/FrameChain.h"
#include "media/RateConverter.h"
#include "media/StereoFold.h"
#include "media/TrackSink.h"

namespace media {

/** From decoded frames to what is analysed: folded to stereo, at the session's rate, full scale
 *  ±1.0 but not clipped, in blocks of 16,384 frames.
 *
 *  The first frame decides the rate; a file whose rate changes later (radio recordings, joined
 *  files) is converted to the rate of its beginning. */
class StereoChain : public FrameChain {
public:
    explicit StereoChain(TrackSink& sink) : sink_(sink) {}

    void dropFrames(std::int64_t frames) override { framesToDrop_ += frames; }
    void begin(const AVFrame& frame) override;
    void put(const AVFrame& frame) override;
    void putSilence(std::int64_t frames) override;
    void finish() override;
    int trackRate() const override { return trackRate_; }
    int outputRate() const override { return sessionRate_; }

private:
    void setTrackRate(int rate);
    void dropDelay(StereoBlock& block);
    void toSessionRate(const StereoBlock& block);
    void deliver(const StereoBlock& block);
    void handOn();

    TrackSink& sink_;
    StereoFold fold_;
    std::unique_ptr<RateConverter> converter_;  // none while the track has the session's rate
    StereoBlock silence_;
    StereoBlock pending_;       // the next block for the sink
    std::size_t gathered_ = 0;  // frames of it that are filled
    std::int64_t framesToDrop_ = 0;
    int trackRate_ = 0;
    int sessionRate_ = 0;
};

}  // namespace media
