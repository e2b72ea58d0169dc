// SPDX-License-Identifier: MIT
#include "envelope/UnitBeatAdjust.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "envelope/kickTrack.h"
#include "envelope/plainFilters.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using UnitBeatAdjustTest = RoundTowardZero;
using Positions = std::vector<std::int32_t>;

constexpr int kRate = 48000;
constexpr int kMinute = 60 * kRate;
constexpr double kBeat = 24000.0;  // 120 BPM
constexpr int kMost = std::numeric_limits<std::int32_t>::max();

std::vector<std::int16_t> levelOf(const Stereo& audio, int length, int blockFrames) {
    UnitBeatAdjust adjust;
    EXPECT_TRUE(adjust.create(kRate, length));
    feed(adjust, audio, blockFrames);
    return adjust.level();
}

// The oracle filters every fourth frame of the whole track at once.
TEST_F(UnitBeatAdjustTest, LevelIsTheSmoothedMagnitudeOfTheHighsOfEveryFourthFrame) {
    for (const int rate : {44100, 48000}) {
        const Stereo audio = stereoNoise(20000);
        UnitBeatAdjust adjust;
        adjust.create(rate, 20000);
        feed(adjust, audio, rate / 75);
        std::vector<double> quarter;
        const std::vector<double> mono = plainMono(audio);
        for (std::size_t i = 0; i < mono.size(); i += 4) quarter.push_back(mono[i]);
        const auto highPass = PlainFilter::secondOrder(2000.0, rate / 4, false);
        const auto lowPass = PlainFilter::secondOrder(1000.0, rate / 4, true);
        std::vector<double> levels = lowPass.run(plainMagnitudes(highPass.run(quarter), 1));
        for (double& level : levels) level = std::clamp(level, 0.0, 32767.0);
        EXPECT_EQ(adjust.level(), cutTo16Bits(levels));
    }
}

// A full-scale square at 6 kHz, two level samples long: the high-pass overshoots beyond 16 bits.
TEST_F(UnitBeatAdjustTest, LevelIsHeldBetweenZeroAndTheLargest) {
    Stereo audio(2 * 48000);
    for (std::size_t i = 0; i < audio.size(); ++i) audio[i] = (i / 8) % 2 == 0 ? 32767 : -32768;
    for (std::size_t i = 48000; i < audio.size(); ++i) audio[i] = 0;
    const std::vector<std::int16_t> level = levelOf(audio, 48000, 640);
    EXPECT_EQ(*std::max_element(level.begin(), level.end()), 32767);
    EXPECT_GE(*std::min_element(level.begin(), level.end()), 0);
}

TEST_F(UnitBeatAdjustTest, BlocksOfAnyMultipleOfFourGiveTheSameLevel) {
    const Stereo audio = stereoNoise(20002);
    const std::vector<std::int16_t> whole = levelOf(audio, 20002, 20002);
    EXPECT_EQ(whole.size(), 5001U);
    for (const int block : {4, 8, 252, 256, 260, 588, 640, 4096}) {
        EXPECT_EQ(levelOf(audio, 20002, block), whole) << "blocks of " << block;
    }
}

// Each block starts anew with its first frame: odd blocks bring more samples than a quarter.
TEST_F(UnitBeatAdjustTest, BlocksOfOtherSizesSlipTheDecimation) {
    EXPECT_EQ(levelOf(stereoNoise(3000), 30000, 5).size(), 1200U);
    EXPECT_EQ(levelOf(stereoNoise(3000), 30000, 1).size(), 3000U);
}

TEST_F(UnitBeatAdjustTest, IgnoresEveryFrameAfterTheDeclaredLength) {
    const Stereo audio = stereoNoise(30000);
    const Stereo shorter(audio.begin(), audio.begin() + 2 * 20002);
    EXPECT_EQ(levelOf(audio, 20002, 640), levelOf(shorter, 20002, 640));
    EXPECT_EQ(levelOf(stereoNoise(20000), 20000, 1).size(), 5000U);
}

TEST_F(UnitBeatAdjustTest, IgnoresBadBlocks) {
    UnitBeatAdjust adjust;
    const Stereo audio = stereoNoise(640);
    adjust.putSample(audio.data(), 640);
    EXPECT_TRUE(adjust.level().empty());
    adjust.create(kRate, kMinute);
    adjust.putSample(nullptr, 640);
    adjust.putSample(audio.data(), 0);
    adjust.putSample(audio.data(), -640);
    EXPECT_TRUE(adjust.level().empty());
}

