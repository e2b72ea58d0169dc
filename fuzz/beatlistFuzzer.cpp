// SPDX-License-Identifier: MIT
// The beat list analysis on any raw list, and the three refining stages after it, on its result or
// on any grid. A raw list is either plausible (a tempo with jitter, gaps and doublings, in order of
// time) or records of any bit pattern in any order.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <vector>

#include "FuzzAudio.h"
#include "FuzzersRoundingMode.h"
#include "dsp/RoundingMode.h"
#include "dsp/sampleBlocks.h"
#include "envelope/SimpleEnvelopeMaker.h"
#include "envelope/UnitBeatAdjust.h"
#include "envelope/UnitEnvelopeMaker.h"
#include "peakss/grid/BeatInfoAnalyzer.h"
#include "require.h"

namespace {

using namespace beatatlas;
using namespace beatatlas::fuzz;

constexpr int kMostWildBeats = 150;
constexpr int kMostMadeBeats = 1500;
constexpr int kMostFrames = 200000;
constexpr int kLongestTrack = 40000000;
constexpr int kVeryLongTrack = 200000000;  // an hour and more

peakss::BeatInfo wildBeat(FuzzInput& input) {
    peakss::BeatInfo beat;
    beat.pos = fuzzInt(input);
    beat.phase = fuzzFloat(input);
    beat.interval = fuzzFloat(input);
    beat.group = fuzzInt(input);
    beat.band = input.between(-1, 5);
    beat.segHead = input.flag();
    return beat;
}

peakss::BeatList wildList(FuzzInput& input) {
    peakss::BeatList list;
    while (!input.isEmpty() && list.size() < kMostWildBeats) list.push_back(wildBeat(input));
    if (input.flag()) {
        std::stable_sort(list.begin(), list.end(),
                         [](const auto& a, const auto& b) { return a.pos < b.pos; });
    }
    return list;
}

// Sections of one tempo each, as the beat sensor writes them: ascending, with positive intervals
// and small groups.
peakss::BeatList madeList(FuzzInput& input, int rate) {
    peakss::BeatList list;
    double pos = input.bits16();
    int group = 0;
    while (!input.isEmpty() && list.size() < kMostMadeBeats) {
        const float interval = 100.0F + static_cast<float>(input.bits16() % 16384) / 8.0F;
        const int beats = input.between(1, 200);
        const int jitter = input.between(0, 255);
        group += input.between(0, 2);
        const int band = input.between(0, 5);
        for (int i = 0; i < beats && pos < kLongestTrack; ++i) {
            pos += static_cast<double>(interval) * rate / 1000.0;
            peakss::BeatInfo beat;
            beat.pos = static_cast<int>(pos) + (i * 97 % 17 - 8) * jitter;
            beat.phase = static_cast<float>(i % 5);
            beat.interval = interval + 0.01F * static_cast<float>(i % 3 * jitter);
            beat.group = group << 8 | (i * 31 % 256);
            beat.band = (band + i / 8) % 6;
            list.push_back(beat);
        }
        pos += input.bits16() * 8.0;
    }
    std::stable_sort(list.begin(), list.end(),
                     [](const auto& a, const auto& b) { return a.pos < b.pos; });
    return list;
}

int sectionBeatsOf(FuzzInput& input) {
    const int power = input.between(0, 40);
    return power > 28 ? 32 : 4 << power;
}

float layGrid(FuzzInput& input, int rate, int length, bool varied, peakss::BeatList& grid) {
    const bool isMade = input.between(0, 2) != 0;
    const int section = sectionBeatsOf(input);
    peakss::BeatList raw = isMade ? madeList(input, rate) : wildList(input);
    peakss::BeatInfoAnalyzeInfo info{6, &raw};
    static std::FILE* nowhere = std::fopen("/dev/null", "w");
    peakss::BeatInfoAnalyzer analyzer;
    analyzer.setSamplingRate(rate);
    analyzer.setDebugStream(nowhere);
    const int front = section >= 8 ? section / 2 : 0;
    const int back = section >= 8 ? front - 4 : 0;
    const float bpm = analyzer.analyze(&info, grid, length, 4, front, back, varied);
    for (const peakss::BeatInfo& beat : grid) {
        require(beat.group >= 1 && beat.group <= 4, "beats are numbered 1 to 4");
        require(beat.pos >= 0 && beat.pos <= length, "beats lie within the track");
    }
    return bpm;
}

std::vector<std::int16_t> interleaved(FuzzInput& input, int frames) {
    std::vector<std::int16_t> samples(2 * static_cast<std::size_t>(frames));
    const std::vector<float> mono = fuzzSamples(input, frames);
    for (std::size_t i = 0; i < mono.size(); ++i) {
        const float clipped = std::isnan(mono[i]) ? 0.0F : std::clamp(mono[i], -32768.0F, 32767.0F);
        samples[2 * i] = samples[2 * i + 1] = static_cast<std::int16_t>(clipped);
    }
    return samples;
}

void refine(FuzzInput& input, int rate, int length, bool varied, float bpm,
            peakss::BeatList& grid) {
    const int fed = std::min(1 + static_cast<int>(input.bits32() % kMostFrames), length);
    const std::vector<std::int16_t> samples = interleaved(input, fed);
    std::vector<double> mono(static_cast<std::size_t>(fed));
    std::vector<double> wholes(mono.size());
    meansOfBlock(samples.data(), mono.data(), wholes.data(), fed);
    if (input.flag()) {
        SimpleEnvelopeMaker simple;
        simple.create(rate, length);
        simple.putSample(mono.data(), fed);
        bpm = simple.analyze(bpm, grid);
    }
    UnitEnvelopeMaker unit;
    unit.create(rate, length);
    unit.putSample(mono.data(), fed);
    unit.analyze(bpm, grid, varied);
    if (varied && input.flag()) return;
    UnitBeatAdjust adjust;
    adjust.create(rate, length);
    adjust.putSample(samples.data(), fed);
    adjust.analyze(bpm, grid);
}

int lengthOf(FuzzInput& input) {
    if (input.between(0, 63) == 0) return kVeryLongTrack - input.between(0, 255);
    const int bits = input.between(0, 25);
    return 1 + static_cast<int>(input.bits32() >> (32 - bits - 1) & 0x1FFFFFF);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    const FuzzersRoundingMode mode;
    setRoundTowardZero();
    FuzzInput input(bytes, count);
    const int rate = input.flag() ? 48000 : 44100;
    const bool varied = input.flag();
    const int length = lengthOf(input);
    peakss::BeatList grid;
    const std::uint8_t plan = input.byte();
    // The bytes for the refining stages come before the list, which takes all the rest of the
    // input.
    FuzzInput refinement(bytes, std::min<std::size_t>(count, 64));
    float bpm = 0.0F;
    if (plan % 4 == 0) {
        bpm = fuzzFloat(input);
        grid = plan % 8 == 0 ? madeList(input, rate) : wildList(input);
    } else {
        bpm = layGrid(input, rate, length, varied, grid);
    }
    if (plan % 4 < 3) refine(refinement, rate, length, varied, bpm, grid);
    return 0;
}
