// SPDX-License-Identifier: MIT
// How much of each of the twelve notes a buffer holds, whatever the octave:
//   1. magnitudes of 72 semitone bins, six octaves, frame by frame
//   2. divided by the largest of all, so that the level does not matter
//   3. each bin smoothed over time, which weakens drums: they strike all bins, but briefly
//   4. octaves folded, the outer ones weighed less: the lowest holds kick and rumble
#include "key/PitchClassStrengths.h"

#include <cstddef>
#include <memory>

#include "beatatlas/dsp.h"
#include "dsp/ConstantQBank.h"

namespace beatatlas {

namespace {

constexpr int kOctaves = 6;
constexpr int kBins = kOctaves * kPitchClasses;
constexpr float kFourOctavesDown = 0.0625F;
constexpr float kSmoothingHz = 1.0F;
/** The rate at which a track is offered when speed counts. */
constexpr float kReducedRate = 4000.0F;

/** Magnitudes of every bin in every frame, a row of frames per bin. */
struct Spectrogram {
    int frames = 0;
    std::unique_ptr<float[]> values;

    float* row(int bin) const { return values.get() + static_cast<std::ptrdiff_t>(bin) * frames; }
};

Spectrogram measureBins(const KeyBuffer& buffer) {
    const ConstantQBank bank(kBins, buffer.referenceHz * kFourOctavesDown, buffer.rate);
    const int hop = hopOf(buffer);
    Spectrogram bins;
    bins.frames = bank.frameCount(buffer.count, hop);
    if (bins.frames == 0) return bins;
    bins.values = std::make_unique<float[]>(static_cast<std::size_t>(kBins) *
                                            static_cast<std::size_t>(bins.frames));
    bank.magnitudes(buffer.samples, hop, bins.frames, ConstantQBank::Place::middle,
                    bins.values.get());
    return bins;
}

void divideByLargest(const Spectrogram& bins) {
    std::array<float, kBins> largest{};
    for (int k = 0; k < kBins; ++k)
        largest[static_cast<std::size_t>(k)] = max_v(bins.row(k), bins.frames, nullptr);
    const float overall = max_v(largest.data(), kBins, nullptr);
    if (overall == 0.0F) return;
    for (int k = 0; k < kBins; ++k) {
        float* row = bins.row(k);
        for (int j = 0; j < bins.frames; ++j) row[j] = row[j] / overall;
    }
}

void smoothOverTime(const Spectrogram& bins, float frameRate) {
    std::array<float, 2> a{};
    std::array<float, 2> b{};
    make_lpf1(kSmoothingHz, frameRate, a.data(), b.data());
    for (int k = 0; k < kBins; ++k)
        filter1_hat_mono(bins.row(k), bins.row(k), bins.frames, a.data(), b.data());
}

struct OctaveWeights {
    float lowest;
    float middle;
    float top;
};

OctaveWeights octaveWeightsOf(const KeyBuffer& buffer) {
    const bool shortTracksApart = buffer.mode == 2 || buffer.mode == 3;
    if (shortTracksApart && buffer.lengthClass() == LengthClass::isShort)
        return {0.63F, 0.75F, 0.9F};
    return {0.65F, 1.0F, 1.0F};
}

float sumOfRow(const Spectrogram& bins, int bin) {
    const float* row = bins.row(bin);
    float sum = 0.0F;
    for (int j = 0; j < bins.frames; ++j) sum += row[j];
    return sum;
}

PitchClassStrengths foldOctaves(const Spectrogram& bins, const OctaveWeights& weights) {
    PitchClassStrengths strengths{};
    for (int c = 0; c < kPitchClasses; ++c) {
        std::array<float, kOctaves> o{};
        for (int m = 0; m < kOctaves; ++m)
            o[static_cast<std::size_t>(m)] = sumOfRow(bins, c + (kPitchClasses * m));
        const float middle = weights.middle * ((o[2] + o[3]) + o[4]);
        const float s = (((weights.lowest * o[0]) + (0.5F * o[1])) + middle) + (weights.top * o[5]);
        strengths[static_cast<std::size_t>(c)] = s * s;
    }
    return strengths;
}

}  // namespace

int hopOf(const KeyBuffer& buffer) {
    if (buffer.hopDivisor < 1) return 0;
    int hop = 2048;
    if (buffer.mode >= 1 && buffer.mode <= 4) {
        if (buffer.lengthClass() == LengthClass::isLong)
            hop = buffer.rate == kReducedRate ? 8192 : 16384;
        else if (buffer.mode >= 2)
            hop = buffer.mode == 2 ? 4096 : 8192;
    }
    return hop / buffer.hopDivisor;
}

PitchClassStrengths pitchClassStrengths(const KeyBuffer& buffer) {
    const Spectrogram bins = measureBins(buffer);
    if (bins.frames == 0) return {};
    divideByLargest(bins);
    smoothOverTime(bins, buffer.rate / static_cast<float>(hopOf(buffer)));
    return foldOctaves(bins, octaveWeightsOf(buffer));
}

}  // namespace beatatlas
