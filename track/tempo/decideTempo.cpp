// SPDX-License-Identifier: MIT
// The stages:
//   1. the exact tempo, found near the proposals of the sessions
//   2. how it changes along the track, and beats that follow it
//   3. whether evenly spaced beats fit as well; the better beats become the line on which
//      everything else is based
//   4. which beats or parts of beats of the line people would count
//   5. the beats, moved onto the onsets
//   6. their bars
#include "track/tempo/decideTempo.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>

#include "track/NearestScope.h"
#include "track/tempo/PulseSpectrum.h"
#include "track/tempo/beatFold.h"
#include "track/tempo/exactTempo.h"
#include "track/tempo/layBeats.h"
#include "track/tempo/trackBeats.h"

namespace beatatlas::track::inner {

namespace {

constexpr double kLeastClarity = 1.25;
// If the pulse of the whole track is not clear, single windows must show one.
constexpr double kClear = 2.5;
constexpr double kLeastStanding = 2.3;
constexpr std::size_t kLeastLine = 9;
constexpr float kFirstOnset = 2.0F;
// What sounds on the first frame, and a fifteenth of a second later by a factor of e less in the
// mean of the three upper groups, began with the track. With less of a fall, music that was cut
// into would count too.
constexpr std::size_t kFallFrames = 10;
constexpr float kFirstFall = 3.0F;
constexpr int kUsualBar = 4;
constexpr std::size_t kMostAlternatives = 5;

enum class Pick { beats, downbeats };

/** A decision about one track, stage by stage. */
class Decision {
public:
    Decision(const Evidence& evidence, const SessionGrids& sessions, int rate,
             const TempoWishes& wishes)
        : evidence_(evidence), sessions_(sessions), rate_(rate), wishes_(wishes) {}

    TempoAnswer make() {
        const std::vector<double> proposed = proposedTempi();
        if (proposed.empty()) return {};
        PulseSpectrum spectrum(evidence_.onsets.full);
        hz_ = findExactTempo(spectrum, evidence_.seconds, proposed).hz;
        if (hz_ == 0.0) return {};
        answer_.clarity = clarityOf(spectrum, hz_);
        const LocalTempo local = followTempo(evidence_.onsets.full, hz_);
        answer_.standing = local.standing;
        if (isNoise()) return std::move(answer_);
        answer_.line = chooseLine(local);
        if (answer_.line.size() < kLeastLine) return std::move(answer_);
        readMetre();
        if (answer_.beats.size() < 2) return {};
        readBars();
        bringIntoRange();
        return std::move(answer_);
    }

private:
    std::vector<double> proposedTempi() const {
        std::vector<double> hz;
        for (const int bpm100 : {sessions_.varied.bpm100, sessions_.simple.bpm100})
            if (bpm100 > 0) hz.push_back(static_cast<double>(bpm100) / 100.0 / 60.0);
        return hz;
    }

    bool isNoise() const {
        return answer_.clarity < kLeastClarity ||
               (answer_.clarity < kClear && answer_.standing < kLeastStanding);
    }

    std::vector<double> chooseLine(const LocalTempo& local) {
        std::vector<double> tracked = trackBeats(evidence_.onsets.sharp, local);
        const double first = firstBeat(evidence_.onsets.sharp, hz_);
        std::vector<double> even;
        const double last = std::trunc((evidence_.seconds - first) * hz_);
        for (double k = 0.0; k <= last; ++k) even.push_back(first + k / hz_);
        answer_.steadiness = judgeSteadiness(evidence_.onsets, hz_, even, tracked);
        answer_.isSteady = answer_.steadiness.isSteady;
        if (!answer_.isSteady) return tracked;
        even.insert(even.begin(), first - 1.0 / hz_);
        return even;
    }

    void readMetre() {
        const BeatLine line(answer_.line);
        answer_.metres =
            judgeMetre({evidence_, line, 60.0 * hz_, secondsOf(sessions_.varied, Pick::beats),
                        secondsOf(sessions_.simple, Pick::beats), firstOnset()});
        if (answer_.metres.empty()) return;
        const MetreReading& metre = answer_.metres.front();
        answer_.beats =
            layBeats(evidence_.onsets.sharp, evidence_.seconds, line, metre, answer_.isSteady);
        answer_.bpm = answer_.isSteady || answer_.beats.size() < 2 ? metre.bpm : meanBpm();
        addAlternatives();
        rateMetre();
    }

    double meanBpm() const {
        const double span = answer_.beats.back() - answer_.beats.front();
        return 60.0 * static_cast<double>(answer_.beats.size() - 1) / span;
    }

    void addAlternatives() {
        const MetreReading& best = answer_.metres.front();
        const std::size_t count = std::min(answer_.metres.size(), kMostAlternatives + 1);
        for (std::size_t i = 1; i < count; ++i) {
            const MetreReading& other = answer_.metres[i];
            const double ratio = static_cast<double>(best.period) / other.period;
            const double shift = static_cast<double>(other.phase - best.phase) / best.period;
            answer_.alternatives.push_back(
                {answer_.bpm * ratio, ratio, shift - std::floor(shift), other.share});
        }
    }

