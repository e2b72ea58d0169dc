// SPDX-License-Identifier: MIT
#include "support/ClickPattern.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace test {

namespace {

constexpr double kSeconds = 3.0;
// No two are as far apart as any other two: only the true shift brings all of them together.
constexpr std::array kPlaces = {0.31, 0.72, 1.15, 1.67, 2.23, 2.61};
constexpr double kClickHertz = 900.0;
constexpr double kClickReachSeconds = 0.0015;
constexpr double kClickHeight = 0.7;
constexpr double kSearchSeconds = 0.25;
constexpr long kStep = 4;  // frames
constexpr double kLeastLikeness = 0.5;

double clickAt(double secondsFromMiddle) {
    const double x = std::numbers::pi * kClickHertz * secondsFromMiddle;
    return kClickHeight * (1.0 - 2.0 * x * x) * std::exp(-x * x);
}

/** The frames that sound: their numbers, and the pattern's values there. */
struct ClickFrame {
    long number;
    float value;
};

std::vector<ClickFrame> clickFrames(int rate) {
    std::vector<ClickFrame> frames;
    for (const double place : kPlaces) {
        const long from = std::lround((place - kClickReachSeconds) * rate);
        const long to = std::lround((place + kClickReachSeconds) * rate);
        for (long i = from; i <= to; ++i)
            frames.push_back(
                {i, static_cast<float>(clickAt(static_cast<double>(i) / rate - place))});
    }
    return frames;
}

/** The likeness of the pattern and what lies so many frames later, -1 to 1. */
double likeness(const std::vector<ClickFrame>& clicks, const std::vector<float>& channel,
                long lag) {
    float product = 0.0F;
    float heard = 0.0F;
    float wanted = 0.0F;
    for (const ClickFrame& click : clicks) {
        wanted += click.value * click.value;
        const long at = click.number + lag;
        if (at < 0 || at >= static_cast<long>(channel.size())) continue;
        const float sample = channel[static_cast<std::size_t>(at)];
        product += sample * click.value;
        heard += sample * sample;
    }
    return heard > 0.0F ? static_cast<double>(product / std::sqrt(heard * wanted)) : 0.0;
}

}  // namespace

Sound clickPattern(int rate, int channels) {
    std::vector<float> channel(static_cast<std::size_t>(std::lround(kSeconds * rate)));
    for (const ClickFrame& click : clickFrames(rate))
        channel.at(static_cast<std::size_t>(click.number)) = click.value;
    return {rate, std::vector<std::vector<float>>(static_cast<std::size_t>(channels), channel)};
}

std::optional<double> patternShift(const std::vector<float>& channel, int rate) {
    const std::vector<ClickFrame> clicks = clickFrames(rate);
    const auto likenessAt = [&](long lag) { return likeness(clicks, channel, lag); };
    const long reach = std::lround(kSearchSeconds * rate);
    long best = 0;
    double top = likenessAt(best);
    const auto tryLags = [&](long from, long to, long step) {
        for (long lag = from; lag <= to; lag += step) {
            const double found = likenessAt(lag);
            if (found <= top) continue;
            top = found;
            best = lag;
        }
    };
    tryLags(-reach, reach, kStep);  // a click's top is wider than a step
    tryLags(best - kStep, best + kStep, 1);
    if (top < kLeastLikeness) return std::nullopt;
    // Between frames: the top of the parabola through the highest value and its neighbours.
    const double before = likenessAt(best - 1);
    const double after = likenessAt(best + 1);
    const double bend = before - 2.0 * top + after;
    const double between = bend < 0.0 ? 0.5 * (before - after) / bend : 0.0;
    return (static_cast<double>(best) + between) / rate;
}

}  // namespace test
