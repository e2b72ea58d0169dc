// SPDX-License-Identifier: MIT
#include "track/tempo/steadiness.h"

#include <algorithm>
#include <array>
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
constexpr std::size_t kLeastBeats = 4;
// The evenness of fewer beats, which nobody could follow: the tempo counts as steady.
constexpr double kUnknownEvenness = 9.0;

/** A tempo is not steady if both evenness and coherence are below one of these pairs. */
struct Bound {
    double evenness;
    double coherence;
};
constexpr std::array<Bound, 3> kUnsteady = {{{0.85, 2.0}, {0.90, 0.93}, {0.97, 0.88}}};

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

/** The spectral value of frames from … to − 1 at a frequency in cycles per frame; the phase is
 *  relative to the start of the track. */
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

/** The mean onset strength on beats and half beats, shifted by a time in seconds. */
double meanOnset(const OnsetEnvelopes& onsets, const std::vector<double>& beats, double shift) {
    double sum = 0.0;
    const auto take = [&](double time) {
        sum += static_cast<double>(onsets.upper[onsets.frameAt(time + shift)]);
    };
    for (std::size_t k = 0; k < beats.size(); ++k) {
        take(beats[k]);
        if (k + 1 < beats.size()) take(beats[k] + 0.5 * (beats[k + 1] - beats[k]));
    }
    return sum / static_cast<double>(2 * beats.size() - 1);
}

/** The mean onset strength on the eighths or on the sixteenths between them, whichever is
 *  larger. */
double onsetsOn(const OnsetEnvelopes& onsets, const std::vector<double>& beats, double hz) {
    return std::max(meanOnset(onsets, beats, 0.0), meanOnset(onsets, beats, 0.25 / hz));
}

}  // namespace

// Taken at eighths and sixteenths, which stay the same when the beat moves within its bar.
double coherenceOf(const std::vector<float>& sharp, double hz) {
    const double mean = meanOf(sharp);
    return std::max(coherenceAt(sharp, mean, 2.0 * hz), coherenceAt(sharp, mean, 4.0 * hz));
}

Steadiness judgeSteadiness(const OnsetEnvelopes& onsets, double hz, const std::vector<double>& even,
                           const std::vector<double>& tracked) {
    Steadiness steadiness;
    steadiness.coherence = coherenceOf(onsets.sharp, hz);
    steadiness.evenness = kUnknownEvenness;
    if (even.size() >= kLeastBeats && tracked.size() >= kLeastBeats)
        steadiness.evenness =
            onsetsOn(onsets, even, hz) / std::max(onsetsOn(onsets, tracked, hz), kTiny);
    steadiness.isSteady = std::none_of(kUnsteady.begin(), kUnsteady.end(), [&](const Bound& bound) {
        return steadiness.evenness < bound.evenness && steadiness.coherence < bound.coherence;
    });
    return steadiness;
}

}  // namespace beatatlas::track::inner