    void rateMetre() {
        const MetreReading& best = answer_.metres.front();
        double level = 0.0;
        for (const MetreReading& reading : answer_.metres)
            if (reading.period == best.period) level += reading.share;
        answer_.confidence.pulse = confidenceOfPulse(answer_.clarity);
        answer_.confidence.level = confidenceOfLevel(isMetreHeard() ? level : 0.0);
        answer_.confidence.phase = confidenceOfPhase(best.share / level);
    }

    /** Of a bare pulse, shares say nothing: they hold for music. */
    bool isMetreHeard() const { return answer_.metres.front().isHeard; }

    void readBars() {
        answer_.stretches = findStretches(answer_.beats);
        if (answer_.beats.size() >= kLeastBeatsForBars) {
            answer_.bars = countBars(evidence_, answer_.beats, answer_.stretches,
                                     {secondsOf(sessions_.simple, Pick::downbeats),
                                      secondsOf(sessions_.varied, Pick::downbeats)},
                                     wishes_.beatsPerBar);
            answer_.confidence.bars = confidenceOfBars(isMetreHeard() ? answer_.bars.share : 0.0);
        } else {
            answer_.bars = countFromFirst();
            answer_.confidence.bars = 0.0;  // resets the value from before the beats were halved
        }
        answer_.downbeats.clear();
        for (std::size_t k = 0; k < answer_.beats.size(); ++k)
            if (answer_.bars.numbers[k] == 1) answer_.downbeats.push_back(answer_.beats[k]);
    }

    /** For tracks with too few beats to judge. */
    BarCount countFromFirst() const {
        const int perBar = wishes_.beatsPerBar != 0 ? wishes_.beatsPerBar : kUsualBar;
        BarCount count{perBar, {}, 0.0};
        for (std::size_t k = 0; k < answer_.beats.size(); ++k)
            count.numbers.push_back(static_cast<int>(k) % perBar + 1);
        return count;
    }

    /** Doubles or halves the tempo until it lies in the host's range. */
    void bringIntoRange() {
        answer_.rawBpm = answer_.bpm;
        if (wishes_.highestBpm == 0.0) return;
        while (answer_.bpm < wishes_.lowestBpm) {
            answer_.bpm *= 2.0;
            doubleBeats();
            readBars();
        }
        while (answer_.bpm > wishes_.highestBpm && answer_.beats.size() > 2) {
            answer_.bpm /= 2.0;
            halveBeats();
            readBars();
        }
    }

    void doubleBeats() {
        std::vector<double> beats;
        for (std::size_t i = 0; i + 1 < answer_.beats.size(); ++i) {
            beats.push_back(answer_.beats[i]);
            beats.push_back(0.5 * (answer_.beats[i] + answer_.beats[i + 1]));
        }
        beats.push_back(answer_.beats.back());
        answer_.beats = std::move(beats);
    }

    /** Keeps every second beat, among them the first downbeat. */
    void halveBeats() {
        const std::vector<int>& numbers = answer_.bars.numbers;
        const auto first = std::find(numbers.begin(), numbers.end(), 1) - numbers.begin();
        std::vector<double> beats;
        for (auto i = static_cast<std::size_t>(first % 2); i < answer_.beats.size(); i += 2)
            beats.push_back(answer_.beats[i]);
        answer_.beats = std::move(beats);
    }

    std::vector<double> secondsOf(const SessionGrid& grid, Pick pick) const {
        std::vector<double> seconds;
        for (const peakss::BeatInfo& beat : grid.beats)
            if (pick == Pick::beats || beat.group == 1)
                seconds.push_back(static_cast<double>(beat.pos) / static_cast<double>(rate_));
        return seconds;
    }

    /** A sound that begins with the track has nothing to rise from; but soon it dies away. */
    bool beginsWithOnset() const {
        const auto& level = evidence_.onsets.level;
        if (level.size() <= kFallFrames) return false;
        float fall = 0.0F;
        for (const Group group : {kMiddle, kHighMiddle, kHigh})
            fall += level.front()[group] - level[kFallFrames][group];
        return fall > kFirstFall;
    }

    std::optional<double> firstOnset() const {
        if (beginsWithOnset()) return 0.0;
        const std::vector<float>& sharp = evidence_.onsets.sharp;
        for (std::size_t i = 0; i < sharp.size(); ++i)
            if (sharp[i] > kFirstOnset)
                return static_cast<double>(i) / OnsetEnvelopes::kFramesPerSecond;
        return std::nullopt;
    }

    const Evidence& evidence_;
    const SessionGrids& sessions_;
    int rate_;
    const TempoWishes& wishes_;
    double hz_ = 0.0;
    TempoAnswer answer_;
};

}  // namespace

TempoAnswer decideTempo(const Evidence& evidence, const SessionGrids& sessions, int rate,
                        const TempoWishes& wishes) {
    const NearestScope mode;
    return Decision(evidence, sessions, rate, wishes).make();
}

}  // namespace beatatlas::track::inner
