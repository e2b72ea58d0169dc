// SPDX-License-Identifier: MIT
// The decision of the automatic tempo on any evidence and proposals, even ones that no track
// yields: any onsets and chords, session grids in any order, any tempo options. Up to a minute and
// a half of music, for which the target for whole tracks has no time.
#include <algorithm>
#include <cmath>
#include <vector>

#include "FuzzAudio.h"
#include "FuzzInput.h"
#include "FuzzersRoundingMode.h"
#include "require.h"
#include "track/tempo/decideTempo.h"

namespace {

using namespace beatatlas;
using namespace beatatlas::fuzz;
using namespace beatatlas::track::inner;

constexpr int kRate = 44100;
constexpr int kMostFrames = 13500;

/** Values from 0 to `most`, as in an envelope. */
std::vector<float> fuzzCurve(FuzzInput& input, std::size_t frames, float most) {
    std::vector<float> curve = fuzzSamples(input, static_cast<int>(frames));
    for (float& value : curve)
        value = std::isfinite(value) ? std::min(std::abs(value) / 4096.0F, most) : 0.0F;
    return curve;
}

std::vector<OnsetEnvelopes::Groups> fuzzGroups(FuzzInput& input, std::size_t frames, float most) {
    std::vector<OnsetEnvelopes::Groups> rows(frames);
    for (std::size_t g = 0; g < kGroups; ++g) {
        const std::vector<float> curve = fuzzCurve(input, frames, most);
        for (std::size_t i = 0; i < frames; ++i) rows[i][g] = curve[i];
    }
    return rows;
}

/** Adds occasional onsets, some of them late. */
void addPulses(FuzzInput& input, std::vector<float>& curve) {
    double at = input.between(0, 255);
    const double interval = 20.0 + input.bits16() % 2048 / 8.0;
    const int jitter = input.between(0, 20);
    const double drift = 1.0 + (input.between(0, 20) - 10) / 10000.0;
    double step = interval;
    for (int k = 0; at < static_cast<double>(curve.size()); ++k, at += step, step *= drift)
        curve[std::min(curve.size() - 1, static_cast<std::size_t>(at) +
                                             static_cast<std::size_t>(k * 97 % (jitter + 1)))] +=
            4.0F + static_cast<float>(k % 4);
}

Evidence fuzzEvidence(FuzzInput& input) {
    Evidence evidence;
    const auto frames = static_cast<std::size_t>(1 + input.bits16() % kMostFrames);
    evidence.seconds = static_cast<double>(frames) / OnsetEnvelopes::kFramesPerSecond;
    OnsetEnvelopes& onsets = evidence.onsets;
    onsets.sharp = fuzzCurve(input, frames, 30.0F);
    for (int i = input.between(0, 3); i > 0; --i) addPulses(input, onsets.sharp);
    onsets.full = input.flag() ? onsets.sharp : fuzzCurve(input, frames, 30.0F);
    onsets.upper = fuzzCurve(input, frames, 5.0F);
    onsets.strength = fuzzGroups(input, frames, 6.0F);
    onsets.level = fuzzGroups(input, frames, 6.0F);
    const auto chords = static_cast<std::size_t>(evidence.seconds * ChromaStream::kFramesPerSecond);
    evidence.chroma.resize(input.between(0, 7) == 0 ? 0 : chords);
    for (std::size_t tone = 0; tone < 12; ++tone) {
        const std::vector<float> curve =
            fuzzCurve(input, std::max<std::size_t>(1, evidence.chroma.size()), 5.0F);
        for (std::size_t i = 0; i < evidence.chroma.size(); ++i)
            evidence.chroma[i][tone] = curve[i];
    }
    evidence.changes = findChordChanges(evidence.chroma);
    return evidence;
}

/** A grid as sessions return it: in order of time, tempi from 40 to 250 BPM; or none. */
SessionGrid fuzzGrid(FuzzInput& input) {
    SessionGrid grid;
    if (input.between(0, 5) == 0) return grid;
    grid.bpm100 = 4000 + input.bits16() % 21000;
    const int beats = input.between(0, 400);
    const int jitter = input.between(0, 4000);
    for (int k = 0; k < beats; ++k) {
        peakss::BeatInfo beat;
        beat.pos = static_cast<int>(k * 100.0 * 60.0 * kRate / grid.bpm100) + k * 97 % (jitter + 1);
        beat.group = k % 4 + 1;
        grid.beats.push_back(beat);
    }
    std::stable_sort(grid.beats.begin(), grid.beats.end(),
                     [](const auto& a, const auto& b) { return a.pos < b.pos; });
    return grid;
}

TempoWishes fuzzWishes(FuzzInput& input) {
    TempoWishes wishes;
    if (input.flag()) {
        wishes.lowestBpm = 20.0 + input.bits16() % 480;
        wishes.highestBpm = wishes.lowestBpm * (2.0 + input.between(0, 3));
    }
    if (input.flag()) wishes.beatsPerBar = input.between(3, 4);
    return wishes;
}

bool isShare(double value) {
    return value >= 0.0 && value <= 1.0;
}

void requireBeats(const TempoAnswer& answer, double seconds) {
    require(answer.bars.numbers.size() == answer.beats.size(), "every beat has a number");
    for (std::size_t k = 0; k < answer.beats.size(); ++k) {
        require(answer.beats[k] >= 0.0 && answer.beats[k] < seconds, "beats lie in the track");
        require(k == 0 || answer.beats[k] > answer.beats[k - 1], "beats ascend");
        const int number = answer.bars.numbers[k];
        require(number >= 1 && number <= answer.bars.beatsPerBar, "numbers lie in the bar");
    }
    require(std::includes(answer.beats.begin(), answer.beats.end(), answer.downbeats.begin(),
                          answer.downbeats.end()),
            "downbeats are beats");
}

void requireAnswer(const TempoAnswer& answer, double seconds, const TempoWishes& wishes) {
    require(answer.bpm > 0.0 && std::isfinite(answer.bpm), "a tempo");
    require(answer.beats.size() >= 2, "a tempo has beats");
    requireBeats(answer, seconds);
    const TempoConfidence& confidence = answer.confidence;
    for (const double part :
         {confidence.pulse, confidence.level, confidence.phase, confidence.bars})
        require(isShare(part), "a confidence is a share");
    for (const TempoAlternative& other : answer.alternatives)
        require(isShare(other.share) && other.bpm > 0.0, "another reading has a tempo and a share");
    require(!answer.stretches.empty(), "a tempo has a stretch");
    for (std::size_t i = 1; i < answer.stretches.size(); ++i)
        require(answer.stretches[i].from == answer.stretches[i - 1].to, "stretches follow another");
    if (wishes.highestBpm > 0.0)
        require(answer.bpm >= wishes.lowestBpm &&
                    (answer.bpm <= wishes.highestBpm || answer.beats.size() <= 2),
                "the tempo lies in the range");
    if (wishes.beatsPerBar != 0)
        require(answer.bars.beatsPerBar == wishes.beatsPerBar, "bars are as wished");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    const FuzzersRoundingMode mode;
    FuzzInput input(bytes, count);
    const TempoWishes wishes = fuzzWishes(input);
    const SessionGrids grids{fuzzGrid(input), fuzzGrid(input)};
    const Evidence evidence = fuzzEvidence(input);
    const TempoAnswer answer = decideTempo(evidence, grids, kRate, wishes);
    if (answer.bpm == 0.0) {
        require(answer.beats.empty() && answer.stretches.empty(), "no tempo, no beats");
        return 0;
    }
    requireAnswer(answer, evidence.seconds, wishes);
    return 0;
}
