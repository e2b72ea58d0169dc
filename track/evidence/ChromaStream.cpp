// SPDX-License-Identifier: MIT
#include "track/evidence/ChromaStream.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace beatatlas::track::inner {

namespace {

constexpr double kLowestHz = 100.0;
constexpr double kHighestHz = 2000.0;
constexpr double kConcertPitchHz = 440.0;
constexpr int kPitchClasses = 12;
constexpr float kLeastSum = 1e-9F;

/** The pitch class nearest to a frequency. */
std::size_t pitchClassOf(double hz) {
    const double semitones = std::nearbyint(kPitchClasses * std::log2(hz / kConcertPitchHz));
    const int pitch = static_cast<int>(semitones) % kPitchClasses;
    return static_cast<std::size_t>((pitch + kPitchClasses) % kPitchClasses);
}

float sumOf(const Chroma& frame) {
    float sum = 0.0F;
    for (const float strength : frame) sum += strength;
    return sum;
}

/** The median of the sums of all frames. */
float medianSum(const std::vector<Chroma>& frames) {
    std::vector<float> sums;
    sums.reserve(frames.size());
    for (const Chroma& frame : frames) sums.push_back(sumOf(frame));
    const auto middle = sums.begin() + static_cast<std::ptrdiff_t>(sums.size() / 2);
    std::nth_element(sums.begin(), middle, sums.end());
    if (sums.size() % 2 != 0) return *middle;
    return 0.5F * (*middle + *std::max_element(sums.begin(), middle));
}

}  // namespace

ChromaStream::ChromaStream(int rate)
    : powers_(rate, static_cast<double>(rate) / Decimator::kFactor / kFramesPerSecond,
              SpectrumStream::kLength),
      tones_(tonesOf(powers_.rate())) {}

std::vector<ChromaStream::Tone> ChromaStream::tonesOf(double rate) {
    std::vector<Tone> tones;
    for (std::size_t bin = 1; bin < SpectrumStream::kLength / 2; ++bin) {
        const double hz = static_cast<double>(bin) * rate / SpectrumStream::kLength;
        if (hz <= kLowestHz || hz >= kHighestHz) continue;
        const std::size_t pitchClass = pitchClassOf(hz);
        if (tones.empty() || tones.back().pitchClass != pitchClass)
            tones.push_back({bin, bin, pitchClass});
        tones.back().endBin = bin + 1;
    }
    return tones;
}

void ChromaStream::put(const float* mono, std::int64_t samples) {
    powers_.put(mono, samples, [this](const float* powers) { addFrame(powers); });
}

std::vector<Chroma> ChromaStream::finish() {
    const std::int64_t frames = powers_.finish([this](const float* powers) { addFrame(powers); });
    frames_.resize(static_cast<std::size_t>(frames));
    if (!frames_.empty()) compress();
    return std::move(frames_);
}

void ChromaStream::addFrame(const float* powers) {
    Chroma frame{};
    for (const Tone& tone : tones_) {
        float sum = 0.0F;
        for (std::size_t bin = tone.firstBin; bin < tone.endBin; ++bin)
            sum += std::sqrt(powers[bin]);
        frame[tone.pitchClass] += sum;
    }
    frames_.push_back(frame);
}

void ChromaStream::compress() {
    const float unit = medianSum(frames_) / static_cast<float>(kPitchClasses) + kLeastSum;
    for (Chroma& frame : frames_)
        for (float& strength : frame) strength = std::log1p(strength / unit);
}

}  // namespace beatatlas::track::inner
