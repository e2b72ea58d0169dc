// SPDX-License-Identifier: MIT
// The states of a session and what each call does in each of them.
#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/HostSession.h"

namespace {

using namespace beatatlas::test;

StereoTrack tone(int frames) {
    StereoTrack track;
    for (int i = 0; i < frames; ++i) track.left.push_back(i / 50 % 2 == 0 ? 8000.0F : -8000.0F);
    track.right = track.left;
    return track;
}

SessionResults emptyResults() {
    return {};
}

TEST(SessionLifeTest, RefusedLengthGivesAnInertSession) {
    StereoTrack track = tone(2000);
    for (int refused : {0, -1, std::numeric_limits<int>::min()}) {
        HostSession session({.key = true}, refused);
        ASSERT_NE(session.handle(), nullptr);
        session.feedPre(track, 0, 2000);
        session.feed(track, 0, 2000);
        EXPECT_TRUE(sameBits(session.results(), emptyResults()));
    }
}

TEST(SessionLifeTest, NegativeSectionBeatsGiveAnInertSession) {
    StereoTrack track = tone(2000);
    HostSession session({.sectionBeats = -1}, 2000);
    session.feed(track, 0, 2000);
    EXPECT_FALSE(BA_Analyzed(session.handle()));
    EXPECT_EQ(BA_GetZoomWave(session.handle(), nullptr), 0);
}

TEST(SessionLifeTest, RefusedCreateLeavesTheRoundingModeAlone) {
    ASSERT_EQ(std::fegetround(), FE_TONEAREST);
    void* session = BA_CreateConst44k(0, 32, true, true, true);
    EXPECT_EQ(std::fegetround(), FE_TONEAREST);
    BA_Release(session);
}

TEST(SessionLifeTest, CreateAndFeedingLeaveTheThreadRoundingTowardZero) {
    StereoTrack track = tone(2000);
    HostSession session({}, 2000);
    EXPECT_EQ(std::fegetround(), FE_TOWARDZERO);
    std::fesetround(FE_TONEAREST);
    session.feed(track, 0, 1000);
    EXPECT_EQ(std::fegetround(), FE_TOWARDZERO);
    std::fesetround(FE_TONEAREST);
    session.results();
    EXPECT_EQ(std::fegetround(), FE_TONEAREST) << "getters give the mode back";
}

TEST(SessionLifeTest, IsAnalysedByTheCallThatCompletesTheTrack) {
    StereoTrack track = tone(1000);
    HostSession session({.rate = 48000}, 1000);
    session.feed(track, 0, 999);
    EXPECT_FALSE(BA_Analyzed(session.handle()));
    session.feed(track, 999, 1);
    EXPECT_TRUE(BA_Analyzed(session.handle()));
}

// 1000 frames at 48,000 are a block of 640 and one of 360: four zoom points of 320, the last one
// short.
TEST(SessionLifeTest, DispatchesAShortLastBlockAndThenAnalyses) {
    StereoTrack track = tone(1000);
    HostSession session({.rate = 48000}, 1000);
    session.feed(track, 0, 1000);
    EXPECT_TRUE(BA_Analyzed(session.handle()));
    EXPECT_EQ(BA_GetZoomWave(session.handle(), nullptr), 4);
}

// Of 38,121 frames at 48,000 the last 361 are in block 60, which ends at 38,400. The last frame is
// no multiple of four: the dots wave does not see the end, and would go on with more blocks.
TEST(SessionLifeTest, CompletingCallIsHeardToTheEndOfItsBlock) {
    constexpr int kDeclared = 38121;
    constexpr int kBlockEnd = 38400;
    StereoTrack track = tone(2 * kBlockEnd);
    for (int i = kDeclared; i < 2 * kBlockEnd; ++i)
        track.left[static_cast<std::size_t>(i)] = i < kBlockEnd ? 30000.0F : 100.0F;
    const auto resultsOf = [&track](int frames) {
        HostSession session({.rate = 48000}, kDeclared);
        session.feed(track, 0, frames);
        return session.results();
    };
    const SessionResults toBlockEnd = resultsOf(kBlockEnd);
    EXPECT_FALSE(sameBits(toBlockEnd, resultsOf(kDeclared)));
    EXPECT_TRUE(sameBits(toBlockEnd, resultsOf(2 * kBlockEnd)));
}

TEST(SessionLifeTest, CallsAfterTheCompletingOneAreIgnored) {
    StereoTrack track = tone(10000);
    HostSession session({.rate = 48000}, 1000);
    session.feed(track, 0, 1000);
    const SessionResults results = session.results();
    session.feed(track, 1000, 9000);
    EXPECT_TRUE(sameBits(session.results(), results));
}

// The low 16 bits of 32768 are those of -32768: both halves of a square wave at full scale become
// the same value, and nothing is left that moves. At 32767 the wave of 480 Hz is treble to the zoom
// wave, a constant is bass.
TEST(SessionLifeTest, PositiveFullScaleWrapsAndLouderToo) {
    const auto zoomOf = [](float high, float low) {
        StereoTrack track;
        for (int i = 0; i < 48000; ++i) track.left.push_back(i / 50 % 2 == 0 ? high : low);
        track.right = track.left;
        HostSession session({.rate = 48000}, 48000);
        session.feed(track, 0, 48000);
        const std::vector<BA_WaveInfo> zoom = session.results().zoom;
        return zoom.at(100);
    };
    EXPECT_EQ(zoomOf(32767.0F, -32768.0F).color, 7);
    EXPECT_EQ(zoomOf(32767.99F, -32768.0F).color, 7);
    EXPECT_EQ(zoomOf(32768.0F, -32768.0F).color, 0);
    // 65536 wraps to 0.
    EXPECT_EQ(zoomOf(65536.0F, 0.0F).level, 0.0F);
}

TEST(SessionLifeTest, KeySessionsIgnoreTheTrackUntilThePreCheckIsComplete) {
    StereoTrack track = tone(5000);
    HostSession session({.key = true}, 5000);
    session.feed(track, 0, 5000);
    EXPECT_EQ(BA_GetZoomWave(session.handle(), nullptr), 0);
    session.feedPre(track, 0, 4999);
    session.feed(track, 0, 5000);
    EXPECT_FALSE(BA_Analyzed(session.handle()));
    session.feedPre(track, 4999, 1);
    session.feed(track, 0, 5000);
    EXPECT_TRUE(BA_Analyzed(session.handle()));
}

TEST(SessionLifeTest, PreCheckIsIgnoredWithoutKeyDetection) {
    StereoTrack track = tone(5000);
    HostSession fedTwice({}, 5000);
    fedTwice.feedPre(track, 0, 5000);
    fedTwice.feed(track, 0, 5000);
    HostSession fedOnce({}, 5000);
    fedOnce.feed(track, 0, 5000);
    EXPECT_TRUE(sameBits(fedTwice.results(), fedOnce.results()));
}

TEST(SessionLifeTest, NoBeatAnalysisStillAnalysesAndFeedsTheViews) {
    StereoTrack track = tone(5000);
    HostSession session({.sectionBeats = 0}, 5000);
    session.feed(track, 0, 5000);
    EXPECT_TRUE(BA_Analyzed(session.handle()));
    EXPECT_EQ(BA_GetBpm(session.handle()), 0);
    EXPECT_EQ(BA_GetBeatNum(session.handle()), 0);
    EXPECT_EQ(session.results().loud.size(), 400U);
    EXPECT_EQ(session.results().zoom.size(), 18U);  // 5000 / 294, rounded up
}

TEST(SessionLifeTest, EmptyBeatListWritesNothing) {
    HostSession session({}, 1000);
    BA_BeatInfo beat{1, 2, 3};
    BA_GetBeatList(session.handle(), &beat);
    EXPECT_EQ(beat.pos, 1);
}

TEST(SessionLifeTest, CountsOfZeroAndLessAndNullArraysDoNothing) {
    StereoTrack track = tone(1000);
    HostSession session({.key = true}, 1000);
    float* samples = track.left.data();
    for (int count : {0, -1, std::numeric_limits<int>::min()}) {
        BA_SetSamplePre(session.handle(), samples, samples, count);
        BA_SetSample(session.handle(), samples, samples, count);
    }
    BA_SetSamplePre(session.handle(), nullptr, samples, 1000);
    BA_SetSamplePre(session.handle(), samples, nullptr, 1000);
    BA_SetSample(session.handle(), samples, samples, 1000);
    EXPECT_FALSE(BA_Analyzed(session.handle()))
        << "the pre-check must not have counted these calls";
    BA_SetSamplePre(session.handle(), samples, samples, 1000);
    BA_SetSample(session.handle(), nullptr, samples, 1000);
    BA_SetSample(session.handle(), samples, nullptr, 1000);
    EXPECT_FALSE(BA_Analyzed(session.handle()));
    BA_SetSample(session.handle(), samples, samples, 1000);
    EXPECT_TRUE(BA_Analyzed(session.handle()));
}

TEST(SessionLifeTest, OneFrameIsATrack) {
    StereoTrack track = tone(1);
    for (SessionKind kind : {SessionKind::constant, SessionKind::varied, SessionKind::simple}) {
        for (int rate : {44100, 48000}) {
            HostSession session({.kind = kind, .rate = rate, .key = true}, 1);
            session.feedPre(track, 0, 1);
            session.feed(track, 0, 1);
            EXPECT_TRUE(BA_Analyzed(session.handle()));
            EXPECT_EQ(BA_GetZoomWave(session.handle(), nullptr), 1);
        }
    }
}

using CreateFunction = void* (*)(int, int, bool, bool, bool);

std::vector<BA_WaveInfo> zoomWaveOf(CreateFunction create, StereoTrack& track, int& bpm) {
    void* session = create(track.frames(), 16, true, true, false);
    BA_SetSample(session, track.left.data(), track.right.data(), track.frames());
    std::vector<BA_WaveInfo> zoom(static_cast<std::size_t>(BA_GetZoomWave(session, nullptr)));
    BA_GetZoomWave(session, zoom.data());
    bpm = BA_GetBpm(session);
    BA_Release(session);
    std::fesetround(FE_TONEAREST);
    return zoom;
}

TEST(SessionLifeTest, CreateAndVariedSessionsBehaveIdentically) {
    StereoTrack track = tone(48000);
    const std::vector<std::array<CreateFunction, 2>> twins{{BA_Create48k, BA_CreateVaried48k},
                                                           {BA_Create44k, BA_CreateVaried44k}};
    for (const auto& [plain, varied] : twins) {
        int plainBpm = -1;
        int variedBpm = -2;
        const std::vector<BA_WaveInfo> a = zoomWaveOf(plain, track, plainBpm);
        const std::vector<BA_WaveInfo> b = zoomWaveOf(varied, track, variedBpm);
        EXPECT_EQ(plainBpm, variedBpm);
        ASSERT_EQ(a.size(), b.size());
        for (std::size_t i = 0; i < a.size(); ++i) EXPECT_EQ(a[i].level, b[i].level);
    }
}

// Values no decoder should yield, but some do.
TEST(SessionLifeTest, ImpossibleSamplesDoNoHarm) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    StereoTrack track = tone(30000);
    const float odd[] = {std::nanf(""), kInfinity, -kInfinity,    1e38F,
                         -1e38F,        1e-42F,    2147483648.0F, -3e9F};
    for (std::size_t i = 0; i < 16000; ++i) {
        track.left[i] = odd[i % 8];
        track.right[i] = odd[i / 8 % 8];
    }
    for (SessionKind kind : {SessionKind::constant, SessionKind::varied, SessionKind::simple}) {
        const SessionResults results = analyseTrack({.kind = kind, .key = true}, track, {1000});
        EXPECT_TRUE(results.analyzed);
        EXPECT_EQ(results.zoom.size(), 103U);  // 30000 / 294, rounded up
    }
}

