// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "media/DownmixMatrix.h"
#include "media/PlanarFloats.h"
#include "media/StereoBlock.h"

namespace media {

/** Turns decoded frames of any sample format and channel layout into stereo floats, full scale
 *  ±1.0. */
class StereoFold {
public:
    /** @return the frame's stereo samples, valid until the next call; the caller may change them
     *  @throws TrackError when the frame's format cannot be converted */
    StereoBlock& fold(const AVFrame& frame);

private:
    bool take(const AVFrame& frame);
    void mix(const std::vector<std::vector<float>>& planes);

    PlanarFloats floats_;
    std::vector<DownmixGain> gains_;  // one per channel of the frame
    StereoBlock stereo_;
};

}  // namespace media
