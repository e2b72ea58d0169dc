// SPDX-License-Identifier: MIT
// A small fixed workload for every component, each in a function of its own that a profiler can
// identify by name; instructions.sh counts the instructions. The run times mean nothing.
#include <array>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "beatatlas/utilities.h"
#include "bench/BenchTrack.h"
#include "bench/Improvisation.h"
#include "bench/sessionRun.h"
#include "dsp/RoundingMode.h"
#include "envelope/SimpleEnvelopeMaker.h"
#include "envelope/UnitBeatAdjust.h"
#include "envelope/UnitEnvelopeMaker.h"
#include "key/KeyRankMaker.h"
#include "peakss/BeatInfoAnalyzer.h"
#include "peakss/BeatListMaker.h"
#include "session/PreChecker.h"
#include "view/LoudViewMaker.h"
#include "view/ZoomViewMaker.h"

namespace {

using namespace beatatlas;
using bench::kBlockFrames;
using bench::kBpm;
using bench::kRate;

constexpr int kLength = 15 * kRate;
constexpr int kCutLength = 2 * kRate;
constexpr int kThinnedLength = kLength / 10;

struct Piece {
    test::StereoTrack stereo;
    std::vector<float> mono;
    std::vector<std::int16_t> interleaved;
    std::vector<float> thinned;
    PreChecker checker;
    peakss::BeatListMaker sensed;
    peakss::BeatList grid;  // the true one
};
Piece piece;

template <typename Put>
void inBlocks(Put put) {
    for (int from = 0; from < kLength; from += kBlockFrames)
        put(from, std::min(kBlockFrames, kLength - from));
}

void makePiece() {
    test::TrackPlan plan;
    plan.lengthFrames = kLength;
    plan.bpm = static_cast<double>(kBpm);
    plan.level = 0.5;
    const test::TrackSynth synth(plan);
    piece.stereo = synth.renderAll();
    for (const test::TrueBeat& beat : synth.beats())
        piece.grid.push_back({.pos = static_cast<std::int32_t>(beat.frame),
                              .interval = 60000.0F / kBpm,
                              .group = beat.number});
    bench::improviseOver(piece.stereo, {.sampleRate = kRate, .bpm = plan.bpm});
    for (std::size_t i = 0; i < kLength; ++i) {
        const float left = piece.stereo.left[i];
        const float right = piece.stereo.right[i];
        piece.mono.push_back((left + right) / 65536.0F);
        piece.interleaved.push_back(static_cast<std::int16_t>(left));
        piece.interleaved.push_back(static_cast<std::int16_t>(right));
    }
    piece.thinned.resize(kThinnedLength);
    piece.checker.putSample(piece.stereo.left.data(), piece.stereo.right.data(), kLength);
    const TowardZeroScope mode;
    piece.sensed.create(kRate, 0, kLength);
    inBlocks(
        [](int from, int count) { piece.sensed.put(piece.mono.data() + from, count, nullptr); });
}

template <typename Maker>
void feedInterleaved(Maker& maker) {
    inBlocks([&](int from, int count) {
        maker.putSample(piece.interleaved.data() + (2 * static_cast<std::ptrdiff_t>(from)), count);
    });
}

}  // namespace

