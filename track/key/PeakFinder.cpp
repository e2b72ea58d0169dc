// SPDX-License-Identifier: MIT
#include "track/key/PeakFinder.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "track/key/frameChroma.h"

namespace beatatlas::track::inner {

namespace {

constexpr double kConcertPitchHz = 440.0;
constexpr double kLowestHz = 40.0;
constexpr double kHighestHz = 3000.0;
// Relative to the largest power. The first is a thousandth in amplitude.
constexpr float kLeastPower = 1e-6F;
constexpr float kLeastForTuning = 0.03F * 0.03F;
constexpr double kLeastForLog = 1e-60;
constexpr double kLeastCurve = 1e-9;

/** The logarithm of a bin's amplitude. */
double levelOf(float power) {
    return 0.5 * std::log(std::max(static_cast<double>(power), kLeastForLog));
}

}  // namespace

double pitchOf(double hz) {
    return kPitchOfA4 + 12.0 * std::log2(hz / kConcertPitchHz);
}

double hzOfPitch(double pitch) {
    return kConcertPitchHz * std::exp2((pitch - kPitchOfA4) / 12.0);
}

// Every bin must have neighbours on both sides.
PeakFinder::PeakFinder(double rate, int points)
    : hzPerBin_(rate / points), firstBin_(static_cast<int>(kLowestHz / hzPerBin_)),
      endBin_(std::min(static_cast<int>(kHighestHz / hzPerBin_), points / 2 - 1)),
      weights_(static_cast<std::size_t>(endBin_)) {
    for (int bin = firstBin_; bin < endBin_; ++bin) {
        const float weight = octaveWeight(static_cast<float>(pitchOf(bin * hzPerBin_)));
        weights_[static_cast<std::size_t>(bin)] = weight * weight;
    }
    bins_.reserve(weights_.size());
}

float PeakFinder::find(const float* powers, std::vector<SpectralPeak>& peaks) {
    peaks.clear();
    const float largest = *std::max_element(powers + firstBin_, powers + endBin_);
    if (!(largest > 0.0F)) return 0.0F;
    const float leastHeard = kLeastHeard * kLeastHeard * findBins(powers, largest);
    const float leastForTuning = kLeastForTuning * largest;
    const double largestLevel = levelOf(largest);
    for (const int bin : bins_)
        if (powers[bin] > leastForTuning ||
            powers[bin] * weights_[static_cast<std::size_t>(bin)] > leastHeard)
            peaks.push_back(place(powers, bin, largestLevel));
    return std::sqrt(largest);
}

/** Lists the maxima. @return the largest of their powers, weighted as in a chroma */
float PeakFinder::findBins(const float* powers, float largest) {
    bins_.clear();
    const float least = kLeastPower * largest;
    float most = 0.0F;
    for (int bin = firstBin_; bin < endBin_; ++bin) {
        if (!(powers[bin] > powers[bin - 1] && powers[bin] >= powers[bin + 1])) continue;
        if (powers[bin] <= least) continue;
        bins_.push_back(bin);
        most = std::max(most, powers[bin] * weights_[static_cast<std::size_t>(bin)]);
    }
    return most;
}

/** The vertex of the parabola through the logarithms of a bin and its neighbours. */
SpectralPeak PeakFinder::place(const float* powers, int bin, double largestLevel) const {
    const double before = levelOf(powers[bin - 1]);
    const double middle = levelOf(powers[bin]);
    const double after = levelOf(powers[bin + 1]);
    const double curve = std::min(before - 2.0 * middle + after, -kLeastCurve);
    const double at = std::clamp(0.5 * (before - after) / curve, -0.5, 0.5);
    const double level = middle - 0.25 * (before - after) * at;
    return {static_cast<float>(pitchOf((bin + at) * hzPerBin_)),
            static_cast<float>(std::exp(level - largestLevel))};
}

}  // namespace beatatlas::track::inner
