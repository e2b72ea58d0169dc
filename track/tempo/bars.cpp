// SPDX-License-Identifier: MIT
// Method: a list of possible bars, features of each, and a logistic model that weighs them.
//   1. for each beat: its onset strength, the level until the next beat, the chords
//   2. how much the chords change at each beat, after how many beats the onsets repeat, where the
//      level changes most
//   3. for each length and phase of bars, these values on the downbeats
#include "track/tempo/bars.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>

#include "track/tempo/BeatLine.h"
#include "track/tempo/median.h"
#include "track/tempo/softmax.h"

namespace beatatlas::track::inner {

namespace {

using Groups = std::array<double, kGroups>;

constexpr std::array<std::size_t, 3> kBeatsPerBar = {3, 4, 5};
constexpr std::size_t kBeatsWithBackbeat = 4;
constexpr std::size_t kLongestRepetition = 8;
constexpr std::size_t kRepeatingGroups = 4;  // hats repeat with every beat
constexpr std::size_t kNewnessBeats = 4;
constexpr std::size_t kLeastNewBeats = 4;
constexpr std::size_t kBeatsPerNewBeat = 16;
constexpr double kNear = 0.25;  // of a beat
constexpr double kRatioFloor = 0.05;
constexpr double kTinyDeviation = 1e-6;
constexpr double kTiny = 1e-9;

/** The mean of every step-th value, starting at phase. */
template <class Values, class Read>
double meanOf(const Values& values, std::size_t phase, std::size_t step, const Read& read) {
    double sum = 0.0;
    double count = 0.0;
    for (std::size_t k = phase; k < values.size(); k += step, ++count) sum += read(values[k]);
    return sum / count;
}

double meanOf(const std::vector<double>& values, std::size_t phase, std::size_t step) {
    return meanOf(values, phase, step, [](double value) { return value; });
}

double groupMeanOf(const std::vector<Groups>& rows, std::size_t group, std::size_t phase,
                   std::size_t step) {
    return meanOf(rows, phase, step, [group](const Groups& row) { return row[group]; });
}

template <class Values, class Read>
double deviationOf(const Values& values, const Read& read) {
    const double mean = meanOf(values, 0, 1, read);
    return std::sqrt(meanOf(values, 0, 1, [&](const auto& value) {
        return (read(value) - mean) * (read(value) - mean);
    }));
}

/** The means of the rows between each beat and the next. */
template <class Mean, class Row>
std::vector<Mean> meansPerBeat(const std::vector<Row>& rows, double rowsPerSecond,
                               const std::vector<double>& beats) {
    const auto end = static_cast<double>(rows.size());
    const auto rowAt = [&](double time) {
        return static_cast<std::size_t>(
            std::clamp(std::floor(time * rowsPerSecond + 0.5), 0.0, end));
    };
    std::vector<Mean> means(beats.size());
    for (std::size_t k = 0; k < beats.size(); ++k) {
        const double next = k + 1 < beats.size() ? beats[k + 1] : 2.0 * beats[k] - beats[k - 1];
        const std::size_t from = rowAt(beats[k]);
        const std::size_t to = rowAt(next);
        const auto count = static_cast<double>(std::max<std::size_t>(1, to - from));
        for (std::size_t i = from; i < to; ++i)
            for (std::size_t c = 0; c < means[k].size(); ++c)
                means[k][c] += static_cast<double>(rows[i][c]) / count;
    }
    return means;
}

/** The mean of the rows from … to − 1. */
template <class Row>
Row meanBetween(const std::vector<Row>& rows, std::size_t from, std::size_t to) {
    Row mean{};
    for (std::size_t k = from; k < to; ++k)
        for (std::size_t c = 0; c < mean.size(); ++c)
            mean[c] += rows[k][c] / static_cast<double>(to - from);
    return mean;
}

/** For each beat, the distance between the chords of one beat before and after it, plus the same
 *  for two beats. */
std::vector<double> chordChangesOf(const std::vector<ChromaSum>& chords) {
    std::vector<double> changes(chords.size());
    for (std::size_t k = 1; k < chords.size(); ++k)
        for (const std::size_t span : {std::size_t{1}, std::size_t{2}})
            changes[k] += chordDistance(meanBetween(chords, k > span ? k - span : 0, k),
                                        meanBetween(chords, k, std::min(chords.size(), k + span)));
    return changes;
}

/** The similarity of the onsets to those 1 … 8 beats later. */
std::array<double, kLongestRepetition> repetitionsOf(const std::vector<Groups>& strengths) {
    std::vector<Groups> rows = strengths;
    for (std::size_t g = 0; g < kRepeatingGroups; ++g) {
        const auto read = [g](const Groups& row) { return row[g]; };
        const double mean = meanOf(strengths, 0, 1, read);
        const double unit = deviationOf(strengths, read) + kTinyDeviation;
        for (Groups& row : rows) row[g] = (row[g] - mean) / unit;
    }
    std::array<double, kLongestRepetition> repetitions{};
    for (std::size_t lag = 1; lag <= kLongestRepetition; ++lag) {
        double sum = 0.0;
        for (std::size_t k = 0; k + lag < rows.size(); ++k)
            for (std::size_t g = 0; g < kRepeatingGroups; ++g) sum += rows[k][g] * rows[k + lag][g];
        repetitions[lag - 1] = sum / static_cast<double>(kRepeatingGroups * (rows.size() - lag));
    }
    return repetitions;
}

/** How much the level of four beats differs from that of the four before; 0 except at the sixteenth
 *  of the beats where it differs most. */
std::vector<double> newnessOf(const std::vector<Groups>& levels) {
    std::vector<double> newness(levels.size());
    for (std::size_t k = 1; k < levels.size(); ++k) {
        const Groups before = meanBetween(levels, k > kNewnessBeats ? k - kNewnessBeats : 0, k);
        const Groups after = meanBetween(levels, k, std::min(levels.size(), k + kNewnessBeats));
        for (std::size_t g = 0; g < kGroups; ++g)
            newness[k] += std::abs(after[g] - before[g]) / static_cast<double>(kGroups);
    }
    std::vector<std::size_t> order(newness.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return newness[a] > newness[b] || (newness[a] == newness[b] && a < b);
    });
    const std::size_t kept = std::max(kLeastNewBeats, newness.size() / kBeatsPerNewBeat);
    for (std::size_t i = kept; i < order.size(); ++i) newness[order[i]] = 0.0;
    return newness;
}

/** The beats on which a session's bars begin. */
class Votes {
public:
    Votes(const std::vector<double>& downbeats, const BeatLine& line)
        : count_(static_cast<double>(downbeats.size())) {
        const std::vector<double>& beats = line.seconds();
        std::vector<double> intervals;
        for (std::size_t k = 1; k < beats.size(); ++k) intervals.push_back(beats[k] - beats[k - 1]);
        const double near = kNear * medianOf(intervals);
        for (const double downbeat : downbeats) {
            if (downbeat < beats.front() || downbeat > beats.back()) continue;
            const auto nearest = static_cast<std::size_t>(std::nearbyint(line.placeOf(downbeat)));
            if (std::abs(beats[nearest] - downbeat) < near) beats_.push_back(nearest);
        }
    }

