// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "audio/DownmixMatrix.h"
#include "audio/StereoBlock.h"
#include "audio/ffmpeg.h"

struct SwrContext;

namespace app {

/** Turns decoded frames of any sample format and channel layout into stereo floats, full scale ±1.0. */
class StereoFold {
public:
    StereoFold();
    ~StereoFold();
    StereoFold(const StereoFold&) = delete;
    StereoFold& operator=(const StereoFold&) = delete;

    /** @return the frame's stereo samples, valid until the next call
     *  @throws TrackError when the frame's format cannot be converted */
    const StereoBlock& fold(const AVFrame& frame);

private:
    struct ContextFree {
        void operator()(SwrContext* context) const;
    };

    bool isPreparedFor(const AVFrame& frame) const;
    void prepareFor(const AVFrame& frame);
    void toPlanarFloat(const AVFrame& frame);
    void mix(std::size_t frames);

    std::unique_ptr<SwrContext, ContextFree> context_;
    int format_ = AV_SAMPLE_FMT_NONE;
    AVChannelLayout layout_ = {};
    std::vector<DownmixGain> gains_;
    std::vector<std::vector<float>> planes_;  ///< one per channel of the frame
    StereoBlock stereo_;
};

}  // namespace app
