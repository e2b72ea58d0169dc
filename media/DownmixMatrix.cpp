// SPDX-License-Identifier: MIT
#include "media/DownmixMatrix.h"

#include <algorithm>
#include <cmath>

extern "C" {
#include <libavutil/channel_layout.h>
}

namespace media {

namespace {

constexpr float kMinus3dB = 0.70710677F;

DownmixGain gainOf(AVChannel channel) {
    switch (channel) {
    case AV_CHAN_FRONT_LEFT:
    case AV_CHAN_STEREO_LEFT:
    case AV_CHAN_WIDE_LEFT:
    case AV_CHAN_FRONT_LEFT_OF_CENTER:
        return {1.0F, 0.0F};
    case AV_CHAN_FRONT_RIGHT:
    case AV_CHAN_STEREO_RIGHT:
    case AV_CHAN_WIDE_RIGHT:
    case AV_CHAN_FRONT_RIGHT_OF_CENTER:
        return {0.0F, 1.0F};
    case AV_CHAN_SIDE_LEFT:
    case AV_CHAN_BACK_LEFT:
    case AV_CHAN_SURROUND_DIRECT_LEFT:
    case AV_CHAN_TOP_FRONT_LEFT:
    case AV_CHAN_TOP_BACK_LEFT:
        return {kMinus3dB, 0.0F};
    case AV_CHAN_SIDE_RIGHT:
    case AV_CHAN_BACK_RIGHT:
    case AV_CHAN_SURROUND_DIRECT_RIGHT:
    case AV_CHAN_TOP_FRONT_RIGHT:
    case AV_CHAN_TOP_BACK_RIGHT:
        return {0.0F, kMinus3dB};
    case AV_CHAN_FRONT_CENTER:
        return {kMinus3dB, kMinus3dB};
    case AV_CHAN_BACK_CENTER:
    case AV_CHAN_TOP_CENTER:
    case AV_CHAN_TOP_FRONT_CENTER:
    case AV_CHAN_TOP_BACK_CENTER:
        return {0.5F, 0.5F};
    default:
        return {0.0F, 0.0F};
    }
}

std::vector<DownmixGain> alternating(std::size_t channels) {
    std::vector<DownmixGain> gains;
    for (std::size_t i = 0; i < channels; ++i) {
        gains.push_back(i % 2 == 0 ? DownmixGain{1.0F, 0.0F} : DownmixGain{0.0F, 1.0F});
    }
    return gains;
}

std::vector<DownmixGain> byPlace(const AVChannelLayout& layout) {
    std::vector<DownmixGain> gains;
    for (unsigned i = 0; i < static_cast<unsigned>(layout.nb_channels); ++i) {
        gains.push_back(gainOf(av_channel_layout_channel_from_index(&layout, i)));
    }
    return gains;
}

bool isSilent(const std::vector<DownmixGain>& gains) {
    return std::all_of(gains.begin(), gains.end(), [](const DownmixGain& gain) {
        return gain.left == 0.0F && gain.right == 0.0F;
    });
}

void keepBelowFullScale(std::vector<DownmixGain>& gains) {
    float left = 0.0F;
    float right = 0.0F;
    for (const DownmixGain& gain : gains) {
        left += gain.left;
        right += gain.right;
    }
    const float loudest = std::max({left, right, 1.0F});
    for (DownmixGain& gain : gains) gain = {gain.left / loudest, gain.right / loudest};
}

/** A file that states only the number of its channels has the usual arrangement for that number. */
std::vector<DownmixGain> byCount(int channels) {
    AVChannelLayout usual = {};
    av_channel_layout_default(&usual, channels);
    const bool hasPlaces = usual.order == AV_CHANNEL_ORDER_NATIVE;
    auto gains = hasPlaces ? byPlace(usual) : alternating(static_cast<std::size_t>(channels));
    av_channel_layout_uninit(&usual);
    return gains;
}

}  // namespace

std::vector<DownmixGain> downmixGains(const AVChannelLayout& layout) {
    if (layout.nb_channels == 1) return {{1.0F, 1.0F}};
    const bool hasPlaces =
        layout.order == AV_CHANNEL_ORDER_NATIVE || layout.order == AV_CHANNEL_ORDER_CUSTOM;
    auto gains = hasPlaces ? byPlace(layout) : byCount(layout.nb_channels);
    if (isSilent(gains)) gains = alternating(gains.size());
    keepBelowFullScale(gains);
    return gains;
}

}  // namespace media