// The loudness wave works on floats and may answer with NaN; whatever works on 16 bits hears a 0.
TEST(SessionLifeTest, ANaNCountsAsZeroForTheZoomWaveAndTheKey) {
    StereoTrack silenced = tone(150000);
    StereoTrack poisoned = silenced;
    for (std::size_t i = 40000; i < 60000; i += 7) {
        silenced.left[i] = silenced.right[i] = 0.0F;
        poisoned.left[i] = poisoned.right[i] = std::nanf("");
    }
    const SessionResults expected = analyseTrack({.key = true}, silenced, {1000});
    SessionResults results = analyseTrack({.key = true}, poisoned, {1000});
    results.bpm = expected.bpm;
    results.beats = expected.beats;
    results.loud = expected.loud;
    results.dots = expected.dots;
    EXPECT_TRUE(sameBits(results, expected));
}

// A bass peak beyond 32 bits counts as the most negative integer, and the point's level is weighed
// with it.
TEST(SessionLifeTest, SamplesBeyondThirtyTwoBitsMayTurnALoudnessPointNegative) {
    constexpr int kFrames = 441000;
    StereoTrack track = tone(kFrames);
    for (std::size_t i = 0; i < kFrames; ++i)
        if (i / 2205 % 10 == 0) track.left[i] = track.right[i] = i / 200 % 2 == 0 ? 1e12F : -1e12F;
    const auto isNegative = [](const BA_WaveInfo& point) { return point.level < 0.0F; };
    EXPECT_EQ(std::ranges::count_if(analyseTrack({}, tone(kFrames), {1000}).loud, isNegative), 0);
    EXPECT_GT(std::ranges::count_if(analyseTrack({}, track, {1000}).loud, isNegative), 0);
}

TEST(SessionLifeTest, ASessionCanBeReleasedAtEveryStage) {
    StereoTrack track = tone(3000);
    { HostSession created({.key = true}, 3000); }
    {
        HostSession preChecking({.key = true}, 3000);
        preChecking.feedPre(track, 0, 1000);
    }
    {
        HostSession preChecked({.key = true}, 3000);
        preChecked.feedPre(track, 0, 3000);
    }
    {
        HostSession feeding({.key = true}, 3000);
        feeding.feedPre(track, 0, 3000);
        feeding.feed(track, 0, 1500);
    }
}

}  // namespace
