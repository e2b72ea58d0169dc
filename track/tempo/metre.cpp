// SPDX-License-Identifier: MIT
// Method: a list of possible readings, features of each, and a logistic model that weighs them.
// A bare pulse is judged by its tempo alone: what chords, bands and lengths of notes say of a
// single sound is chance, and could choose a reading with beats on which nothing sounds.
#include "track/tempo/metre.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <span>

#include "track/tempo/barePulse.h"
#include "track/tempo/softmax.h"

namespace beatatlas::track::inner {

namespace {

constexpr double kTwelfths = 12.0;
constexpr double kSlowestBpm = 40.0;
constexpr double kFastestBpm = 250.0;
constexpr int kLeastBeats = 8;
constexpr double kUsualBpm = 110.0;
constexpr double kUsualBar = 4.0;              // beats
constexpr double kHalfBarOfTwoSeconds = 30.0;  // tempo of a one-beat bar of two seconds, in BPM
constexpr double kRatioFloor = 0.05;
constexpr double kChangeFloor = 0.01;
constexpr double kTripleLead = 0.4;
constexpr double kOnBeat = 0.125;  // of a beat
constexpr double kTiny = 1e-6;

/** A period and the phases that make sense with it, in twelfths. */
struct Period {
    int period;
    std::array<int, 12> phases;
    std::size_t count;
};
constexpr std::array<Period, 7> kPeriods = {{
    {6, {0, 2, 3, 4}, 4},
    {8, {0, 2, 4, 6}, 4},
    {12, {0, 3, 4, 6, 8, 9}, 6},
    {16, {0, 4, 8, 12}, 4},
    {18, {0, 3, 6, 9, 12, 15}, 6},
    {24, {0, 3, 4, 6, 8, 9, 12, 15, 16, 18, 20, 21}, 12},
    {36, {0, 6, 12, 18, 24, 30}, 6},
}};

/** Positions within a beat at which the onset strengths are looked up. */
enum Part : std::size_t { kOn, kHalf, kQuarter, kThreeQuarters, kThird, kTwoThirds, kParts };
constexpr std::array<double, kParts> kPartOfBeat = {0.0, 0.5, 0.25, 0.75, 1.0 / 3.0, 2.0 / 3.0};

using Groups = std::array<double, kGroups>;

double logRatio(double a, double b) {
    return std::log((a + kRatioFloor) / (b + kRatioFloor));
}

/** How far the best phase of a period stands out, in standard deviations. */
double recurrence(const std::vector<double>& values, std::size_t period) {
    const auto count = static_cast<double>(values.size());
    double sum = 0.0;
    for (const double value : values) sum += value;
    const double mean = sum / count;
    double squares = 0.0;
    for (const double value : values) squares += (value - mean) * (value - mean);
    double most = 0.0;
    for (std::size_t phase = 0; phase < period; ++phase) {
        double phaseSum = 0.0;
        double phaseCount = 0.0;
        for (std::size_t k = phase; k < values.size(); k += period, ++phaseCount)
            phaseSum += values[k];
        if (phase == 0 || phaseSum / phaseCount > most) most = phaseSum / phaseCount;
    }
    return (most - mean) / (std::sqrt(squares / count) + kTiny);
}

class MetreJudge {
public:
    explicit MetreJudge(const MetreEvidence& evidence)
        : evidence_(evidence), onsets_(evidence.heard.onsets), changes_(evidence.heard.changes),
          variedPlaces_(placesOf(evidence.variedBeats)),
          simplePlaces_(placesOf(evidence.simpleBeats)) {
        lowMiddleSums_.reserve(onsets_.level.size() + 1);
        lowMiddleSums_.push_back(0.0);
        for (const OnsetEnvelopes::Groups& level : onsets_.level)
            lowMiddleSums_.push_back(lowMiddleSums_.back() +
                                     static_cast<double>(level[kLowMiddle]));
    }

    int beatsOf(int period, int phase) const {
        const auto twelfths = 12 * static_cast<std::int64_t>(evidence_.line.size() - 1);
        return static_cast<int>((twelfths - phase) / period);
    }

    MetreFeatures featuresOf(const MetreReading& reading) {
        beats_ = beatsOf(reading.period, reading.phase);
        features_ = {};
        compareStrengths(reading);
        compareLevels(reading);
        const double beatsPerBar = compareChords(reading);
        rateTempo(reading.bpm, beatsPerBar);
        at(MetreFeature::variedVotes) = shareOn(variedPlaces_, reading);
        at(MetreFeature::simpleVotes) = shareOn(simplePlaces_, reading);
        rateFirstOnset(reading);
        return features_;
    }

