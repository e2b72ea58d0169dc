// SPDX-License-Identifier: MIT
#include "media/StereoFold.h"

#include <cstdint>

namespace media {

namespace {

constexpr float kPerInteger = 1.0F / 32768.0F;

/** One channel alone, or left and right: nothing is added up. */
bool isPlain(const AVChannelLayout& layout) {
    if (layout.nb_channels == 1) return true;
    if (layout.order == AV_CHANNEL_ORDER_UNSPEC) return layout.nb_channels == 2;
    return layout.order == AV_CHANNEL_ORDER_NATIVE && layout.u.mask == AV_CH_LAYOUT_STEREO;
}

/** @param step  from one sample of the channel to its next. Adding zero removes the sign of
 *  negative zeros, as a sum does */
template <class Sample>
void copyScaled(const std::uint8_t* plane, std::size_t step, float scale, std::vector<float>& out) {
    const auto* samples = reinterpret_cast<const Sample*>(plane);
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = 0.0F + static_cast<float>(samples[i * step]) * scale;
}

/** @param left,right  where the samples of each side begin */
template <class Sample>
void copySides(const std::uint8_t* left, const std::uint8_t* right, std::size_t step, float scale,
               StereoBlock& block) {
    copyScaled<Sample>(left, step, scale, block.left);
    copyScaled<Sample>(right, step, scale, block.right);
}

void addScaled(float* sum, const float* plane, std::size_t frames, float gain) {
    if (gain == 0.0F) return;
    for (std::size_t i = 0; i < frames; ++i) sum[i] += gain * plane[i];
}

}  // namespace

StereoBlock& StereoFold::fold(const AVFrame& frame) {
    if (isPlain(frame.ch_layout) && take(frame)) return stereo_;
    const bool isPrepared = floats_.isPreparedFor(frame);
    const auto& planes = floats_.convert(frame);
    if (!isPrepared) gains_ = downmixGains(floats_.layout());
    mix(planes);
    return stereo_;
}

/** Takes what most decoders yield without conversion: the samples are the same as after converting
 *  and mixing.
 *  @return false for other sample formats */
bool StereoFold::take(const AVFrame& frame) {
    const bool isMono = frame.ch_layout.nb_channels == 1;
    const std::uint8_t* first = frame.extended_data[0];
    stereo_.resize(static_cast<std::size_t>(frame.nb_samples));
    switch (frame.format) {
    case AV_SAMPLE_FMT_FLTP:
        copySides<float>(first, isMono ? first : frame.extended_data[1], 1, 1.0F, stereo_);
        return true;
    case AV_SAMPLE_FMT_S16P:
        copySides<std::int16_t>(first, isMono ? first : frame.extended_data[1], 1, kPerInteger,
                                stereo_);
        return true;
    case AV_SAMPLE_FMT_S16:
        copySides<std::int16_t>(first, isMono ? first : first + sizeof(std::int16_t),
                                isMono ? 1 : 2, kPerInteger, stereo_);
        return true;
    default:
        return false;
    }
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
