// SPDX-License-Identifier: MIT
#include "dsp/ConstantQBank.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "beatatlas/dsp.h"
#include "dsp/constants.h"
#include "dsp/truncation.h"

namespace beatatlas {

namespace {

/** Windows summed side by side: each sum keeps its own order, and the processor is not kept waiting for one. */
constexpr int kFramesAtOnce = 4;

/** Cosine and sine sums of kFrames stretches of x, hop samples apart, against one kernel of len points. */
template <std::size_t kFrames>
std::array<float, 2 * kFrames> correlate(const float* kernel, int len, const float* x,
                                         std::ptrdiff_t hop) {
    std::array<float, 2 * kFrames> sums{};
    for (std::ptrdiff_t i = 0; i < len; ++i) {
        const float cosine = kernel[2 * i];
        const float sine = kernel[2 * i + 1];
        for (std::size_t f = 0; f < kFrames; ++f) {
            const float sample = x[i + static_cast<std::ptrdiff_t>(f) * hop];
            sums[2 * f] += sample * cosine;
            sums[2 * f + 1] += sample * sine;
        }
    }
    return sums;
}

template <std::size_t kFrames>
void writeMagnitudes(const float* kernel, int len, const float* x, std::ptrdiff_t hop, float weight,
                     float* out) {
    const auto sums = correlate<kFrames>(kernel, len, x, hop);
    for (std::size_t f = 0; f < kFrames; ++f) {
        const float re = sums[2 * f];
        const float im = sums[2 * f + 1];
        out[f] = std::sqrt((re * re) + (im * im)) * weight;
    }
}

}  // namespace

ConstantQBank::ConstantQBank(int bins, float lowestHz, float rate) : rate_(rate) {
    for (int k = 0; k <= bins; ++k) {
        const double ratio = std::pow(2.0, static_cast<double>(k) / 12.0);
        frequencies_.push_back(static_cast<float>(static_cast<double>(lowestHz) * ratio));
    }
    for (std::size_t k = 0; k + 1 < frequencies_.size(); ++k)
        lengths_.push_back(truncToInt32((2.0F * rate) / (frequencies_[k + 1] - frequencies_[k])));
    // The windows shrink upward, unless the arithmetic has run out of range.
    usable_ = std::is_sorted(lengths_.rbegin(), lengths_.rend()) && !lengths_.empty() &&
              lengths_.back() >= 1;
}

int ConstantQBank::frameCount(long n, int hop) const {
    if (!usable_ || hop < 1 || n < frameLength()) return 0;
    const long count = (n - frameLength()) / hop;
    return static_cast<int>(std::min<long>(count, std::numeric_limits<int>::max()));
}

void ConstantQBank::makeKernel(int k) {
    const int len = windowLength(k);
    const auto frame = static_cast<std::size_t>(frameLength());
    window_.resize(frame);
    kernel_.resize(2 * frame);
    hanning(len, window_.data());
    const double turns =
        (2.0 * kPi) * static_cast<double>(frequencies_[static_cast<std::size_t>(k)]);
    float* point = kernel_.data();
    for (int i = 0; i < len; ++i) {
        const float seconds = (static_cast<float>(i) + 1.0F) / rate_;
        const double angle = turns * static_cast<double>(seconds);
        const float height = window_[static_cast<std::size_t>(i)];
        *point++ = height * static_cast<float>(std::cos(angle));
        *point++ = height * static_cast<float>(std::sin(angle));
    }
}

void ConstantQBank::magnitudes(int k, const float* first, int hop, int frames, float* out) {
    makeKernel(k);
    const int len = windowLength(k);
    const float weight = static_cast<float>(frameLength()) / static_cast<float>(len);
    const std::ptrdiff_t step = hop;
    std::ptrdiff_t j = 0;
    for (; frames - j >= kFramesAtOnce; j += kFramesAtOnce)
        writeMagnitudes<kFramesAtOnce>(kernel_.data(), len, first + (j * step), step, weight,
                                       out + j);
    for (; j < frames; ++j)
        writeMagnitudes<1>(kernel_.data(), len, first + (j * step), step, weight, out + j);
}

}  // namespace beatatlas