    double shareOf(std::size_t phase, std::size_t perBar) const {
        const auto votes = std::count_if(beats_.begin(), beats_.end(),
                                         [&](std::size_t beat) { return beat % perBar == phase; });
        return static_cast<double>(votes) / std::max(1.0, count_);
    }

private:
    double count_;
    std::vector<std::size_t> beats_;
};

/** Values of the beats that do not depend on the bars, and the features of bars computed from
 *  them. */
class BarJudge {
public:
    BarJudge(const Evidence& evidence, const std::vector<double>& beats)
        : levels_(meansPerBeat<Groups>(evidence.onsets.level, OnsetEnvelopes::kFramesPerSecond,
                                       beats)) {
        for (const double beat : beats) {
            const auto& strength = evidence.onsets.strength[evidence.onsets.frameAt(beat)];
            Groups& row = strengths_.emplace_back();
            std::copy(strength.begin(), strength.end(), row.begin());
        }
        changes_ = chordChangesOf(
            meansPerBeat<ChromaSum>(evidence.chroma, ChromaStream::kFramesPerSecond, beats));
        changeMean_ = meanOf(changes_, 0, 1);
        changeDeviation_ = deviationOf(changes_, [](double value) { return value; }) + kTiny;
        repetitions_ = repetitionsOf(strengths_);
        newness_ = newnessOf(levels_);
    }