// The record uses these names.
extern "C" {

__attribute__((noinline)) void measured_wholeSession() {
    bench::runSession(bench::createWholeSession, piece.stereo, kLength);
}

__attribute__((noinline)) void measured_preChecker() {
    PreChecker checker;
    checker.putSample(piece.stereo.left.data(), piece.stereo.right.data(), kLength);
}

__attribute__((noinline)) void measured_beatSensorAndLoudView() {
    peakss::BeatListMaker maker;
    LoudViewMaker loudView;
    maker.create(kRate, 0, kLength);
    loudView.create(kRate, kLength);
    inBlocks([&](int from, int count) { maker.put(piece.mono.data() + from, count, &loudView); });
}

__attribute__((noinline)) void measured_keyRankMaker() {
    KeyRankMaker maker;
    maker.create(kRate, kLength);
    const PreChecker& c = piece.checker;
    maker.setPreCheckData(c.loudCount(), c.loudSum(), c.loudMax(), c.quietCount(), c.quietSum(),
                          c.quietMax());
    feedInterleaved(maker);
}

__attribute__((noinline)) void measured_unitEnvelopeMaker() {
    UnitEnvelopeMaker maker;
    peakss::BeatList beats = piece.grid;
    maker.create(kRate, kLength);
    feedInterleaved(maker);
    maker.analyze(kBpm, beats, false);
}

__attribute__((noinline)) void measured_simpleEnvelopeMaker() {
    SimpleEnvelopeMaker maker;
    peakss::BeatList beats = piece.grid;
    maker.create(kRate, kLength);
    feedInterleaved(maker);
    maker.analyze(kBpm, beats);
}

__attribute__((noinline)) void measured_beatListAnalysis() {
    peakss::BeatList candidates = piece.sensed.list();
    peakss::BeatList grid;
    peakss::BeatInfoAnalyzeInfo info{piece.sensed.bandNum(), &candidates};
    peakss::BeatInfoAnalyzer analyzer;
    analyzer.setSamplingRate(kRate);
    analyzer.analyze(&info, grid, kLength, 4, 16, 12, false);
}

__attribute__((noinline)) void measured_unitBeatAdjust() {
    UnitBeatAdjust adjust;
    peakss::BeatList beats = piece.grid;
    float bpm = kBpm;
    adjust.create(kRate, kLength);
    feedInterleaved(adjust);
    adjust.analyze(bpm, beats);
}

__attribute__((noinline)) void measured_zoomViewMaker() {
    ZoomViewMaker maker;
    maker.create(kRate, kLength, 150, true);
    feedInterleaved(maker);
}

__attribute__((noinline)) void measured_resampler() {
    resample2(piece.thinned.data(), kThinnedLength, piece.mono.data(), kLength, 10.0F, 10, 0);
}

__attribute__((noinline)) void measured_beatCutter() {
    std::vector<float> out(kCutLength);
    CutBeats(out.data(), piece.mono.data(), kCutLength, kRate, 1, 0);
}

__attribute__((noinline)) void measured_pitchDetector() {
    PitchDetect(piece.thinned.data(), kThinnedLength, kRate / 10.0F, 1, 0);
}

__attribute__((noinline)) void measured_keyOfBuffer() {
    KeyCodeScale(nullptr, piece.thinned.data(), kThinnedLength, kRate / 10.0F, 440.0F, 1, 0,
                 nullptr);
}
}

namespace {

struct Part {
    const char* name;
    void (*run)();
    int frames;
};

constexpr std::array<Part, 13> kParts = {{
    {"wholeSession", measured_wholeSession, kLength},
    {"preChecker", measured_preChecker, kLength},
    {"beatSensorAndLoudView", measured_beatSensorAndLoudView, kLength},
    {"keyRankMaker", measured_keyRankMaker, kLength},
    {"unitEnvelopeMaker", measured_unitEnvelopeMaker, kLength},
    {"simpleEnvelopeMaker", measured_simpleEnvelopeMaker, kLength},
    {"unitBeatAdjust", measured_unitBeatAdjust, kLength},
    {"beatListAnalysis", measured_beatListAnalysis, kLength},
    {"zoomViewMaker", measured_zoomViewMaker, kLength},
    {"resampler", measured_resampler, kLength},
    {"beatCutter", measured_beatCutter, kCutLength},
    {"pitchDetector", measured_pitchDetector, kThinnedLength},
    {"keyOfBuffer", measured_keyOfBuffer, kThinnedLength},
}};

void run(const Part& part) {
    const bench::QuietOutput progressLinesGoNowhere;
    const TowardZeroScope mode;
    part.run();
}

}  // namespace

int main() {
    makePiece();
#if defined(__clang__)
    std::printf("compiler Clang %d.%d.%d\n", __clang_major__, __clang_minor__,
                __clang_patchlevel__);
#else
    std::printf("compiler GCC %d.%d.%d\n", __GNUC__, __GNUC_MINOR__, __GNUC_PATCHLEVEL__);
#endif
    for (const Part& part : kParts) {
        run(part);
        std::printf("%s %d\n", part.name, part.frames);
    }
    return 0;
}
