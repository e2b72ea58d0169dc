// SPDX-License-Identifier: MIT
#include "key/KeySpectrum.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "dsp/constants.h"

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

}  // namespace

void KeySpectrum::create(double analysisRate) {
    release();
    bands_.create(kPoints / 2, analysisRate / static_cast<double>(kPoints));
    magnitudes_.assign(static_cast<std::size_t>(bands_.count()), 0.0);
    hann_ = makeHann();
    re_ = std::make_unique<double[]>(kPoints);
    im_ = std::make_unique<double[]>(kPoints);
}

void KeySpectrum::release() {
    bands_.release();
    fft_.release();
    hann_.reset();
    re_.reset();
    im_.reset();
}

// Phases are not taken: no result depends on them.
const std::vector<double>& KeySpectrum::measure(const DecimationBuffer& samples) {
    for (int i = 0; i < kPoints; ++i) {
        const auto k = static_cast<std::size_t>(i);
        re_[k] = static_cast<double>(samples.frame()[DecimationBuffer::kSpacing * i]) * hann_[k];
        im_[k] = 0.0;
    }
    if (fft(kPoints, re_.get(), im_.get()) == 0)
        bands_.measure(re_.get(), im_.get(), magnitudes_.data());
    else
        std::fill(magnitudes_.begin(), magnitudes_.end(), 0.0);
    return magnitudes_;
}

}  // namespace beatatlas
