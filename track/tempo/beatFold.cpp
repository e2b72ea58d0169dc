// SPDX-License-Identifier: MIT
// Method: all beats of the track are averaged over the phase of the beat; the peak of the mean
// shows where the beat lies.
#include "track/tempo/beatFold.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "track/evidence/OnsetEnvelopes.h"
#include "track/tempo/parabola.h"

namespace beatatlas::track::inner {

namespace {

constexpr int kBins = 256;  // of a beat
// About how far onsets of one position scatter in played music.
constexpr double kSmoothSeconds = 0.024;
constexpr double kSearchSeconds = 0.02;
constexpr double kTiny = 1e-9;

using Fold = std::array<double, kBins>;

std::size_t wrapped(int bin) {
    return static_cast<std::size_t>(((bin % kBins) + kBins) % kBins);
}

/** The mean of the onsets at each phase of the beat; an onset between two bins is shared by
 *  both. */
Fold foldBeats(const std::vector<float>& sharp, double hz) {
    Fold sums{};
    Fold weights{};
    for (std::size_t frame = 0; frame < sharp.size(); ++frame) {
        const double beats = static_cast<double>(frame) / OnsetEnvelopes::kFramesPerSecond * hz;
        const double place = (beats - std::floor(beats)) * kBins;
        const int bin = static_cast<int>(place);
        const double share = place - bin;
        const double value = static_cast<double>(sharp[frame]);
        sums[wrapped(bin)] += value * (1.0 - share);
        weights[wrapped(bin)] += 1.0 - share;
        sums[wrapped(bin + 1)] += value * share;
        weights[wrapped(bin + 1)] += share;
    }
    for (std::size_t bin = 0; bin < kBins; ++bin) sums[bin] /= std::max(weights[bin], kTiny);
    return sums;
}

/** Smooths each bin with its neighbours, weighted by a triangle. */
Fold smooth(const Fold& fold, double hz) {
    const double width = std::min(kSmoothSeconds * hz * kBins, double{kBins / 2});
    const int reach = static_cast<int>(width);
    Fold smoothed{};
    for (int bin = 0; bin < kBins; ++bin) {
        double sum = 0.0;
        double weights = 0.0;
        for (int d = -reach; d <= reach; ++d) {
            const double weight = 1.0 - std::abs(d) / width;
            sum += weight * fold[wrapped(bin + d)];
            weights += weight;
        }
        smoothed[wrapped(bin)] = sum / weights;
    }
    return smoothed;
}

/** The bin that is strongest together with the one half a beat later. */
int strongestEighth(const Fold& fold) {
    int strongest = 0;
    double most = -1.0;
    for (int bin = 0; bin < kBins; ++bin) {
        const double sum = fold[wrapped(bin)] + 0.5 * fold[wrapped(bin + kBins / 2)];
        if (sum <= most) continue;
        most = sum;
        strongest = bin;
    }
    return strongest;
}

int peakNear(const Fold& fold, int bin, int reach) {
    int peak = bin - reach;
    for (int at = bin - reach; at <= bin + reach; ++at)
        if (fold[wrapped(at)] > fold[wrapped(peak)]) peak = at;
    return peak;
}

}  // namespace

double firstBeat(const std::vector<float>& sharp, double hz) {
    const Fold fold = smooth(foldBeats(sharp, hz), hz);
    const int reach = static_cast<int>(kSearchSeconds * hz * kBins);
    const auto peak = wrapped(peakNear(fold, strongestEighth(fold), reach));
    const auto next = static_cast<int>(peak) + 1;
    const double top = parabolaTop(fold[wrapped(next - 2)], fold[peak], fold[wrapped(next)]);
    return (static_cast<double>(peak) + top) / (kBins * hz);
}

}  // namespace beatatlas::track::inner
