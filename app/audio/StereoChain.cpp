// SPDX-License-Identifier: MIT
#include "audio/StereoChain.h"

#include <algorithm>
#include <cmath>

#include "io/errors.h"

namespace app {

namespace {

constexpr float kFullScale = 32768.0F;
constexpr std::int64_t kSilenceBlockFrames = 4096;

/** Lossy decoders overshoot full scale, and a session keeps only the low 16 bits of a sample: too loud would wrap. */
float toSessionScale(float sample) {
    if (std::isnan(sample)) return 0.0F;
    return std::clamp(sample * kFullScale, -kFullScale, kFullScale - 1.0F);
}

void scale(std::vector<float>& channel) {
    std::transform(channel.begin(), channel.end(), channel.begin(), toSessionScale);
}

}  // namespace

void StereoChain::put(const AVFrame& frame) {
    if (frame.sample_rate != trackRate_) setTrackRate(frame.sample_rate);
    block_ = fold_.fold(frame);
    dropDelay();
    toSessionRate(block_);
}

void StereoChain::dropDelay() {
    const auto count = std::min(framesToDrop_, static_cast<std::int64_t>(block_.frames()));
    if (count == 0) return;
    block_.left.erase(block_.left.begin(), block_.left.begin() + count);
    block_.right.erase(block_.right.begin(), block_.right.begin() + count);
    framesToDrop_ -= count;
}

void StereoChain::setTrackRate(int rate) {
    if (rate <= 0) throw TrackError("holds audio without a sample rate");
    if (converter_) deliver(converter_->finish());
    converter_.reset();
    trackRate_ = rate;
    if (sessionRate_ == 0) sessionRate_ = sessionRateFor(rate);
    if (rate != sessionRate_) converter_ = std::make_unique<RateConverter>(rate, sessionRate_);
}

void StereoChain::putSilence(std::int64_t frames) {
    if (trackRate_ == 0) return;
    for (; frames > 0; frames -= kSilenceBlockFrames) {
        block_.assignSilence(static_cast<std::size_t>(std::min(frames, kSilenceBlockFrames)));
        toSessionRate(block_);
    }
}

void StereoChain::toSessionRate(StereoBlock& block) {
    deliver(converter_ ? converter_->convert(block) : block);
}

void StereoChain::finish() {
    if (converter_) deliver(converter_->finish());
    converter_.reset();
}

void StereoChain::deliver(StereoBlock& block) {
    if (block.frames() == 0) return;
    scale(block.left);
    scale(block.right);
    sink_.put(block);
}

}  // namespace app
