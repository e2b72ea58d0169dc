// SPDX-License-Identifier: MIT
// Oracle: two sessions of the core, each fed on its own.
#include "track/tempo/SessionPair.h"

#include <bit>
#include <cfenv>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/RoundingMode.h"
#include "session/Analyzer.h"
#include "session/tempoHundredths.h"
#include "support/TrackSynth.h"
#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas;
using namespace beatatlas::test;
using beatatlas::track::inner::SessionGrid;
using beatatlas::track::inner::SessionPair;

std::vector<std::uint32_t> bitsOf(const peakss::BeatList& beats) {
    std::vector<std::uint32_t> bits;
    for (const peakss::BeatInfo& beat : beats) {
        bits.push_back(static_cast<std::uint32_t>(beat.pos));
        bits.push_back(std::bit_cast<std::uint32_t>(beat.interval));
        bits.push_back(static_cast<std::uint32_t>(beat.group));
        bits.push_back(static_cast<std::uint32_t>(beat.band));
        bits.push_back(beat.segHead ? 1U : 0U);
    }
    return bits;
}

template <class Point>
std::vector<double> valuesOf(const Point* points, int count) {
    std::vector<double> values;
    for (int i = 0; i < count; ++i) {
        values.push_back(static_cast<double>(points[i].level));
        values.push_back(static_cast<double>(points[i].color));
    }
    return values;
}

void expectSessions(int rate, const StereoTrack& track, bool waves, int block) {
    SessionPair pair(rate, track.frames(), waves);
    hearBlocks(pair, track, block);
    pair.close();
    const TowardZeroScope mode;
    Analyzer varied;
    varied.setQuiet(true);
    varied.create(rate, track.frames(), 32, true, waves, waves, false);
    varied.setSample(track.left.data(), track.right.data(), track.frames());
    Analyzer simple;
    simple.setQuiet(true);
    simple.createSimple(rate, track.frames(), 0, track.frames(), waves, waves, false);
    simple.setSample(track.left.data(), track.right.data(), track.frames());
    EXPECT_EQ(pair.grids().varied.bpm100, varied.getBpm());
    EXPECT_EQ(pair.grids().simple.bpm100, simple.getBpm());
    EXPECT_EQ(bitsOf(pair.grids().varied.beats), bitsOf(varied.getBeatList()));
    EXPECT_EQ(bitsOf(pair.grids().simple.beats), bitsOf(simple.getBeatList()));
    EXPECT_EQ(valuesOf(pair.loudWave(), pair.loudNum()),
              valuesOf(varied.getLoudWave(), varied.getLoudNum()));
    EXPECT_EQ(valuesOf(pair.dotsWave(), pair.dotsNum()),
              valuesOf(varied.getDotsWave(), varied.getDotsNum()));
    EXPECT_EQ(valuesOf(pair.zoomWave(), pair.zoomNum()),
              valuesOf(varied.getZoomWave(), varied.getZoomNum()));
}

StereoTrack music(int rate, double bpm, int seconds, double swing,
                  const std::vector<TempoChange>& changes = {}) {
    TrackPlan plan;
    plan.sampleRate = rate;
    plan.lengthFrames = static_cast<std::int64_t>(rate) * seconds + 77;
    plan.bpm = bpm;
    plan.swing = swing;
    plan.tempoChanges = changes;
    plan.stereoWidth = 0.5;
    return TrackSynth(plan).renderAll();
}

TEST(SessionPair, GivesTheGridsOfTwoSessions) {
    for (const int rate : {44100, 48000})
        for (const double bpm : {72.0, 98.5, 128.0, 174.0})
            expectSessions(rate, music(rate, bpm, 25, bpm < 100.0 ? 2.0 / 3.0 : 0.5), false, 16384);
}

TEST(SessionPair, FollowsTempoChangesAsTheVariedSessionDoes) {
    expectSessions(44100, music(44100, 100.0, 40, 0.5, {{12.0, 117.0}, {25.0, 90.0}}), false,
                   16384);
}

TEST(SessionPair, MakesTheWavesOfASession) {
    expectSessions(44100, music(44100, 126.0, 12, 0.5), true, 16384);
}

TEST(SessionPair, DoesNotCareForTheSizeOfBlocks) {
    const StereoTrack track = music(48000, 140.0, 8, 0.5);
    for (const int block : {1, 639, 640, 641, 100000}) expectSessions(48000, track, true, block);
}

TEST(SessionPair, AnswersForTracksWithoutBeats) {
    expectSessions(44100, inBothChannels(silence(1)), true, 16384);
    expectSessions(44100, inBothChannels(silence(587)), true, 16384);
    expectSessions(44100, inBothChannels(silence(100000)), true, 16384);
    expectSessions(44100, inBothChannels(whiteNoise(200000, 20000.0, 3)), true, 16384);
}

TEST(SessionPair, LeavesTheRoundingModeAlone) {
    const StereoTrack track = music(44100, 126.0, 4, 0.5);
    ASSERT_EQ(std::fesetround(FE_UPWARD), 0);
    SessionPair pair(44100, track.frames(), false);
    hearBlocks(pair, track, 16384);
    pair.close();
    const int left = std::fegetround();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(left, FE_UPWARD);
}

}  // namespace