    /** The features of beats that are pulses of a bare pulse. */
    MetreFeatures featuresOfPulses(const MetreReading& reading) {
        features_ = {};
        rateTempo(reading.bpm, kUsualBar);
        rateFirstOnset(reading);
        return features_;
    }

    bool isBare(const MetreReading& reading) const {
        return isBarePulse(evidence_.heard, evidence_.line, reading.period, reading.phase,
                           beatsOf(reading.period, reading.phase));
    }

private:
    double& at(MetreFeature feature) { return features_[static_cast<std::size_t>(feature)]; }

    std::vector<double> placesOf(const std::vector<double>& beats) const {
        std::vector<double> places;
        places.reserve(beats.size());
        for (const double beat : beats) places.push_back(evidence_.line.placeOf(beat));
        return places;
    }

    double timeOf(const MetreReading& reading, double beat) const {
        return evidence_.line.timeAt((reading.phase + beat * reading.period) / kTwelfths);
    }

    void compareStrengths(const MetreReading& reading) {
        std::array<Groups, kParts> means{};
        std::array<Groups, 2> alternate{};  // for even and for odd beats
        for (int k = 0; k < beats_; ++k) {
            for (std::size_t part = 0; part < kParts; ++part) {
                const double time = timeOf(reading, k + kPartOfBeat[part]);
                const OnsetEnvelopes::Groups& strength = onsets_.strength[onsets_.frameAt(time)];
                add(strength, means[part]);
                if (part == kOn) add(strength, alternate[static_cast<std::size_t>(k % 2)]);
            }
        }
        for (Groups& sums : means) divide(sums, beats_);
        divide(alternate[0], (beats_ + 1) / 2);
        divide(alternate[1], beats_ / 2);
        setStrengths(means);
        setAlternation(alternate);
    }

    static void add(const OnsetEnvelopes::Groups& strength, Groups& sums) {
        for (std::size_t g = 0; g < kGroups; ++g) sums[g] += static_cast<double>(strength[g]);
    }

    static void divide(Groups& sums, int count) {
        for (double& sum : sums) sum /= count;
    }

    void setStrengths(const std::array<Groups, kParts>& means) {
        at(MetreFeature::lowMiddleOnBeat) = std::log(means[kOn][kLowMiddle] + kRatioFloor);
        at(MetreFeature::highMiddleOnBeat) = std::log(means[kOn][kHighMiddle] + kRatioFloor);
        at(MetreFeature::lowAgainstHalf) = logRatio(means[kOn][kLow], means[kHalf][kLow]);
        at(MetreFeature::lowAgainstThirds) =
            logRatio(means[kOn][kLow], std::max(means[kThird][kLow], means[kTwoThirds][kLow]));
        at(MetreFeature::middleAgainstQuarters) =
            logRatio(means[kOn][kMiddle] + means[kHalf][kMiddle],
                     means[kQuarter][kMiddle] + means[kThreeQuarters][kMiddle]);
    }

    void setAlternation(const std::array<Groups, 2>& alternate) {
        const double low = logRatio(alternate[0][kLow], alternate[1][kLow]);
        const double middle = logRatio(alternate[0][kMiddle], alternate[1][kMiddle]);
        at(MetreFeature::backbeat) = std::abs(low - middle);
        at(MetreFeature::middleAlternation) = std::abs(middle);
    }

    /** Mean level of the low middle group between two times. */
    double levelBetween(double from, double to) const {
        const double end = static_cast<double>(lowMiddleSums_.size() - 1);
        const auto frameAt = [end](double time) {
            return static_cast<std::size_t>(
                std::clamp(std::floor(time * OnsetEnvelopes::kFramesPerSecond + 0.5), 0.0, end));
        };
        const std::size_t first = frameAt(from);
        const std::size_t last = frameAt(to);
        return (lowMiddleSums_[last] - lowMiddleSums_[first]) /
               static_cast<double>(std::max<std::size_t>(1, last - first));
    }

    void compareLevels(const MetreReading& reading) {
        double sum = 0.0;
        for (int k = 0; k < beats_; ++k) {
            const double middle = timeOf(reading, k + 0.5);
            sum += levelBetween(timeOf(reading, k), middle) -
                   levelBetween(middle, timeOf(reading, k + 1.0));
        }
        at(MetreFeature::levelOfFirstHalf) = sum / beats_;
    }

