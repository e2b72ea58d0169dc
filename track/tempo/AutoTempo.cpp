// SPDX-License-Identifier: MIT
#include "track/tempo/AutoTempo.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "track/NearestScope.h"
#include "track/tempo/PulseSpectrum.h"
#include "track/tempo/beatFold.h"
#include "track/tempo/exactTempo.h"
#include "track/tempo/places.h"
#include "track/tempo/steadiness.h"

namespace beatatlas::track::inner {

namespace {

constexpr double kSteadyCoherence = 0.85;
constexpr std::size_t kLeastSixteenths = 16;
constexpr std::size_t kLeastBeatsForBars = 9;
// A beat that begins this much before the track still begins with it.
constexpr double kEarlySeconds = 0.03;
constexpr double kLateSeconds = 0.02;

std::vector<double> secondsOf(const SessionGrid& grid, int rate, bool downbeatsOnly) {
    std::vector<double> seconds;
    for (const peakss::BeatInfo& beat : grid.beats)
        if (!downbeatsOnly || beat.group == 1)
            seconds.push_back(static_cast<double>(beat.pos) / static_cast<double>(rate));
    return seconds;
}

std::vector<double> proposedTempi(const SessionPair& sessions) {
    std::vector<double> hz;
    for (const int bpm100 : {sessions.varied().bpm100, sessions.simple().bpm100})
        if (bpm100 > 0) hz.push_back(static_cast<double>(bpm100) / 6000.0);
    return hz;
}

std::vector<double> evenSixteenths(double first, double hz, double seconds) {
    const double count = std::max(0.0, std::floor((seconds - first) * hz * 4.0));
    std::vector<double> times(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < times.size(); ++i)
        times[i] = first + static_cast<double>(i) / (hz * 4.0);
    return times;
}

std::vector<double> sixteenthsBetween(const std::vector<double>& beats) {
    std::vector<double> times(4 * beats.size() - 3);
    for (std::size_t i = 0; i < times.size(); ++i)
        times[i] = timeAt(static_cast<double>(i) / 4.0, beats);
    return times;
}

/** Beats at even distances over all of the track. */
std::vector<double> evenBeats(double anyBeat, double interval, double seconds) {
    const double first = anyBeat - std::floor((anyBeat + kEarlySeconds) / interval) * interval;
    std::vector<double> beats;
    for (double beat = first; beat < seconds - kLateSeconds;
         beat = first + static_cast<double>(beats.size()) * interval)
        beats.push_back(std::max(0.0, beat));
    return beats;
}

std::vector<double> everyNth(const std::vector<double>& times, int first, int step) {
    std::vector<double> picked;
    for (auto i = static_cast<std::size_t>(first); i < times.size();
         i += static_cast<std::size_t>(step))
        picked.push_back(times[i]);
    return picked;
}

}  // namespace

AutoTempo::AutoTempo(int rate, int frames, bool wantsWaves)
    : rate_(rate), sessions_(rate, frames, wantsWaves), evidence_(rate) {}

void AutoTempo::hear(const Block& block) {
    sessions_.hear(block);
    evidence_.hear(block);
}

TempoAnswer AutoTempo::finish() {
    sessions_.close();
    const Evidence evidence = evidence_.finish();
    const NearestScope mode;
    TempoAnswer answer;
    const std::vector<double> proposed = proposedTempi(sessions_);
    if (proposed.empty()) return answer;
    PulseSpectrum spectrum(evidence.onsets.full);
    const double hz = findExactTempo(spectrum, evidence.seconds, proposed).hz;
    const std::vector<double> varied = secondsOf(sessions_.varied(), rate_, false);
    answer.coherence = coherence(evidence.onsets.sharp, hz);
    answer.isSteady = answer.coherence >= kSteadyCoherence || varied.size() < 2;
    const std::vector<double> sixteenths =
        answer.isSteady
            ? evenSixteenths(firstSixteenth(evidence.onsets.sharp, hz), hz, evidence.seconds)
            : sixteenthsBetween(varied);
    if (sixteenths.size() < kLeastSixteenths) return answer;
    const double bpm =
        answer.isSteady ? 60.0 * hz : static_cast<double>(sessions_.varied().bpm100) / 100.0;
    answer.metres = judgeMetre(evidence.onsets, sixteenths, bpm, varied);
    const MetreHypothesis& metre = answer.metres.front();
    answer.bpm = metre.bpm;
    answer.beats = answer.isSteady ? evenBeats(sixteenths[static_cast<std::size_t>(metre.phase)],
                                               60.0 / metre.bpm, evidence.seconds)
                                   : everyNth(sixteenths, metre.phase, metre.period);
    if (answer.beats.size() < kLeastBeatsForBars || evidence.chroma.empty()) return answer;
    answer.bars = judgeBars(evidence.onsets, evidence.chroma, answer.beats,
                            secondsOf(sessions_.simple(), rate_, true));
    answer.downbeats = everyNth(answer.beats, answer.bars.front().phase, answer.bars.front().beats);
    return answer;
}

}  // namespace beatatlas::track::inner