// 900 s at 48 kHz are 10,800,000 level samples; the 901st second is not kept.
TEST_F(UnitBeatAdjustTest, KeepsNineHundredSecondsOfALongerTrack) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, 1000 * kRate);
    const Stereo second(2 * kRate, 100);
    for (int i = 0; i < 899; ++i) adjust.putSample(second.data(), kRate);
    EXPECT_EQ(adjust.level().size(), 899U * 12000U);
    for (int i = 0; i < 2; ++i) feed(adjust, second, 30000);
    EXPECT_EQ(adjust.level().size(), 900U * 12000U);
    // What begins less than four frames may still bring one sample, once.
    for (int i = 0; i < 2; ++i) {
        adjust.putSample(second.data(), 3);
        EXPECT_EQ(adjust.level().size(), 900U * 12000U + 1U);
    }
}

TEST_F(UnitBeatAdjustTest, ADeclaredLengthOfTheLargestIntIsTakenAsItComes) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, kMost);
    feed(adjust, kickTrack(kMinute, kRate, regularFrames(0.0, kBeat, kMinute)), 640);
    EXPECT_EQ(adjust.level().size(), 720000U);
    float bpm = 120.0F;
    peakss::BeatList beats = beatsAt(regularFrames(0.0, kBeat, kMinute), 500.0F);
    adjust.analyze(bpm, beats);
    EXPECT_NEAR(bpm, 120.0F, 0.002F);
    EXPECT_GT(beats.back().pos, kMost - 25000);
}

/** Refines beats over a minute of kicks at 120 BPM from the start on. */
struct Refined {
    Refined(double firstBeat, float givenBpm, double kickBpm = 120.0) : bpm(givenBpm) {
        const double kickStep = 60.0 * kRate / kickBpm;
        UnitBeatAdjust adjust;
        adjust.create(kRate, kMinute);
        feed(adjust, kickTrack(kMinute, kRate, regularFrames(12000.0, kickStep, kMinute)), 640);
        const double step = 60.0 * kRate / static_cast<double>(bpm);
        beats = beatsAt(regularFrames(firstBeat, step, kMinute), 60000.0F / bpm);
        adjust.analyze(bpm, beats);
    }
    /** The largest distance of a beat from the kick it belongs to, in ms. */
    double worstMs(double kickBpm = 120.0) const {
        double worst = 0.0;
        for (std::size_t i = 0; i < beats.size(); ++i) {
            const double kick = 12000.0 + static_cast<double>(i) * 60.0 * kRate / kickBpm;
            worst = std::max(worst, std::fabs(beats[i].pos - kick) / 48.0);
        }
        return worst;
    }
    float bpm;
    peakss::BeatList beats;
};

// A dry kick at known frames; beats 15 ms off to either side and a tempo 0.02 BPM off come back.
TEST_F(UnitBeatAdjustTest, BringsTempoAndBeatsBackToDryKicks) {
    for (const double offsetMs : {-15.0, 0.0, 15.0}) {
        for (const float offsetBpm : {-0.02F, 0.0F, 0.02F}) {
            const Refined refined(12000.0 + offsetMs * 48.0, 120.0F + offsetBpm);
            EXPECT_NEAR(refined.bpm, 120.0F, 0.005F) << offsetMs << " ms " << offsetBpm << " BPM";
            EXPECT_LT(refined.worstMs(), 3.0) << offsetMs << " ms " << offsetBpm << " BPM";
        }
    }
}

TEST_F(UnitBeatAdjustTest, FollowsKicksOfAnOddTempo) {
    const Refined refined(12000.0, 133.95F, 133.97);
    EXPECT_NEAR(static_cast<double>(refined.bpm), 133.97, 0.003);
    EXPECT_LT(refined.worstMs(133.97), 3.0);
}

/** Beats that no tempo trial touches: the first lies before the start of the track. */
peakss::BeatList untriedBeats(const std::vector<std::int64_t>& others) {
    std::vector<std::int64_t> frames{-400};
    frames.insert(frames.end(), others.begin(), others.end());
    return beatsAt(frames, 500.0F);
}

// The window's place 0 is 600 samples before the beat: place p is (p − 600) × 4 frames after it,
// and trunc(12000 × −0.001) = −12 samples = −48 frames come on top.
TEST_F(UnitBeatAdjustTest, ThePeakComesAboutAMillisecondAfterTheBeats) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, kRate * 10);
    feed(adjust, kickTrack(kRate * 10, kRate, {47700}), 640);
    const auto& level = adjust.level();
    const auto peak = std::max_element(level.begin(), level.end()) - level.begin();
    peakss::BeatList beats = untriedBeats({23600, 47600, 71600});
    float bpm = 120.0F;
    adjust.analyze(bpm, beats);
    EXPECT_EQ(bpm, 120.0F);
    EXPECT_EQ(adjust.trialCount(), 0);
    const int shift = (static_cast<int>(peak) - 47600 / 4) * 4 - 48;
    // Moved by less than 400 frames, the first stays before the start and goes.
    EXPECT_GT(shift, 0);
    EXPECT_EQ(beats[0].pos, 23600 + shift);
    EXPECT_EQ(beats[1].pos, 47600 + shift);
}

