// SPDX-License-Identifier: MIT
#include "click/ClickMixer.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace app {

namespace {

constexpr double kClickSeconds = 0.05;
constexpr double kFallSeconds = 0.012;  ///< to 1/e
constexpr double kDownbeatHertz = 1500.0;
constexpr double kBeatHertz = 1000.0;
constexpr double kBeatHeight = 0.5;
constexpr double kHighestPeak = 0.891250938;  ///< 1 dB below full scale
constexpr float kLoudestSample = 2.0F;

double factorOf(double decibels) {
    return std::pow(10.0, decibels / 20.0);
}

std::vector<float> burst(int rate, double hertz, double height) {
    std::vector<float> samples(static_cast<std::size_t>(kClickSeconds * rate));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double time = static_cast<double>(i) / rate;
        const double fall = std::exp(-time / kFallSeconds) * (1.0 - time / kClickSeconds);
        samples[i] =
            static_cast<float>(height * fall * std::cos(2.0 * std::numbers::pi * hertz * time));
    }
    return samples;
}

/** How loud music and clicks can be together. */
double togetherPeak(ClickPlace place, double music, double click) {
    if (place == ClickPlace::alone) return click;
    return place == ClickPlace::apart ? std::max(music, click) : music + click;
}

}  // namespace

float heardSample(float sample) {
    return std::isnan(sample) ? 0.0F : std::clamp(sample, -kLoudestSample, kLoudestSample);
}

double louderPeak(double peak, const media::StereoBlock& block) {
    for (const auto* channel : {&block.left, &block.right}) {
        for (const float sample : *channel)
            peak = std::max(peak, static_cast<double>(std::abs(heardSample(sample))));
    }
    return peak;
}

ClickMixer::ClickMixer(std::vector<Click> clicks, int rate, double musicPeak, double levelDb,
                       ClickPlace place)
    : clicks_(std::move(clicks)), place_(place) {
    const double clickPeak = (musicPeak > 0.0 ? musicPeak : 1.0) * factorOf(levelDb);
    const double gain = std::min(1.0, kHighestPeak / togetherPeak(place, musicPeak, clickPeak));
    gain_ = static_cast<float>(gain);
    downbeat_ = burst(rate, kDownbeatHertz, gain * clickPeak);
    beat_ = burst(rate, kBeatHertz, gain * clickPeak * kBeatHeight);
}

void ClickMixer::mix(media::StereoBlock& block) {
    for (std::size_t i = 0; i < block.frames(); ++i) {
        const float click = clickAt(position_++);
        const float left = gain_ * heardSample(block.left[i]);
        const float right = gain_ * heardSample(block.right[i]);
        switch (place_) {
        case ClickPlace::over:
            block.left[i] = left + click;
            block.right[i] = right + click;
            break;
        case ClickPlace::alone:
            block.left[i] = block.right[i] = click;
            break;
        case ClickPlace::apart:
            block.left[i] = 0.5F * (left + right);
            block.right[i] = click;
            break;
        }
    }
}

/** A click ends where the next one begins. */
float ClickMixer::clickAt(std::int64_t frame) {
    while (next_ < clicks_.size() && clicks_[next_].frame <= frame) ++next_;
    if (next_ == 0) return 0.0F;
    const Click& click = clicks_[next_ - 1];
    const auto& samples = click.isDownbeat ? downbeat_ : beat_;
    const auto since = static_cast<std::size_t>(frame - click.frame);
    return since < samples.size() ? samples[since] : 0.0F;
}

}  // namespace app
