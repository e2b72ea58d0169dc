// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "media/ffmpeg.h"

struct SwrContext;

namespace media {

/** Turns decoded frames of any sample format into one row of floats per channel, full scale
 *  ±1.0. */
class PlanarFloats {
public:
    PlanarFloats();
    ~PlanarFloats();
    PlanarFloats(const PlanarFloats&) = delete;
    PlanarFloats& operator=(const PlanarFloats&) = delete;

    /** Whether a frame has the sample format and the channels of the last one. */
    bool isPreparedFor(const AVFrame& frame) const;

    /** @return the frame's channels, valid until the next call
     *  @throws TrackError when the frame's format cannot be converted */
    const std::vector<std::vector<float>>& convert(const AVFrame& frame);

    /** Of the last frame. */
    const AVChannelLayout& layout() const { return layout_; }

private:
    struct ContextFree {
        void operator()(SwrContext* context) const;
    };

    void prepareFor(const AVFrame& frame);

    std::unique_ptr<SwrContext, ContextFree> context_;
    int format_ = AV_SAMPLE_FMT_NONE;
    AVChannelLayout layout_ = {};
    std::vector<std::vector<float>> planes_;
    std::vector<std::uint8_t*> targets_;
};

}  // namespace media