// trunc(11025 × −0.001) = −11 samples at 44.1 kHz: −44 frames.
TEST_F(UnitBeatAdjustTest, TheMillisecondIsCutToWholeLevelSamples) {
    UnitBeatAdjust adjust;
    adjust.create(44100, 441000);
    feed(adjust, kickTrack(441000, 44100, {44100}), 588);
    const auto& level = adjust.level();
    const auto peak = std::max_element(level.begin(), level.end()) - level.begin();
    peakss::BeatList beats = untriedBeats({22000, 44000, 66000});
    float bpm = 120.0F;
    adjust.analyze(bpm, beats);
    EXPECT_EQ(beats[2].pos, 44000 + (static_cast<int>(peak) - 11000) * 4 - 44);
}

// Nothing above 0 in the window: its place 0 counts as the peak, 600 samples before the beats.
TEST_F(UnitBeatAdjustTest, SilenceMovesTheGridBackByTheWholeHalfWindow) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, kRate * 10);
    feed(adjust, Stereo(2 * kRate * 10), 640);
    peakss::BeatList beats = untriedBeats({23600, 47600});
    float bpm = 120.0F;
    adjust.analyze(bpm, beats);
    EXPECT_EQ(beats[0].pos, 23600 - 2400 - 48);
    EXPECT_EQ(beats[1].pos, 47600 - 2400 - 48);
    EXPECT_EQ(bpm, 120.0F);
}

// The first and the last beat's neighbourhoods are left out.
TEST_F(UnitBeatAdjustTest, FirstAndLastBeatAreNotHeard) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, kRate * 10);
    feed(adjust, kickTrack(kRate * 10, kRate, {71600}), 640);
    peakss::BeatList beats = untriedBeats({23600, 47600, 71600});
    float bpm = 120.0F;
    adjust.analyze(bpm, beats);
    EXPECT_EQ(beats[0].pos, 23600 - 2448);
}

// Fed up to four frames before the end of the window around 47600: one level sample short, it is
// skipped whole, as is the window around 1200, which starts before the track.
TEST_F(UnitBeatAdjustTest, AWindowPastTheStoredLevelIsSkippedWhole) {
    const auto firstBeatAfter = [](int fedFrames) {
        UnitBeatAdjust adjust;
        adjust.create(kRate, kRate * 10);
        feed(adjust, kickTrack(fedFrames, kRate, {1200, 47600}), 640);
        peakss::BeatList beats = untriedBeats({1200, 47600, 71600});
        float bpm = 120.0F;
        adjust.analyze(bpm, beats);
        return beats[0].pos;
    };
    EXPECT_EQ(firstBeatAfter(47600 + 2396), 47600 - 2448 - 24000);  // nothing heard; 1200 is gone
    EXPECT_NEAR(firstBeatAfter(47600 + 2400), 1200, 48);
}

// The track is declared to end there: the level's capacity bounds the windows too.
TEST_F(UnitBeatAdjustTest, BeatsBeyondTheTrackAreMovedToo) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, 48000);
    feed(adjust, kickTrack(48000, kRate, {24000}), 640);
    peakss::BeatList beats = beatsAt({-400, 24000, 4000000, kMost}, 500.0F);
    float bpm = 120.0F;
    adjust.analyze(bpm, beats);
    EXPECT_EQ(beats.size(), 2U);
    EXPECT_LT(beats.back().pos, 48000);
}

// Head and tail after the move: 12000 has no room before it, 45600 + 24000 has none after.
TEST_F(UnitBeatAdjustTest, BothEndsAreFilledBeatByBeat) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, kMinute);
    feed(adjust, kickTrack(kMinute, kRate, regularFrames(12000.0, kBeat, kMinute)), 640);
    peakss::BeatList beats =
        beatsAt({kMost - 10 * 24000, 132000, 156000, 180000}, 500.0F);  // the first is not tried
    beats[0].pos = -24000 * 2;
    float bpm = 120.0F;
    adjust.analyze(bpm, beats);
    EXPECT_EQ(beats.size(), 120U);
    EXPECT_NEAR(beats.front().pos, 12000, 150);
    EXPECT_NEAR(beats.back().pos, 12000 + 119 * 24000, 150);
    for (std::size_t i = 1; i < beats.size(); ++i) {
        ASSERT_EQ(beats[i].group, beats[i - 1].group % 4 + 1);
    }
}

