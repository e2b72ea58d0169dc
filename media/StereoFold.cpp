// SPDX-License-Identifier: MIT
#include "media/StereoFold.h"

namespace media {

namespace {

void addScaled(float* sum, const float* plane, std::size_t frames, float gain) {
    if (gain == 0.0F) return;
    for (std::size_t i = 0; i < frames; ++i) sum[i] += gain * plane[i];
}

}  // namespace

StereoBlock& StereoFold::fold(const AVFrame& frame) {
    const bool isPrepared = floats_.isPreparedFor(frame);
    const auto& planes = floats_.convert(frame);
    if (!isPrepared) gains_ = downmixGains(floats_.layout());
    mix(planes);
    return stereo_;
}

void StereoFold::mix(const std::vector<std::vector<float>>& planes) {
    const std::size_t frames = planes.front().size();
    stereo_.assignSilence(frames);
    for (std::size_t channel = 0; channel < planes.size(); ++channel) {
        const DownmixGain gain = gains_[channel];
        addScaled(stereo_.left.data(), planes[channel].data(), frames, gain.left);
        addScaled(stereo_.right.data(), planes[channel].data(), frames, gain.right);
    }
}

}  // namespace media
