// SPDX-License-Identifier: MIT
#include "FuzzAudio.h"

#include <algorithm>
#include <limits>

namespace beatatlas::fuzz {

namespace {

using Limits = std::numeric_limits<float>;

constexpr float kPeaks[] = {32767.0F, 20000.0F, 9.9F, 1.0F, 32768.0F, 65535.0F, 1e38F, 1e-42F};
constexpr float kImpossible[] = {Limits::quiet_NaN(),
                                 Limits::infinity(),
                                 -Limits::infinity(),
                                 1e38F,
                                 -1e38F,
                                 1e-42F,
                                 2147483648.0F,
                                 -3e9F,
                                 -0.0F};

// Pulses of 200 frames, the shape of a kick without its tone; every fourth may be louder.
void addPulses(FuzzInput& input, float peak, std::vector<float>& samples) {
    const int period = input.between(200, 65000);
    const bool accented = input.flag();
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const std::size_t within = i % static_cast<std::size_t>(period);
        if (within >= 200) continue;
        const bool isAccent = accented && i / static_cast<std::size_t>(period) % 4 == 0;
        samples[i] += (isAccent ? peak : 0.6F * peak) * (within % 64 < 32 ? 1.0F : -1.0F);
    }
}

void addSquare(FuzzInput& input, float peak, std::vector<float>& samples) {
    const auto half = static_cast<std::size_t>(input.between(1, 2000));
    for (std::size_t i = 0; i < samples.size(); ++i) samples[i] += i / half % 2 == 0 ? peak : -peak;
}

void addNoise(FuzzInput& input, float peak, std::vector<float>& samples) {
    std::uint32_t state = input.bits32();
    for (float& sample : samples) {
        state = state * 1664525U + 1013904223U;
        sample += peak * (static_cast<float>(state >> 8) / 8388608.0F - 1.0F);
    }
}

void repeatOwnBytes(FuzzInput& input, std::vector<float>& samples) {
    const auto length = static_cast<std::size_t>(input.between(1, 64));
    for (std::size_t i = 0; i < std::min(length, samples.size()); ++i)
        samples[i] = input.anyFloat();
    for (std::size_t i = length; i < samples.size(); ++i) samples[i] = samples[i - length];
}

}  // namespace

std::vector<float> fuzzSamples(FuzzInput& input, int count) {
    std::vector<float> samples(static_cast<std::size_t>(std::max(count, 0)), 0.0F);
    const int kind = input.between(0, 9);
    const float peak = kPeaks[input.byte() % std::size(kPeaks)];
    switch (kind) {
    case 0:
        break;
    case 1:
        repeatOwnBytes(input, samples);
        break;
    case 2:
        for (float& sample : samples) sample = peak;
        break;
    case 3:
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = kImpossible[i * (1 + i / 7) % std::size(kImpossible)];
        break;
    case 4:
        addSquare(input, peak, samples);
        break;
    case 5:
        addNoise(input, peak, samples);
        break;
    case 6:
        addNoise(input, 0.1F * peak, samples);
        [[fallthrough]];
    default:
        addPulses(input, peak, samples);
    }
    return samples;
}

int fuzzInt(FuzzInput& input) {
    constexpr int kSpecial[] = {0,
                                1,
                                2,
                                3,
                                4,
                                8,
                                16,
                                32,
                                -1,
                                std::numeric_limits<int>::max(),
                                std::numeric_limits<int>::min()};
    const int kind = input.between(0, 3);
    if (kind == 0) return input.anyInt();
    if (kind == 1) return input.between(-32768, 32767);
    return input.oneOf(kSpecial);
}

float fuzzFloat(FuzzInput& input) {
    constexpr float kSpecial[] = {44100.0F,
                                  48000.0F,
                                  4410.0F,
                                  4000.0F,
                                  440.0F,
                                  0.0F,
                                  1.0F,
                                  -1.0F,
                                  1e-42F,
                                  1e38F,
                                  Limits::infinity(),
                                  Limits::quiet_NaN()};
    const int kind = input.between(0, 3);
    if (kind == 0) return input.anyFloat();
    if (kind == 1) return static_cast<float>(input.between(0, 65535));
    return input.oneOf(kSpecial);
}

}  // namespace beatatlas::fuzz