TEST_F(UnitBeatAdjustTest, NothingHappensWithoutATempoOrBeats) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, kMinute);
    for (float bpm : {0.0F, -120.0F, std::nanf("")}) {
        peakss::BeatList beats = beatsAt({-5, 24000}, 500.0F);
        adjust.analyze(bpm, beats);
        EXPECT_EQ(positionsOf(beats), (Positions{-5, 24000}));
    }
    float bpm = 120.0F;
    peakss::BeatList none;
    adjust.analyze(bpm, none);
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(bpm, 120.0F);
}

TEST_F(UnitBeatAdjustTest, WithoutAUsableIntervalTheEndsAreNotFilled) {
    for (const float interval : {0.0F, -500.0F, std::nanf(""), 1e38F}) {
        UnitBeatAdjust adjust;
        adjust.create(kRate, kMinute);
        peakss::BeatList beats = beatsAt({-400, 480000, 504000}, interval);
        float bpm = 120.0F;
        adjust.analyze(bpm, beats);
        EXPECT_EQ(positionsOf(beats), (Positions{480000 - 2448, 504000 - 2448}));
    }
}

TEST_F(UnitBeatAdjustTest, WhenEveryBeatIsRemovedNoneIsAdded) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, kMinute);
    peakss::BeatList beats = beatsAt({-400, 100}, 500.0F);
    float bpm = 120.0F;
    adjust.analyze(bpm, beats);
    EXPECT_TRUE(beats.empty());
}

TEST_F(UnitBeatAdjustTest, SurvivesAbsurdTemposAndPositions) {
    constexpr float kInf = std::numeric_limits<float>::infinity();
    const Stereo audio = kickTrack(10 * kRate, kRate, regularFrames(0.0, kBeat, 10.0 * kRate));
    for (const float tempo : {1e-44F, 0.04F, 0.05F, 0.06F, 1.0F, 181.0F, 1e6F, 1e38F, kInf}) {
        for (const std::int64_t first : {std::int64_t{std::numeric_limits<std::int32_t>::min()},
                                         std::int64_t{0}, std::int64_t{kMost - 100000}}) {
            UnitBeatAdjust adjust;
            adjust.create(kRate, 10 * kRate);
            feed(adjust, audio, 640);
            peakss::BeatList beats = beatsAt({first, first + 24000, first + 48000}, 500.0F);
            float bpm = tempo;
            adjust.analyze(bpm, beats);
            EXPECT_LE(beats.size(), 200000U);
        }
    }
}

TEST_F(UnitBeatAdjustTest, CreateAgainEqualsANewObject) {
    UnitBeatAdjust again;
    again.create(44100, 100000);
    feed(again, stereoNoise(100000), 588);
    peakss::BeatList others = beatsAt({0, 22050, 44100}, 500.0F);
    float other = 120.0F;
    again.analyze(other, others);
    again.create(kRate, kMinute);
    UnitBeatAdjust fresh;
    fresh.create(kRate, kMinute);
    const Stereo audio = kickTrack(kMinute, kRate, regularFrames(0.0, kBeat, kMinute));
    Positions found[2];
    float bpms[2] = {119.99F, 119.99F};
    int i = 0;
    for (UnitBeatAdjust* adjust : {&again, &fresh}) {
        feed(*adjust, audio, 640);
        peakss::BeatList beats = beatsAt(regularFrames(0.0, kBeat, kMinute), 500.0F);
        adjust->analyze(bpms[i], beats);
        found[i++] = positionsOf(beats);
    }
    EXPECT_EQ(found[0], found[1]);
    EXPECT_EQ(bpms[0], bpms[1]);
    EXPECT_EQ(again.trialCount(), fresh.trialCount());
}

TEST_F(UnitBeatAdjustTest, ResetClearsTheCountersAndKeepsTheLevelAndTheGrids) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, kMinute);
    feed(adjust, stereoNoise(48000), 640);
    peakss::BeatList beats = beatsAt({0, 24000, 48000}, 500.0F);
    float bpm = 120.0F;
    adjust.analyze(bpm, beats);
    const std::size_t grids = adjust.grids().size();
    EXPECT_GT(grids, 0U);
    adjust.reset();
    EXPECT_EQ(adjust.trialCount(), 0);
    EXPECT_EQ(adjust.level().size(), 12000U);
    EXPECT_EQ(adjust.grids().size(), grids);
}

TEST_F(UnitBeatAdjustTest, ReleaseTwiceLeavesAnEmptyObject) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, kMinute);
    feed(adjust, stereoNoise(48000), 640);
    adjust.release();
    adjust.release();
    EXPECT_TRUE(adjust.level().empty());
    float bpm = 120.0F;
    peakss::BeatList beats = beatsAt({0, 24000, 48000}, 500.0F);
    adjust.analyze(bpm, beats);
    EXPECT_EQ(bpm, 120.0F);
}

}  // namespace
}  // namespace beatatlas::test
