// SPDX-License-Identifier: MIT
#include "media/library/SampleTrack.h"

#include <algorithm>

#include "base/errors.h"
#include "media/OverloadMeter.h"
#include "media/RateConverter.h"
#include "media/StereoChain.h"
#include "media/ffmpeg.h"

namespace media {

namespace {

constexpr std::int64_t kFramesAtATime = 65536;

/** Gathers all that a chain delivers, and says what of it cannot be analysed unchanged. */
class WholeTrack : public TrackSink {
public:
    explicit WholeTrack(StereoBlock& track) : track_(track) {}

    void put(const StereoBlock& block) override {
        meter_.put(block);
        track_.left.insert(track_.left.end(), block.left.begin(), block.left.end());
        track_.right.insert(track_.right.end(), block.right.begin(), block.right.end());
    }

    base::Overload overload() const { return meter_.overload(); }

private:
    StereoBlock& track_;
    OverloadMeter meter_;
};

/** A frame that refers to samples in place: FFmpeg only reads them. */
FramePointer describe(const float* samples, int rate, int channels, int frames) {
    FramePointer frame = makeFrame();
    frame->format = AV_SAMPLE_FMT_FLT;
    frame->sample_rate = rate;
    frame->nb_samples = frames;
    av_channel_layout_default(&frame->ch_layout, channels);
    frame->data[0] = reinterpret_cast<std::uint8_t*>(const_cast<float*>(samples));
    frame->extended_data = frame->data;
    return frame;
}

}  // namespace

SampleTrack::SampleTrack(const float* samples, int rate, int channels, std::int64_t frames,
                         const std::function<void(double)>& progress) {
    requireConvertible(rate);
    WholeTrack whole(stereo_);
    StereoChain chain(whole);
    for (std::int64_t at = 0; at < frames; at += kFramesAtATime) {
        const auto count = static_cast<int>(std::min(kFramesAtATime, frames - at));
        if (progress) progress(0.0);
        chain.put(*describe(samples + at * channels, rate, channels, count));
    }
    chain.finish();
    source_.format.codec = "pcm_f32";
    source_.format.channels = channels;
    source_.format.trackRate = rate;
    source_.format.sessionRate = chain.outputRate();
    source_.overload = whole.overload();
}

beatatlas::track::TrackHandle SampleTrack::analyze(const beatatlas::track::Options& options) const {
    return analyzeToHandle(options, source_.format.sessionRate, stereo_.left.data(),
                           stereo_.right.data(), static_cast<std::int64_t>(stereo_.frames()));
}

}  // namespace media
