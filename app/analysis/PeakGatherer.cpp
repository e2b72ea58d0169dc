// SPDX-License-Identifier: MIT
#include "analysis/PeakGatherer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace app {

namespace {

constexpr float kPeakFullScale = 32768.0F;

std::int16_t toInteger(float sample) {
    return static_cast<std::int16_t>(
        std::lround(std::clamp(sample * kPeakFullScale, -kPeakFullScale, kPeakFullScale - 1.0F)));
}

float numberOrSilence(float sample) {
    return std::isnan(sample) ? 0.0F : sample;
}

}  // namespace

void PeakGatherer::put(const media::StereoBlock& block) {
    for (std::size_t i = 0; i < block.frames(); ++i) {
        const std::array<float, 2> samples = {numberOrSilence(block.left[i]),
                                              numberOrSilence(block.right[i])};
        for (std::size_t channel = 0; channel < samples.size(); ++channel) {
            Extremes& extremes = extremes_[channel];
            const float sample = samples[channel];
            extremes.least = gathered_ == 0 ? sample : std::min(extremes.least, sample);
            extremes.most = gathered_ == 0 ? sample : std::max(extremes.most, sample);
        }
        if (++gathered_ == peaks_.framesPerPixel) closePixel();
    }
}

void PeakGatherer::closePixel() {
    for (const Extremes& extremes : extremes_) {
        peaks_.values.push_back(toInteger(extremes.least));
        peaks_.values.push_back(toInteger(extremes.most));
    }
    gathered_ = 0;
}

output::Peaks PeakGatherer::finish(int rate) {
    if (gathered_ > 0) closePixel();
    peaks_.rate = rate;
    peaks_.channels = static_cast<int>(extremes_.size());
    return std::move(peaks_);
}

}  // namespace app
