// SPDX-License-Identifier: MIT
// The stages:
//   1. the exact tempo, from the proposals of the sessions
//   2. how it changes along the track, and beats that follow it
//   3. whether beats of even distances do as well; the better ones are the line on which everything is measured
//   4. which parts of the line's beats are the beats
//   5. the beats, moved onto the onsets
//   6. their bars
//   7. what a host wishes: a range of the tempo, the beats of a bar
#include "track/tempo/AutoTempo.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

#include "track/NearestScope.h"
#include "track/tempo/PulseSpectrum.h"
#include "track/tempo/beatFold.h"
#include "track/tempo/exactTempo.h"
#include "track/tempo/layBeats.h"
#include "track/tempo/trackBeats.h"

namespace beatatlas::track::inner {

namespace {

constexpr double kLeastClarity = 1.25;
// Where the pulse is not clear, the music must have one at least in single windows.
constexpr double kClear = 2.5;
constexpr double kLeastStanding = 2.3;
constexpr std::size_t kLeastLine = 9;
constexpr float kFirstOnset = 2.0F;

enum class Pick { beats, downbeats };

/** A decision about one track, stage by stage. */
class Decision {
public:
    Decision(const Evidence& evidence, const SessionPair& sessions, int rate,
             const TempoWishes& wishes)
        : evidence_(evidence), sessions_(sessions), rate_(rate), wishes_(wishes) {}

    TempoAnswer make() {
        const std::vector<double> proposed = proposedTempi();
        if (proposed.empty()) return {};
        PulseSpectrum spectrum(evidence_.onsets.full);
        hz_ = findExactTempo(spectrum, evidence_.seconds, proposed).hz;
        answer_.clarity = clarityOf(spectrum, hz_);
        const LocalTempo local = followTempo(evidence_.onsets.full, hz_);
        answer_.standing = local.standing;
        if (isNoise()) return std::move(answer_);
        std::vector<double> line = chooseLine(local);
        if (line.size() < kLeastLine) return std::move(answer_);
        readMetre(BeatLine(std::move(line)));
        readBars();
        bringIntoRange();
        return std::move(answer_);
    }

private:
    std::vector<double> proposedTempi() const {
        std::vector<double> hz;
        for (const int bpm100 : {sessions_.varied().bpm100, sessions_.simple().bpm100})
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
        if (!answer_.steadiness.isSteady) return tracked;
        even.insert(even.begin(), first - 1.0 / hz_);
        return even;
    }

    void readMetre(const BeatLine& line) {
        answer_.metres =
            judgeMetre({evidence_, line, 60.0 * hz_, secondsOf(sessions_.varied(), Pick::beats),
                        secondsOf(sessions_.simple(), Pick::beats), firstOnset()});
        if (answer_.metres.empty()) return;
        const MetreReading& metre = answer_.metres.front();
        const std::vector<float>& sharp = evidence_.onsets.sharp;
        if (answer_.steadiness.isSteady) {
            answer_.bpm = metre.bpm;
            answer_.beats = layEvenBeats(sharp, evidence_.seconds, line, metre);
            return;
        }
        answer_.beats = layTrackedBeats(sharp, evidence_.seconds, line, metre);
        const double span = answer_.beats.back() - answer_.beats.front();
        answer_.bpm = 60.0 * static_cast<double>(answer_.beats.size() - 1) / span;
    }

    void readBars() {
        if (wishes_.beatsPerBar != 0) answer_.bar.beats = wishes_.beatsPerBar;
        if (answer_.beats.size() < kLeastBeatsForBars) return;
        answer_.bars =
            judgeBars(evidence_, answer_.beats, secondsOf(sessions_.simple(), Pick::downbeats),
                      secondsOf(sessions_.varied(), Pick::downbeats));
        const auto chosen = std::find_if(
            answer_.bars.begin(), answer_.bars.end(), [this](const BarReading& reading) {
                return wishes_.beatsPerBar == 0 || reading.beats == wishes_.beatsPerBar;
            });
        answer_.bars.erase(answer_.bars.begin(), chosen);
        answer_.bar = {answer_.bars.front().beats, answer_.bars.front().phase};
    }

    /** Doubles or halves the tempo until it lies in the range wished for. Of the beats of half the tempo those stay that
     *  keep the downbeats. */
    void bringIntoRange() {
        answer_.rawBpm = answer_.bpm;
        if (wishes_.highestBpm == 0.0 || answer_.bpm == 0.0) return;
        const double before = answer_.bpm;
        for (; answer_.bpm < wishes_.lowestBpm; answer_.bpm *= 2.0) doubleBeats();
        for (; answer_.bpm > wishes_.highestBpm; answer_.bpm /= 2.0) halveBeats();
        if (answer_.bpm != before) readBars();
    }

    void doubleBeats() {
        std::vector<double> beats;
        for (std::size_t i = 0; i + 1 < answer_.beats.size(); ++i) {
            beats.push_back(answer_.beats[i]);
            beats.push_back(0.5 * (answer_.beats[i] + answer_.beats[i + 1]));
        }
        beats.push_back(answer_.beats.back());
        answer_.beats = std::move(beats);
        answer_.bar.phase *= 2;
    }

    void halveBeats() {
        std::vector<double> beats;
        for (auto i = static_cast<std::size_t>(answer_.bar.phase % 2); i < answer_.beats.size();
             i += 2)
            beats.push_back(answer_.beats[i]);
        answer_.beats = std::move(beats);
        answer_.bar.phase /= 2;
    }

    std::vector<double> secondsOf(const SessionGrid& grid, Pick pick) const {
        std::vector<double> seconds;
        for (const peakss::BeatInfo& beat : grid.beats)
            if (pick == Pick::beats || beat.group == 1)
                seconds.push_back(static_cast<double>(beat.pos) / static_cast<double>(rate_));
        return seconds;
    }

    std::optional<double> firstOnset() const {
        const std::vector<float>& sharp = evidence_.onsets.sharp;
        for (std::size_t i = 0; i < sharp.size(); ++i)
            if (sharp[i] > kFirstOnset)
                return static_cast<double>(i) / OnsetEnvelopes::kFramesPerSecond;
        return std::nullopt;
    }

    const Evidence& evidence_;
    const SessionPair& sessions_;
    int rate_;
    TempoWishes wishes_;
    double hz_ = 0.0;
    TempoAnswer answer_;
};

}  // namespace

AutoTempo::AutoTempo(int rate, int frames, const TempoWishes& wishes, bool wantsWaves)
    : rate_(rate), wishes_(wishes), sessions_(rate, frames, wantsWaves), evidence_(rate) {}

void AutoTempo::hear(const Block& block) {
    sessions_.hear(block);
    evidence_.hear(block);
}

TempoAnswer AutoTempo::finish() {
    sessions_.close();
    const Evidence evidence = evidence_.finish();
    const NearestScope mode;
    return Decision(evidence, sessions_, rate_, wishes_).make();
}

}  // namespace beatatlas::track::inner
