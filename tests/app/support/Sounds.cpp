// SPDX-License-Identifier: MIT
#include "support/Sounds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace test {

namespace {

constexpr int kClickReach = 10;
constexpr double kClickHeight = 0.6;
constexpr double kSearchSeconds = 0.05;
constexpr float kAudible = 0.03F;

}  // namespace

Sound clicks(int rate, int channels, double seconds, const std::vector<double>& places) {
    std::vector<float> channel(static_cast<std::size_t>(std::lround(seconds * rate)));
    for (const double place : places) {
        const long middle = std::lround(place * rate);
        for (int k = -kClickReach; k <= kClickReach; ++k) {
            const double height = 0.5 + 0.5 * std::cos(std::numbers::pi * k / (kClickReach + 1));
            channel.at(static_cast<std::size_t>(middle + k)) =
                static_cast<float>(kClickHeight * height);
        }
    }
    return {rate, std::vector<std::vector<float>>(static_cast<std::size_t>(channels), channel)};
}

Sound tone(int rate, int channels, double seconds, double hertz, double amplitude) {
    std::vector<float> channel(static_cast<std::size_t>(std::lround(seconds * rate)));
    for (std::size_t i = 0; i < channel.size(); ++i) {
        const double phase = 2.0 * std::numbers::pi * hertz * static_cast<double>(i) / rate;
        channel[i] = static_cast<float>(amplitude * std::sin(phase));
    }
    return {rate, std::vector<std::vector<float>>(static_cast<std::size_t>(channels), channel)};
}

void mixInto(Sound& sound, const Sound& added) {
    for (auto& channel : sound.channels) {
        for (std::size_t i = 0; i < channel.size() && i < added.frames(); ++i)
            channel[i] += added.channels[0][i];
    }
}

Sound cadence(int rate, int channels, double seconds, int key, double referenceHz) {
    constexpr std::array<int, 4> kDegrees = {0, 5, 7, 0};
    const int third = key < 12 ? 4 : 3;
    std::vector<float> channel(static_cast<std::size_t>(std::lround(seconds * rate)));
    for (std::size_t i = 0; i < channel.size(); ++i) {
        const double time = static_cast<double>(i) / rate;
        const int root = key % 12 + kDegrees[static_cast<std::size_t>(time) % kDegrees.size()];
        const double fade = 1.0 - 0.9 * (time - std::floor(time));
        double sum = 0.0;
        for (const int note : {root - 12, root, root + third, root + 7}) {
            const double hertz = referenceHz * std::exp2((note % 12) / 12.0 - (note < 0 ? 1 : 0));
            sum += std::sin(2.0 * std::numbers::pi * hertz * time);
        }
        channel[i] = static_cast<float>(0.12 * fade * sum);
    }
    return {rate, std::vector<std::vector<float>>(static_cast<std::size_t>(channels), channel)};
}

Sound kicks(int rate, double seconds, double amplitude) {
    std::vector<float> channel(static_cast<std::size_t>(std::lround(seconds * rate)));
    for (std::size_t i = 0; i < channel.size(); ++i) {
        const double time = std::fmod(static_cast<double>(i) / rate, 0.5);
        const double phase = 2.0 * std::numbers::pi * 60.0 * time;
        channel[i] = static_cast<float>(amplitude * std::exp(-time / 0.03) * std::sin(phase));
    }
    return {rate, {channel}};
}

double levelAt(const std::vector<float>& channel, int rate, double hertz, std::size_t from,
               std::size_t count) {
    double re = 0.0;
    double im = 0.0;
    for (std::size_t i = from; i < from + count; ++i) {
        const double phase = 2.0 * std::numbers::pi * hertz * static_cast<double>(i) / rate;
        re += static_cast<double>(channel.at(i)) * std::cos(phase);
        im += static_cast<double>(channel.at(i)) * std::sin(phase);
    }
    return 2.0 * std::hypot(re, im) / static_cast<double>(count);
}

void Recorder::put(const media::StereoBlock& block) {
    left.insert(left.end(), block.left.begin(), block.left.end());
    right.insert(right.end(), block.right.begin(), block.right.end());
}

double clickNear(const std::vector<float>& channel, int rate, double seconds) {
    const auto size = static_cast<long>(channel.size());
    const long from = std::clamp(std::lround((seconds - kSearchSeconds) * rate), 0L, size);
    const long to = std::clamp(std::lround((seconds + kSearchSeconds) * rate), 0L, size);
    float loudest = 0.0F;
    for (long i = from; i < to; ++i)
        loudest = std::max(loudest, channel[static_cast<std::size_t>(i)]);
    if (loudest < kAudible) return -1.0;
    double sum = 0.0;
    double weighted = 0.0;
    for (long i = from; i < to; ++i) {
        const float sample = channel[static_cast<std::size_t>(i)];
        if (sample < 0.4F * loudest) continue;
        sum += static_cast<double>(sample);
        weighted += static_cast<double>(sample) * static_cast<double>(i);
    }
    return weighted / sum;
}

}  // namespace test
