// SPDX-License-Identifier: MIT
// Method: bars begin where chords change.
//   1. the mean chroma of each beat
//   2. how far the harmony before each beat differs from that after it, over one, two and four beats
//   3. bars of three or four beats, whichever these changes recur with
//   4. the beat of the bar on which changes, bass and a session's bars meet
#include "track/tempo/bars.h"

#include <algorithm>
#include <cmath>

#include "track/tempo/places.h"

namespace beatatlas::track::inner {

namespace {

constexpr std::array<BarWeight, kBarFeatures> kWeights = {{
    {"c1", 7.0},
    {"c2", 4.5},
    {"c4", 5.0},
    {"b_lo", 5.0},
    {"v_simple", 2.7},
}};

constexpr std::array<std::size_t, 3> kSpans = {1, 2, 4};  // beats before and after
constexpr double kMostStrength = 5.0;
constexpr double kChangeFloor = 0.001;
constexpr double kBassFloor = 0.05;
constexpr double kTiny = 1e-9;
// In standard deviations of the mean: triple metre is rare.
constexpr double kTripleLead = 3.0;

using ChromaSum = std::array<double, 12>;

/** Sums of the chroma of all beats before each one, and of all. */
std::vector<ChromaSum> sumsBefore(const std::vector<Chroma>& chroma,
                                  const std::vector<double>& beats) {
    const auto last = static_cast<double>(chroma.size() - 1);
    const double end = 2.0 * beats.back() - beats[beats.size() - 2];
    const auto frameAt = [](double time) {
        return std::nearbyint(time * ChromaStream::kFramesPerSecond);
    };
    std::vector<ChromaSum> sums(beats.size() + 1);
    for (std::size_t k = 0; k < beats.size(); ++k) {
        const double next = k + 1 < beats.size() ? beats[k + 1] : end;
        const auto from = static_cast<std::size_t>(std::clamp(frameAt(beats[k]), 0.0, last));
        const auto to = static_cast<std::size_t>(
            std::clamp(frameAt(next), static_cast<double>(from) + 1.0, last + 1.0));
        sums[k + 1] = sums[k];
        for (std::size_t i = from; i < to; ++i)
            for (std::size_t p = 0; p < chroma[i].size(); ++p)
                sums[k + 1][p] +=
                    static_cast<double>(chroma[i][p]) / static_cast<double>(to - from);
    }
    return sums;
}

/** The direction of the sum of the beats from … to − 1. */
ChromaSum directionOf(const std::vector<ChromaSum>& sums, std::size_t from, std::size_t to) {
    ChromaSum direction;
    double squares = 0.0;
    for (std::size_t p = 0; p < direction.size(); ++p) {
        direction[p] = (sums[to][p] - sums[from][p]) / static_cast<double>(to - from);
        squares += direction[p] * direction[p];
    }
    for (double& value : direction) value /= std::sqrt(squares) + kTiny;
    return direction;
}

/** The distance between the directions of so many beats before and after each beat; 0 at the first. */
std::vector<double> changesOver(std::size_t span, const std::vector<ChromaSum>& sums) {
    const std::size_t beats = sums.size() - 1;
    std::vector<double> changes(beats);
    for (std::size_t k = 1; k < beats; ++k) {
        const ChromaSum before = directionOf(sums, k > span ? k - span : 0, k);
        const ChromaSum after = directionOf(sums, k, std::min(beats, k + span));
        double squares = 0.0;
        for (std::size_t p = 0; p < before.size(); ++p)
            squares += (before[p] - after[p]) * (before[p] - after[p]);
        changes[k] = std::sqrt(squares);
    }
    return changes;
}

/** The mean of every step-th value from phase on. */
double meanOf(const std::vector<double>& values, std::size_t phase, std::size_t step) {
    double sum = 0.0;
    std::size_t count = 0;
    for (std::size_t i = phase; i < values.size(); i += step, ++count) sum += values[i];
    return sum / static_cast<double>(std::max<std::size_t>(count, 1));
}

double deviationOf(const std::vector<double>& values) {
    const double mean = meanOf(values, 0, 1);
    double squares = 0.0;
    for (const double value : values) squares += (value - mean) * (value - mean);
    return std::sqrt(squares / static_cast<double>(values.size()));
}

/** How far the best phase of so many beats a bar stands out, in standard deviations of a mean. */
double recurrence(const std::vector<double>& changes, std::size_t beats) {
    const double mean = meanOf(changes, 0, 1);
    double most = 0.0;
    for (std::size_t phase = 0; phase < beats; ++phase)
        most = std::max(most, meanOf(changes, phase, beats) - mean);
    const double bars = static_cast<double>(changes.size()) / static_cast<double>(beats);
    return most / (deviationOf(changes) + kTiny) * std::sqrt(bars);
}

double medianInterval(const std::vector<double>& beats) {
    std::vector<double> intervals;
    for (std::size_t k = 1; k < beats.size(); ++k) intervals.push_back(beats[k] - beats[k - 1]);
    const auto middle = intervals.begin() + static_cast<std::ptrdiff_t>(intervals.size() / 2);
    std::nth_element(intervals.begin(), middle, intervals.end());
    return *middle;
}

/** The share of downbeats that lie within a quarter of a beat of a beat of each phase. */
std::vector<double> votesOf(const std::vector<double>& downbeats, const std::vector<double>& beats,
                            std::size_t perBar) {
    std::vector<double> votes(perBar);
    const double near = 0.25 * medianInterval(beats);
    for (const double downbeat : downbeats) {
        const auto nearest = static_cast<std::size_t>(std::nearbyint(placeOf(downbeat, beats)));
        if (std::abs(beats[nearest] - downbeat) < near)
            votes[nearest % perBar] += 1.0 / static_cast<double>(downbeats.size());
    }
    return votes;
}

std::vector<double> bassAt(const OnsetEnvelopes& onsets, const std::vector<double>& beats) {
    std::vector<double> bass;
    bass.reserve(beats.size());
    for (const double beat : beats)
        bass.push_back(std::min(static_cast<double>(onsets.strengthAt(beat)[0]), kMostStrength));
    return bass;
}

void rank(std::vector<BarHypothesis>& readings) {
    for (BarHypothesis& reading : readings)
        for (std::size_t i = 0; i < kBarFeatures; ++i)
            reading.score += kWeights[i].weight * reading.features[i];
    std::stable_sort(readings.begin(), readings.end(),
                     [](const auto& a, const auto& b) { return a.score > b.score; });
    double sum = 0.0;
    for (BarHypothesis& reading : readings)
        sum += reading.share = std::exp(reading.score - readings.front().score);
    for (BarHypothesis& reading : readings) reading.share /= sum;
}

}  // namespace

const std::array<BarWeight, kBarFeatures>& barWeights() {
    return kWeights;
}

std::vector<BarHypothesis> judgeBars(const OnsetEnvelopes& onsets,
                                     const std::vector<Chroma>& chroma,
                                     const std::vector<double>& beats,
                                     const std::vector<double>& sessionDownbeats) {
    const std::vector<ChromaSum> sums = sumsBefore(chroma, beats);
    std::array<std::vector<double>, kSpans.size()> changes;
    for (std::size_t i = 0; i < kSpans.size(); ++i) changes[i] = changesOver(kSpans[i], sums);
    std::vector<double> local = changes[0];
    for (std::size_t k = 0; k < local.size(); ++k) local[k] += changes[1][k];
    const bool isTriple = recurrence(local, 3) > recurrence(local, 4) + kTripleLead;
    const std::size_t perBar = isTriple ? 3 : 4;
    const std::vector<double> votes = votesOf(sessionDownbeats, beats, perBar);
    const std::vector<double> bass = bassAt(onsets, beats);
    const auto ratio = [perBar](const std::vector<double>& values, std::size_t phase,
                                double floor) {
        return std::log((meanOf(values, phase, perBar) + floor) / (meanOf(values, 0, 1) + floor));
    };
    std::vector<BarHypothesis> readings;
    for (std::size_t phase = 0; phase < perBar; ++phase) {
        BarHypothesis reading{static_cast<int>(perBar), static_cast<int>(phase), {}, 0.0, 0.0};
        for (std::size_t i = 0; i < kSpans.size(); ++i)
            reading.features[i] = ratio(changes[i], phase, kChangeFloor);
        reading.features[static_cast<std::size_t>(BarFeature::bass)] =
            ratio(bass, phase, kBassFloor);
        reading.features[static_cast<std::size_t>(BarFeature::sessionVotes)] = votes[phase];
        readings.push_back(reading);
    }
    rank(readings);
    return readings;
}

}  // namespace beatatlas::track::inner