    BarFeatures featuresOf(std::size_t perBar, std::size_t phase) const {
        BarFeatures features{};
        const auto at = [&features](BarFeature feature) -> double& {
            return features[static_cast<std::size_t>(feature)];
        };
        at(BarFeature::three) = perBar == 3 ? 1.0 : 0.0;
        at(BarFeature::five) = perBar == 5 ? 1.0 : 0.0;
        at(BarFeature::chordChanges) = changesOn(perBar, phase);
        at(BarFeature::repetition) = repetitionOf(perBar);
        at(BarFeature::newness) = newnessOn(perBar, phase);
        at(BarFeature::backbeat) = perBar == kBeatsWithBackbeat ? backbeatOf(phase) : 0.0;
        at(BarFeature::middle) = strengthOn(kMiddle, perBar, phase);
        at(BarFeature::bass) = strengthOn(kLow, perBar, phase);
        at(BarFeature::middleLevel) =
            groupMeanOf(levels_, kMiddle, phase, perBar) - groupMeanOf(levels_, kMiddle, 0, 1);
        return features;
    }

private:
    double changesOn(std::size_t perBar, std::size_t phase) const {
        const double bars = static_cast<double>(changes_.size()) / static_cast<double>(perBar);
        return (meanOf(changes_, phase, perBar) - changeMean_) / changeDeviation_ * std::sqrt(bars);
    }

    double repetitionOf(std::size_t perBar) const {
        double sum = 0.0;
        for (const double repetition : repetitions_) sum += repetition;
        return repetitions_[perBar - 1] - sum / static_cast<double>(repetitions_.size());
    }

    double newnessOn(std::size_t perBar, std::size_t phase) const {
        double on = 0.0;
        double all = 0.0;
        for (std::size_t k = 0; k < newness_.size(); ++k) {
            all += newness_[k];
            if (k % perBar == phase) on += newness_[k];
        }
        return static_cast<double>(perBar) * on / (all + kTiny);
    }

    double backbeatOf(std::size_t phase) const {
        const auto on = [this, phase](std::size_t beat) {
            return groupMeanOf(strengths_, kHighMiddle, (phase + beat) % kBeatsWithBackbeat,
                               kBeatsWithBackbeat);
        };
        return std::log((on(1) + on(3) + kRatioFloor) / (on(0) + on(2) + kRatioFloor));
    }

    double strengthOn(std::size_t group, std::size_t perBar, std::size_t phase) const {
        return std::log((groupMeanOf(strengths_, group, phase, perBar) + kRatioFloor) /
                        (groupMeanOf(strengths_, group, 0, 1) + kRatioFloor));
    }

    std::vector<Groups> strengths_;
    std::vector<Groups> levels_;
    std::vector<double> changes_;  // of the chords
    double changeMean_ = 0.0;
    double changeDeviation_ = 1.0;
    std::array<double, kLongestRepetition> repetitions_{};
    std::vector<double> newness_;
};

}  // namespace

std::vector<BarReading> judgeBars(const Evidence& evidence, const std::vector<double>& beats,
                                  const std::vector<double>& simpleDownbeats,
                                  const std::vector<double>& variedDownbeats) {
    const BarJudge judge(evidence, beats);
    const BeatLine line(beats);
    const Votes simple(simpleDownbeats, line);
    const Votes varied(variedDownbeats, line);
    std::vector<BarReading> readings;
    for (const std::size_t perBar : kBeatsPerBar) {
        for (std::size_t phase = 0; phase < perBar; ++phase) {
            BarReading reading;
            reading.beats = static_cast<int>(perBar);
            reading.phase = static_cast<int>(phase);
            reading.features = judge.featuresOf(perBar, phase);
            reading.features[static_cast<std::size_t>(BarFeature::simpleVotes)] =
                simple.shareOf(phase, perBar);
            reading.features[static_cast<std::size_t>(BarFeature::variedVotes)] =
                varied.shareOf(phase, perBar);
            readings.push_back(reading);
        }
    }
    rankByScore(readings, kBarWeights);
    return readings;
}

}  // namespace beatatlas::track::inner
