// SPDX-License-Identifier: MIT
#include "media/StereoChain.h"

#include <algorithm>

#include "base/errors.h"

namespace media {

namespace {

constexpr std::int64_t kSilenceBlockFrames = 4096;

// A third of a second. Codecs yield as few as 600 frames at a time, and every call of the library
// has a cost.
constexpr std::size_t kBlockFrames = 16384;

}  // namespace

void StereoChain::begin(const AVFrame& frame) {
    if (frame.sample_rate != trackRate_ || trackRate_ == 0) setTrackRate(frame.sample_rate);
}

void StereoChain::put(const AVFrame& frame) {
    begin(frame);
    StereoBlock& block = fold_.fold(frame);
    dropDelay(block);
    toSessionRate(block);
}

void StereoChain::dropDelay(StereoBlock& block) {
    const auto count = std::min(framesToDrop_, static_cast<std::int64_t>(block.frames()));
    if (count == 0) return;
    block.left.erase(block.left.begin(), block.left.begin() + count);
    block.right.erase(block.right.begin(), block.right.begin() + count);
    framesToDrop_ -= count;
}

void StereoChain::setTrackRate(int rate) {
    if (rate <= 0) throw base::TrackError("holds audio without a sample rate");
    if (converter_) deliver(converter_->finish());
    converter_.reset();
    trackRate_ = rate;
    if (sessionRate_ == 0) sessionRate_ = sessionRateFor(rate);
    if (rate != sessionRate_) converter_ = std::make_unique<RateConverter>(rate, sessionRate_);
}

void StereoChain::putSilence(std::int64_t frames) {
    if (trackRate_ == 0) return;
    for (; frames > 0; frames -= kSilenceBlockFrames) {
        silence_.assignSilence(static_cast<std::size_t>(std::min(frames, kSilenceBlockFrames)));
        toSessionRate(silence_);
    }
}

void StereoChain::toSessionRate(const StereoBlock& block) {
    deliver(converter_ ? converter_->convert(block) : block);
}

void StereoChain::finish() {
    if (converter_) deliver(converter_->finish());
    converter_.reset();
    if (gathered_ == 0) return;
    pending_.resize(gathered_);
    handOn();
}

void StereoChain::deliver(const StereoBlock& block) {
    for (std::size_t at = 0; at < block.frames();) {
        pending_.resize(kBlockFrames);
        const std::size_t count = std::min(block.frames() - at, kBlockFrames - gathered_);
        std::copy_n(block.left.data() + at, count, pending_.left.data() + gathered_);
        std::copy_n(block.right.data() + at, count, pending_.right.data() + gathered_);
        at += count;
        gathered_ += count;
        if (gathered_ == kBlockFrames) handOn();
    }
}

void StereoChain::handOn() {
    gathered_ = 0;
    sink_.put(pending_);
}

}  // namespace media
