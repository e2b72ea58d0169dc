// SPDX-License-Identifier: MIT
#include "track/tempo/steadiness.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>

#include "track/evidence/OnsetEnvelopes.h"

namespace beatatlas::track::inner {

namespace {

using Complex = std::complex<double>;

constexpr std::size_t kWindowFrames = 1200;
constexpr double kTiny = 1e-9;

double meanOf(const std::vector<float>& values) {
    double sum = 0.0;
    for (const float value : values) sum += static_cast<double>(value);
    return sum / static_cast<double>(values.size());
}

/** e^(−2πi·rounds) */
Complex turn(double rounds) {
    const double angle = -2.0 * std::numbers::pi * (rounds - std::floor(rounds));
    return {std::cos(angle), std::sin(angle)};
}

/** What the frames from … to − 1 see of a frequency, in cycles a frame; their phases count from the track's start. */
Complex seenIn(const std::vector<float>& sharp, double mean, std::size_t from, std::size_t to,
               double cycles) {
    const Complex step = turn(cycles);
    Complex phase = turn(cycles * static_cast<double>(from));
    Complex sum;
    for (std::size_t t = from; t < to; ++t) {
        sum += (static_cast<double>(sharp[t]) - mean) * phase;
        phase = {phase.real() * step.real() - phase.imag() * step.imag(),
                 phase.real() * step.imag() + phase.imag() * step.real()};
    }
    return sum;
}

double coherenceAt(const std::vector<float>& sharp, double mean, double hz) {
    const double cycles = hz / OnsetEnvelopes::kFramesPerSecond;
    Complex sum;
    double sumOfMagnitudes = 0.0;
    for (std::size_t from = 0; from < sharp.size(); from += kWindowFrames) {
        const std::size_t to = std::min(sharp.size(), from + kWindowFrames);
        const Complex seen = seenIn(sharp, mean, from, to, cycles);
        sum += seen;
        sumOfMagnitudes += std::abs(seen);
    }
    return std::abs(sum) / (sumOfMagnitudes + kTiny);
}

}  // namespace

// Eighths and sixteenths: a beat that moves within its bar keeps them.
double coherence(const std::vector<float>& sharp, double hz) {
    const double mean = meanOf(sharp);
    return std::max(coherenceAt(sharp, mean, 2.0 * hz), coherenceAt(sharp, mean, 4.0 * hz));
}

}  // namespace beatatlas::track::inner
