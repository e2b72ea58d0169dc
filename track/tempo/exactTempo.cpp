// SPDX-License-Identifier: MIT
#include "track/tempo/exactTempo.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "track/tempo/median.h"

namespace beatatlas::track::inner {

namespace {

// The tempi of sessions are off by less than this share.
constexpr double kSessionShare = 0.012;
// In units of a track's resolution (one beat more or less over its length) at the first harmonic.
// At the eighth harmonic it is most of such a unit.
constexpr double kStep = 0.1;
constexpr double kClearlyStronger = 1.02;
// For a pulse of another metre. With a lower threshold dotted rhythms would take over the tempo.
constexpr double kFarStronger = 1.5;
constexpr double kRatioShare = 0.004;
constexpr std::array<double, 4> kRatios = {3.0 / 2.0, 2.0 / 3.0, 4.0 / 3.0, 3.0 / 4.0};
constexpr double kTiny = 1e-12;
constexpr double kSlowestHz = 0.5;
constexpr int kTempi = 768;
constexpr double kTempoStep = 0.003;  // of the logarithm

}  // namespace

Pulse strongestPulseNear(PulseSpectrum& spectrum, double seconds, double hz, double share) {
    const double first = hz * (1.0 - share);
    const double step = kStep / seconds;
    std::vector<double> strengths;
    std::size_t best = 0;
    const double steps = std::max(1.0, std::ceil(2.0 * share * hz / step));
    strengths.reserve(static_cast<std::size_t>(steps));
    for (double i = 0.0; i < steps; ++i) {
        strengths.push_back(spectrum.pulse(first + i * step));
        if (strengths.back() > strengths[best]) best = strengths.size() - 1;
    }
    double place = static_cast<double>(best);
    if (best > 0 && best + 1 < strengths.size()) {
        const double before = strengths[best - 1];
        const double after = strengths[best + 1];
        place += 0.5 * (before - after) / (before - 2.0 * strengths[best] + after - kTiny);
    }
    return {first + place * step, strengths[best]};
}

Pulse findExactTempo(PulseSpectrum& spectrum, double seconds, const std::vector<double>& proposed) {
    Pulse best;
    for (const double hz : proposed) {
        const Pulse pulse = strongestPulseNear(spectrum, seconds, hz, kSessionShare);
        if (pulse.strength > kClearlyStronger * best.strength) best = pulse;
    }
    if (best.hz == 0.0) return best;
    Pulse related = best;
    const Pulse centred = strongestPulseNear(spectrum, seconds, best.hz, kRatioShare);
    double most = centred.strength;
    for (const double ratio : kRatios) {
        const Pulse pulse = strongestPulseNear(spectrum, seconds, best.hz * ratio, kRatioShare);
        if (pulse.strength <= most || pulse.strength <= kFarStronger * centred.strength) continue;
        most = pulse.strength;
        related = pulse;
    }
    return related;
}

double clarityOf(const PulseSpectrum& spectrum, double hz) {
    std::vector<double> strengths;
    strengths.reserve(kTempi);
    for (int i = 0; i < kTempi; ++i)
        strengths.push_back(spectrum.singlePulse(kSlowestHz * std::exp(kTempoStep * i)));
    return spectrum.singlePulse(hz) / (medianOf(strengths) + kTiny);
}

}  // namespace beatatlas::track::inner
