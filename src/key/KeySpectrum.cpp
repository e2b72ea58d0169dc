// SPDX-License-Identifier: MIT
#include "key/KeySpectrum.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "dsp/constants.h"
#include "dsp/lanes/vectorLanes.h"

namespace beatatlas {

namespace {

constexpr int kPoints = DecimationBuffer::kFrameSamples;

std::unique_ptr<double[]> makeHann() {
    auto window = std::make_unique<double[]>(kPoints);
    for (int k = 0; k < kPoints; ++k) {
        const double angle = ((2.0 * kPi) * static_cast<double>(k)) / static_cast<double>(kPoints);
        window[static_cast<std::size_t>(k)] = 0.5 - (0.5 * std::cos(angle));
    }
    return window;
}

/** out[i] = sample i of the frame times the window. */
template <std::size_t kWidth>
struct WindowedFrame {
    BEATATLAS_LANES static void run(const std::int16_t* frame, const double* window, double* out) {
        for (std::size_t i = 0; i < kPoints; i += kWidth) {
            // A sample and those up to the next one of the frame are one 64-bit lane.
            Lanes<std::int64_t, kWidth> samples;
            static_assert(sizeof(samples[0]) == DecimationBuffer::kSpacing * sizeof(*frame));
            loadLanes(samples, frame + (DecimationBuffer::kSpacing * i));
            if constexpr (std::endian::native == std::endian::big) samples >>= 32;
            const auto halves = __builtin_convertvector(samples, Lanes<std::int32_t, kWidth>);
            Lanes<double, kWidth> values;
            convertLanes<kWidth>(std::endian::native == std::endian::big ? halves >> 16
                                                                         : (halves << 16) >> 16,
                                 values);
            Lanes<double, kWidth> weights;
            loadLanes(weights, window + i);
            storeLanes(values * weights, out + i);
        }
    }
};

}  // namespace

void KeySpectrum::create(double analysisRate) {
    release();
    bands_.create(kPoints / 2, analysisRate / static_cast<double>(kPoints));
    hasMissedFrames_ = false;
    magnitudes_.assign(static_cast<std::size_t>(bands_.count()), 0.0);
    hann_ = makeHann();
    values_ = std::make_unique<double[]>(kPoints);
    power_ = std::make_unique<double[]>((kPoints / 2) + 1);
}

void KeySpectrum::release() {
    bands_.release();
    fft_.release();
    hann_.reset();
    values_.reset();
    power_.reset();
}

// Phases are not taken: no result depends on them.
const std::vector<double>& KeySpectrum::measure(const DecimationBuffer& samples) {
    const double* hann = hann_.get();
    runInLanes<WindowedFrame>(samples.frame(), hann, values_.get());
    if (fft_.power(kPoints, values_.get(), power_.get()) == 0) {
        bands_.measure(power_.get(), magnitudes_.data());
    } else {
        std::fill(magnitudes_.begin(), magnitudes_.end(), 0.0);
        hasMissedFrames_ = true;
    }
    return magnitudes_;
}

}  // namespace beatatlas
