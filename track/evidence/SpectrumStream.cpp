// SPDX-License-Identifier: MIT
#include "track/evidence/SpectrumStream.h"

#include <algorithm>
#include <cmath>

namespace beatatlas::track::inner {

// The first frame is centred on the first sample: half of it is silence.
SpectrumStream::SpectrumStream(double step, int length)
    : step_(step), length_(length), spectra_(length, periodicHann(length)),
      bufferStart_(-length / 2), filled_(length / 2) {
    const double batch = std::ceil(step * FrameSpectra::kFrames);
    buffer_.resize(static_cast<std::size_t>(batch) + static_cast<std::size_t>(length));
}

std::int64_t SpectrumStream::startOf(std::int64_t frame) const {
    return static_cast<std::int64_t>(std::nearbyint(static_cast<double>(frame) * step_)) -
           length_ / 2;
}

std::int64_t SpectrumStream::batchEnd() const {
    return startOf(nextFrame_ + FrameSpectra::kFrames - 1) + length_;
}

bool SpectrumStream::isBatchComplete() const {
    return bufferStart_ + filled_ >= batchEnd();
}

std::int64_t SpectrumStream::append(const float* samples, std::int64_t count) {
    const std::int64_t taken = std::min(count, batchEnd() - bufferStart_ - filled_);
    std::copy_n(samples, taken, buffer_.data() + filled_);
    filled_ += taken;
    return taken;
}

void SpectrumStream::appendSilence() {
    const std::int64_t missing = batchEnd() - bufferStart_ - filled_;
    std::fill_n(buffer_.data() + filled_, missing, 0.0F);
    filled_ += missing;
}

void SpectrumStream::forgetUsed() {
    const std::int64_t start = startOf(nextFrame_);
    const std::int64_t used = start - bufferStart_;
    std::copy(buffer_.data() + used, buffer_.data() + filled_, buffer_.data());
    filled_ -= used;
    bufferStart_ = start;
}

}  // namespace beatatlas::track::inner