    /** @return beats per bar */
    double compareChords(const MetreReading& reading) {
        std::vector<double> local;
        double half = 0.0;
        double two = 0.0;
        for (int k = 0; k < beats_; ++k) {
            const double time = timeOf(reading, k);
            const double change = changes_.at(ChordChanges::kHalf, time);
            half += change;
            two += changes_.at(ChordChanges::kTwo, time);
            local.push_back(change + changes_.at(ChordChanges::kOne, time));
        }
        at(MetreFeature::chordChange) = chordRatio(half / beats_, ChordChanges::kHalf);
        at(MetreFeature::chordChangeOfTwoSeconds) = chordRatio(two / beats_, ChordChanges::kTwo);
        const double byThree = recurrence(local, 3);
        const double byFour = recurrence(local, 4);
        at(MetreFeature::barOfChords) = std::max(byThree, byFour);
        return byThree > byFour + kTripleLead ? 3.0 : kUsualBar;
    }

    double chordRatio(double onBeats, ChordChanges::Span span) const {
        return std::log((onBeats + kChangeFloor) / (changes_.means[span] + 1.1 * kChangeFloor));
    }

    void rateTempo(double bpm, double beatsPerBar) {
        const double octaves = std::log2(bpm / kUsualBpm);
        const double barOctaves = std::log2(beatsPerBar * kHalfBarOfTwoSeconds / bpm);
        at(MetreFeature::tempo) = octaves;
        at(MetreFeature::tempoSquared) = octaves * octaves;
        at(MetreFeature::barTempo) = barOctaves;
        at(MetreFeature::barTempoSquared) = barOctaves * barOctaves;
        at(MetreFeature::backbeatByTempo) = octaves * at(MetreFeature::backbeat);
    }

    void rateFirstOnset(const MetreReading& reading) {
        if (!evidence_.firstOnset) return;
        const double place = evidence_.line.placeOf(*evidence_.firstOnset);
        at(MetreFeature::firstOnset) = isOn(place, reading) ? 1.0 : 0.0;
    }

    static bool isOn(double place, const MetreReading& reading) {
        const double beats = (place * kTwelfths - reading.phase) / reading.period;
        return std::abs(beats - std::nearbyint(beats)) < kOnBeat;
    }

    static double shareOn(const std::vector<double>& places, const MetreReading& reading) {
        if (places.empty()) return 0.0;
        const auto on = std::count_if(places.begin(), places.end(),
                                      [&](double place) { return isOn(place, reading); });
        return static_cast<double>(on) / static_cast<double>(places.size());
    }

    const MetreEvidence& evidence_;
    const OnsetEnvelopes& onsets_;
    const ChordChanges& changes_;
    std::vector<double> variedPlaces_;
    std::vector<double> simplePlaces_;
    std::vector<double> lowMiddleSums_;  // for each frame, the sum of all before it
    int beats_ = 0;                      // of the reading in question
    MetreFeatures features_{};
};

std::vector<MetreReading> possibleReadings(const MetreJudge& judge, double lineBpm) {
    std::vector<MetreReading> readings;
    for (const Period& period : kPeriods) {
        const double bpm = lineBpm * kTwelfths / period.period;
        if (bpm < kSlowestBpm || bpm > kFastestBpm) continue;
        for (const int phase : std::span(period.phases.data(), period.count))
            if (judge.beatsOf(period.period, phase) >= kLeastBeats)
                readings.push_back({period.period, phase, bpm, {}, 0.0, 0.0});
    }
    return readings;
}

/** Leaves the pulse itself and the readings that count every second or third pulse. */
void keepPulses(std::vector<MetreReading>& readings, const MetreReading& pulse) {
    std::erase_if(readings, [&](const MetreReading& reading) {
        return reading.period % pulse.period != 0 ||
               (reading.phase - pulse.phase) % pulse.period != 0;
    });
}

}  // namespace

std::vector<MetreReading> judgeMetre(const MetreEvidence& evidence) {
    MetreJudge judge(evidence);
    std::vector<MetreReading> readings = possibleReadings(judge, evidence.bpm);
    const auto bare = std::find_if(readings.begin(), readings.end(),
                                   [&](const MetreReading& r) { return judge.isBare(r); });
    const bool isBare = bare != readings.end();
    if (isBare) keepPulses(readings, MetreReading(*bare));
    for (MetreReading& reading : readings) {
        reading.isHeard = !isBare;
        reading.features = isBare ? judge.featuresOfPulses(reading) : judge.featuresOf(reading);
    }
    rankByScore(readings, kMetreWeights);
    return readings;
}

}  // namespace beatatlas::track::inner
