// SPDX-License-Identifier: MIT
#include "track/key/PeakFinder.h"

#include <algorithm>
#include <cmath>

namespace beatatlas::track::inner {

namespace {

constexpr double kConcertPitchHz = 440.0;
constexpr double kLowestHz = 40.0;
constexpr double kHighestHz = 3000.0;
constexpr float kLeastPower = 1e-6F;  // a thousandth of the largest amplitude
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

// A bin has to have neighbours on both sides.
PeakFinder::PeakFinder(double rate, int points)
    : hzPerBin_(rate / points), firstBin_(static_cast<int>(kLowestHz / hzPerBin_)),
      endBin_(std::min(static_cast<int>(kHighestHz / hzPerBin_), points / 2 - 1)) {}

float PeakFinder::find(const float* powers, std::vector<SpectralPeak>& peaks) const {
    peaks.clear();
    const float largest = *std::max_element(powers + firstBin_, powers + endBin_);
    if (!(largest > 0.0F)) return 0.0F;
    const float least = kLeastPower * largest;
    for (int bin = firstBin_; bin < endBin_; ++bin)
        if (powers[bin] > least && powers[bin] > powers[bin - 1] && powers[bin] >= powers[bin + 1])
            peaks.push_back(place(powers, bin, largest));
    return std::sqrt(largest);
}

/** The top of the parabola through the logarithms of a bin and its neighbours. */
SpectralPeak PeakFinder::place(const float* powers, int bin, float largest) const {
    const double before = levelOf(powers[bin - 1]);
    const double middle = levelOf(powers[bin]);
    const double after = levelOf(powers[bin + 1]);
    const double curve = std::min(before - 2.0 * middle + after, -kLeastCurve);
    const double at = std::clamp(0.5 * (before - after) / curve, -0.5, 0.5);
    const double level = middle - 0.25 * (before - after) * at;
    return {static_cast<float>(pitchOf((bin + at) * hzPerBin_)),
            static_cast<float>(std::exp(level - levelOf(largest)))};
}

}  // namespace beatatlas::track::inner
