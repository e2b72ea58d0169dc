// SPDX-License-Identifier: MIT
#include "track/key/frameChroma.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace beatatlas::track::inner {

namespace {

constexpr int kLowestSemitone = 28;  // 41 Hz
constexpr std::size_t kSemitones = 73;
constexpr int kHighestSemitone = kLowestSemitone + static_cast<int>(kSemitones) - 1;
constexpr double kMiddleC = 60.0;
constexpr double kOctave = 12.0;
constexpr int kA = 9;  // semitones above C; semitone 0 is a C
constexpr double kLeastShare = 0.1;

using Semitones = std::array<double, kSemitones>;

Semitones octaveWeights() {
    Semitones weights{};
    for (std::size_t i = 0; i < kSemitones; ++i) {
        const double octaves = (kLowestSemitone + static_cast<double>(i) - kMiddleC) / kOctave;
        weights[i] = std::exp(-0.5 * octaves * octaves);
    }
    return weights;
}

const Semitones& weights() {
    static const Semitones made = octaveWeights();
    return made;
}

/** How strong each semitone is. */
Semitones bandsOf(std::span<const SpectralPeak> peaks, double tuning) {
    Semitones bands{};
    for (const SpectralPeak& peak : peaks) {
        const double pitch = static_cast<double>(peak.pitch) - tuning;
        const double semitone = std::nearbyint(pitch);
        if (semitone < kLowestSemitone || semitone > kHighestSemitone) continue;
        const auto i = static_cast<std::size_t>(static_cast<int>(semitone) - kLowestSemitone);
        const double nearness = std::cos(std::numbers::pi * (pitch - semitone));
        const double strength = static_cast<double>(peak.strength) * nearness * nearness;
        bands[i] = std::max(bands[i], strength * weights()[i]);
    }
    return bands;
}

}  // namespace

float octaveWeight(float pitch) {
    const double semitone = std::nearbyint(static_cast<double>(pitch)) - kLowestSemitone;
    const double inside = std::clamp(semitone, 0.0, static_cast<double>(kSemitones - 1));
    return static_cast<float>(weights()[static_cast<std::size_t>(inside)]);
}

std::optional<Chroma> foldFrame(std::span<const SpectralPeak> peaks, double tuning) {
    const Semitones bands = bandsOf(peaks, tuning);
    const double least = kLeastShare * *std::max_element(bands.begin(), bands.end());
    ChromaSum tones{};
    double sum = 0.0;
    for (std::size_t i = 0; i < kSemitones; ++i) {
        if (bands[i] <= least) continue;
        const double tone = std::sqrt(bands[i]);
        tones[(i + kLowestSemitone + tones.size() - kA) % tones.size()] += tone;
        sum += tone;
    }
    if (!(sum > 0.0)) return std::nullopt;
    Chroma chroma{};
    for (std::size_t i = 0; i < chroma.size(); ++i) chroma[i] = static_cast<float>(tones[i] / sum);
    return chroma;
}

}  // namespace beatatlas::track::inner
