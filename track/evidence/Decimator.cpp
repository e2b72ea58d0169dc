// SPDX-License-Identifier: MIT
#include "track/evidence/Decimator.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "dsp/vectorLanes.h"

namespace beatatlas::track::inner {

namespace {

constexpr std::size_t kLanes = 16;
constexpr std::size_t kTaps = 64;
// An odd number, so that the middle falls on a sample.
constexpr std::size_t kUsedTaps = 63;
constexpr std::size_t kMiddle = 31;
// The cutoff as a share of half the new rate; the rest is room for the slope.
constexpr double kPassedShare = 0.8;

/** A sinc under a Hamming window, with a gain of 1 at 0 Hz. */
std::vector<float> lowPassTaps() {
    std::vector<double> taps(kUsedTaps);
    double sum = 0.0;
    for (std::size_t i = 0; i < kUsedTaps; ++i) {
        const double cutoff = kPassedShare / Decimator::kFactor;
        const double at =
            cutoff * std::numbers::pi * (static_cast<double>(i) - static_cast<double>(kMiddle));
        const double turn = static_cast<double>(i) / static_cast<double>(kUsedTaps - 1);
        const double window = 0.54 - 0.46 * std::cos(2.0 * std::numbers::pi * turn);
        taps[i] = (i == kMiddle ? 1.0 : std::sin(at) / at) * window;
        sum += taps[i];
    }
    std::vector<float> scaled(kTaps);
    for (std::size_t i = 0; i < kUsedTaps; ++i) scaled[i] = static_cast<float>(taps[i] / sum);
    return scaled;
}

/** Computes sixteen sums side by side and then adds them up: the order is the same in every
 *  form. */
template <std::size_t kWidth>
struct FilterLanes {
    using Values = Lanes<float, kLanes>;

    BEATATLAS_LANES static void run(const float* samples, const float* taps, std::size_t outputs,
                                    float* out) {
        for (std::size_t m = 0; m < outputs; ++m) {
            const float* from = samples + m * Decimator::kFactor;
            Values sums{};
            for (std::size_t i = 0; i < kTaps; i += kLanes) {
                Values sample;
                Values tap;
                loadLanes(sample, from + i);
                loadLanes(tap, taps + i);
                sums = sums + sample * tap;
            }
            out[m] = sumOf(sums);
        }
    }

    BEATATLAS_LANES static float sumOf(const Values& sums) {
        const auto eight = __builtin_shufflevector(sums, sums, 0, 1, 2, 3, 4, 5, 6, 7) +
                           __builtin_shufflevector(sums, sums, 8, 9, 10, 11, 12, 13, 14, 15);
        const auto four = __builtin_shufflevector(eight, eight, 0, 1, 2, 3) +
                          __builtin_shufflevector(eight, eight, 4, 5, 6, 7);
        return (four[0] + four[2]) + (four[1] + four[3]);
    }
};

}  // namespace

Decimator::Decimator() : taps_(lowPassTaps()), buffer_(kMiddle) {}

const std::vector<float>& Decimator::put(const float* samples, std::int64_t count) {
    buffer_.insert(buffer_.end(), samples, samples + count);
    samples_ += count;
    filterBuffer();
    return outputs_;
}

const std::vector<float>& Decimator::finish() {
    const std::int64_t wanted = (samples_ + kFactor - 1) / kFactor;
    buffer_.resize(buffer_.size() + kTaps + kFactor);
    filterBuffer();
    outputs_.resize(outputs_.size() - static_cast<std::size_t>(made_ - wanted));
    return outputs_;
}

// The last tap is zero, but its sample is read and must exist.
void Decimator::filterBuffer() {
    const std::size_t outputs = buffer_.size() < kTaps ? 0 : (buffer_.size() - kTaps) / kFactor + 1;
    outputs_.resize(outputs);
    runInLanes<FilterLanes>(static_cast<const float*>(buffer_.data()),
                            static_cast<const float*>(taps_.data()), outputs, outputs_.data());
    made_ += static_cast<std::int64_t>(outputs);
    buffer_.erase(buffer_.begin(),
                  buffer_.begin() + static_cast<std::ptrdiff_t>(outputs * kFactor));
}

}  // namespace beatatlas::track::inner
