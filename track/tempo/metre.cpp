// SPDX-License-Identifier: MIT
#include "track/tempo/metre.h"

#include <algorithm>
#include <cmath>

#include "track/tempo/places.h"

namespace beatatlas::track::inner {

namespace {

using Groups = std::array<double, kGroups>;

// Snares, chords and melody mark beats. Hats sit on off-beats, and so does the bass of much dance music, which is left
// out. The tempo counts as in a log-normal distribution; where all sixteenths are equally strong they may really be
// eighths, and the tempo may double.
constexpr std::array<MetreWeight, kMetreFeatures> kWeights = {{
    {"r_mi", 0.41},
    {"r_hm", 1.91},
    {"r_hi", -1.75},
    {"v_varied", 4.13},
    {"l", 1.75},
    {"l2", -1.40},
    {"up_odd", 2.81},
}};

constexpr std::array<int, 3> kPeriods = {2, 4, 8};
constexpr double kUsualBpm = 130.0;
constexpr double kMostStrength = 6.0;  // of a group's mean
constexpr double kRatioFloor = 0.02;
constexpr double kEvenFloor = 0.05;
constexpr double kTiny = 1e-9;

/** The strengths of all groups at the sixteenths, in parts of each group's mean; single loud ones clipped. */
std::vector<Groups> strengthsAt(const OnsetEnvelopes& onsets, const std::vector<double>& times) {
    std::vector<Groups> strengths(times.size());
    Groups sums{};
    for (std::size_t i = 0; i < times.size(); ++i) {
        const OnsetEnvelopes::Groups at = onsets.strengthAt(times[i]);
        for (std::size_t g = 0; g < kGroups; ++g) {
            strengths[i][g] = static_cast<double>(at[g]);
            sums[g] += strengths[i][g];
        }
    }
    for (std::size_t g = 0; g < kGroups; ++g) {
        const double mean = sums[g] / static_cast<double>(times.size());
        for (Groups& at : strengths) at[g] = std::min(at[g], kMostStrength * mean) / (mean + kTiny);
    }
    return strengths;
}

/** Means over every period-th sixteenth from phase on. */
Groups meanOf(const std::vector<Groups>& strengths, int phase, int period) {
    Groups means{};
    std::size_t count = 0;
    for (auto i = static_cast<std::size_t>(phase); i < strengths.size();
         i += static_cast<std::size_t>(period), ++count)
        for (std::size_t g = 0; g < kGroups; ++g) means[g] += strengths[i][g];
    for (double& mean : means) mean /= static_cast<double>(std::max<std::size_t>(count, 1));
    return means;
}

/** The share of a session's beats that fall on each sixteenth of four. */
std::array<double, 4> votesOf(const std::vector<double>& beats,
                              const std::vector<double>& sixteenths) {
    std::array<double, 4> votes{};
    for (const double beat : beats) {
        const double place = std::nearbyint(placeOf(beat, sixteenths));
        votes[static_cast<std::size_t>(place) % 4] += 1.0 / static_cast<double>(beats.size());
    }
    return votes;
}

/** 0 when even and odd sixteenths are alike, below −1 when little lies between the eighths. */
double evenness(const std::vector<Groups>& strengths) {
    const Groups even = meanOf(strengths, 0, 2);
    const Groups odd = meanOf(strengths, 1, 2);
    const double onEven = 0.5 * (even[2] + even[3]);
    const double onOdd = 0.5 * (odd[2] + odd[3]);
    return std::log((std::min(onEven, onOdd) + kEvenFloor) /
                    (std::max(onEven, onOdd) + kEvenFloor));
}

double& at(MetreHypothesis& hypothesis, MetreFeature feature) {
    return hypothesis.features[static_cast<std::size_t>(feature)];
}

void compareOffBeats(const std::vector<Groups>& strengths, MetreHypothesis& reading) {
    const Groups on = meanOf(strengths, reading.phase, reading.period);
    const Groups off =
        meanOf(strengths, (reading.phase + reading.period / 2) % reading.period, reading.period);
    const auto ratio = [&](std::size_t g) {
        return std::log((on[g] + kRatioFloor) / (off[g] + kRatioFloor));
    };
    at(reading, MetreFeature::middleOnBeat) = ratio(2);
    at(reading, MetreFeature::highMiddleOnBeat) = ratio(3);
    at(reading, MetreFeature::highOnBeat) = ratio(4);
}

double scoreOf(const MetreHypothesis& reading) {
    double score = 0.0;
    for (std::size_t i = 0; i < kMetreFeatures; ++i)
        score += kWeights[i].weight * reading.features[i];
    return score;
}

void rank(std::vector<MetreHypothesis>& readings) {
    std::stable_sort(readings.begin(), readings.end(),
                     [](const auto& a, const auto& b) { return a.score > b.score; });
    double sum = 0.0;
    for (MetreHypothesis& reading : readings)
        sum += reading.share = std::exp(reading.score - readings.front().score);
    for (MetreHypothesis& reading : readings) reading.share /= sum;
}

}  // namespace

const std::array<MetreWeight, kMetreFeatures>& metreWeights() {
    return kWeights;
}

std::vector<MetreHypothesis> judgeMetre(const OnsetEnvelopes& onsets,
                                        const std::vector<double>& sixteenths, double bpm,
                                        const std::vector<double>& sessionBeats) {
    const std::vector<Groups> strengths = strengthsAt(onsets, sixteenths);
    const std::array<double, 4> votes = votesOf(sessionBeats, sixteenths);
    const double even = evenness(strengths);
    std::vector<MetreHypothesis> readings;
    for (const int period : kPeriods) {
        for (int phase = 0; phase < period; ++phase) {
            MetreHypothesis reading{period, phase, bpm * 4.0 / period, {}, 0.0, 0.0};
            compareOffBeats(strengths, reading);
            const auto vote = static_cast<std::size_t>(phase);
            at(reading, MetreFeature::sessionVotes) =
                period == 2 ? votes[vote] + votes[vote + 2] : votes[vote % 4];
            const double octaves = std::log2(reading.bpm / kUsualBpm);
            at(reading, MetreFeature::tempo) = octaves;
            at(reading, MetreFeature::tempoSquared) = octaves * octaves;
            at(reading, MetreFeature::evenSixteenths) = period == 2 ? even : 0.0;
            reading.score = scoreOf(reading);
            readings.push_back(reading);
        }
    }
    rank(readings);
    return readings;
}

}  // namespace beatatlas::track::inner
