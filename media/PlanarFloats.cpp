// SPDX-License-Identifier: MIT
#include "media/PlanarFloats.h"

#include <new>

extern "C" {
#include <libswresample/swresample.h>
}

#include "base/errors.h"

namespace media {

PlanarFloats::PlanarFloats() = default;

PlanarFloats::~PlanarFloats() {
    av_channel_layout_uninit(&layout_);
}

void PlanarFloats::ContextFree::operator()(SwrContext* context) const {
    swr_free(&context);
}

bool PlanarFloats::isPreparedFor(const AVFrame& frame) const {
    return context_ && frame.format == format_ &&
           av_channel_layout_compare(&frame.ch_layout, &layout_) == 0;
}

const std::vector<std::vector<float>>& PlanarFloats::convert(const AVFrame& frame) {
    if (!isPreparedFor(frame)) prepareFor(frame);
    targets_.clear();
    for (auto& plane : planes_) {
        plane.resize(static_cast<std::size_t>(frame.nb_samples));
        targets_.push_back(reinterpret_cast<std::uint8_t*>(plane.data()));
    }
    auto** inputs = const_cast<const std::uint8_t**>(frame.extended_data);
    const int converted =
        swr_convert(context_.get(), targets_.data(), frame.nb_samples, inputs, frame.nb_samples);
    if (converted != frame.nb_samples) {
        throw base::TrackError("holds audio in a sample format that cannot be converted");
    }
    return planes_;
}

void PlanarFloats::prepareFor(const AVFrame& frame) {
    const auto channels = static_cast<std::size_t>(frame.ch_layout.nb_channels);
    if (channels == 0 || av_channel_layout_copy(&layout_, &frame.ch_layout) < 0)
        throw std::bad_alloc();
    format_ = frame.format;
    planes_.assign(channels, {});

    // The same channels without positions on both sides: only the sample format is converted here.
    AVChannelLayout unplaced = {};
    unplaced.order = AV_CHANNEL_ORDER_UNSPEC;
    unplaced.nb_channels = frame.ch_layout.nb_channels;
    SwrContext* context = nullptr;
    swr_alloc_set_opts2(&context, &unplaced, AV_SAMPLE_FMT_FLTP, frame.sample_rate, &unplaced,
                        static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
    context_.reset(context);
    if (context == nullptr || swr_init(context) < 0) {
        throw base::TrackError("holds audio in a sample format that cannot be converted");
    }
}

}  // namespace media
