// SPDX-License-Identifier: MIT
#include "track/key/Tuning.h"

#include <cmath>
#include <numbers>

namespace beatatlas::track::inner {

namespace {

// Lower partials lie too close together for the spectrum to resolve; higher ones are sharp on
// strings and pianos.
constexpr float kLowestPitch = 43.3506F;   // 100 Hz
constexpr float kHighestPitch = 90.2326F;  // 1,500 Hz
constexpr float kLeastStrength = 0.03F;

}  // namespace

void Tuning::add(const std::vector<SpectralPeak>& frame) {
    for (const SpectralPeak& peak : frame) {
        if (peak.pitch < kLowestPitch || peak.pitch > kHighestPitch) continue;
        if (peak.strength <= kLeastStrength) continue;
        const double turn = 2.0 * std::numbers::pi * static_cast<double>(peak.pitch);
        const double weight = std::sqrt(static_cast<double>(peak.strength));
        sum_ += std::complex(weight * std::cos(turn), weight * std::sin(turn));
    }
}

double Tuning::semitones() const {
    return std::arg(sum_) / (2.0 * std::numbers::pi);
}

}  // namespace beatatlas::track::inner
