// SPDX-License-Identifier: MIT
#include "media/RecordingChain.h"

#include <algorithm>
#include <cmath>

#include "base/Interrupt.h"
#include "base/errors.h"
#include "media/trackLength.h"

namespace media {

namespace {

constexpr double kSpareSeconds = 0.5;
constexpr double kMostReservedSeconds = 4.0 * 3600.0;

float finite(float sample) {
    return std::isfinite(sample) ? sample : 0.0F;
}

}  // namespace

void RecordingChain::put(const AVFrame& frame) {
    base::Interrupt::check();
    begin(frame);
    const auto channels = static_cast<std::size_t>(frame.ch_layout.nb_channels);
    if (frame.sample_rate != recording_.rate || channels != recording_.channels.size())
        throw base::TrackError(
            "changes its sample rate or its channels on the way: convert it first");
    const auto& planes = floats_.convert(frame);
    const auto dropped = std::min<std::int64_t>(framesToDrop_, frame.nb_samples);
    framesToDrop_ -= dropped;
    for (std::size_t i = 0; i < channels; ++i) {
        auto& channel = recording_.channels[i];
        const std::size_t before = channel.size();
        channel.resize(before + planes[i].size() - static_cast<std::size_t>(dropped));
        std::transform(planes[i].begin() + dropped, planes[i].end(), channel.data() + before,
                       finite);
    }
    counted_(recording_.frames());
}

void RecordingChain::begin(const AVFrame& frame) {
    if (recording_.rate != 0) return;
    if (frame.sample_rate <= 0) throw base::TrackError("holds audio without a sample rate");
    recording_.rate = frame.sample_rate;
    const AVChannelLayout& layout = frame.ch_layout;
    recording_.layoutMask = layout.order == AV_CHANNEL_ORDER_NATIVE ? layout.u.mask : 0;
    recording_.channels.resize(static_cast<std::size_t>(layout.nb_channels));
    // A little more than stated, since encoders pad; a header that states days is not believed.
    const double seconds = std::clamp(expectedSeconds_ + kSpareSeconds, 0.0, kMostReservedSeconds);
    const auto frames = static_cast<std::size_t>(seconds * recording_.rate);
    for (auto& channel : recording_.channels) channel.reserve(frames);
}

void RecordingChain::putSilence(std::int64_t frames) {
    refuseAbove(static_cast<double>(recording_.frames()) + static_cast<double>(frames));
    for (auto& channel : recording_.channels)
        channel.resize(channel.size() +
                       static_cast<std::size_t>(std::max<std::int64_t>(frames, 0)));
}

}  // namespace media
