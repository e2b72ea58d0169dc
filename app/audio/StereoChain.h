// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "audio/RateConverter.h"
#include "audio/StereoFold.h"
#include "audio/TrackSink.h"

namespace app {

/** From decoded frames to what a session is fed: folded to stereo, at the session's rate, in its 16-bit scale.
 *
 *  The first frame decides the rate; a file whose rate changes on the way (radio recordings, joined files) is
 *  converted to that of its beginning. */
class StereoChain {
public:
    explicit StereoChain(TrackSink& sink) : sink_(sink) {}

    /** Frames at the track's own rate that are decoded but belong to the encoder's delay. Before the first put(). */
    void dropFrames(std::int64_t frames) { framesToDrop_ = frames; }

    void put(const AVFrame& frame);

    /** Keeps the time where a damaged stretch could not be decoded. Before the first frame: nothing.
     *  @param frames  at the track's own rate */
    void putSilence(std::int64_t frames);

    void finish();

    int trackRate() const { return trackRate_; }      ///< 0 before the first frame
    int sessionRate() const { return sessionRate_; }  ///< 0 before the first frame

private:
    void setTrackRate(int rate);
    void dropDelay();
    void toSessionRate(StereoBlock& block);
    void deliver(StereoBlock& block);

    TrackSink& sink_;
    StereoFold fold_;
    std::unique_ptr<RateConverter> converter_;  ///< none while the track has the session's rate
    StereoBlock block_;
    std::int64_t framesToDrop_ = 0;
    int trackRate_ = 0;
    int sessionRate_ = 0;
};

}  // namespace app
