// SPDX-License-Identifier: MIT
#include "envelope/SimpleEnvelopeMaker.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "envelope/StereoFed.h"
#include "envelope/kickTrack.h"
#include "envelope/plainFilters.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using SimpleEnvelopeMakerTest = RoundTowardZero;

constexpr int kRate = 48000;
constexpr int kMinute = 60 * kRate;

std::vector<std::int16_t> envelopeOf(const Stereo& audio, int length, int blockFrames) {
    StereoFedSimpleEnvelope maker;
    EXPECT_TRUE(maker.create(kRate, length));
    feed(maker, audio, blockFrames);
    return maker.envelope();
}

// The oracle filters the whole track at once and takes every 128th frame of it.
TEST_F(SimpleEnvelopeMakerTest, EnvelopeIsTheSmoothedMagnitudeOfEvery128thFilteredFrame) {
    for (const int rate : {44100, 48000}) {
        const Stereo audio = stereoNoise(20000);
        StereoFedSimpleEnvelope maker;
        maker.create(rate, 20000);
        feed(maker, audio, rate / 75);
        const auto audioLowPass = PlainFilter::secondOrder(250.0, rate, true);
        const auto smoother = PlainFilter::secondOrder(5.0, rate / 128.0, true);
        const std::vector<double> levels = plainMagnitudes(audioLowPass.run(plainMono(audio)), 128);
        EXPECT_EQ(maker.envelope(), cutTo16Bits(smoother.run(levels)));
    }
}

TEST_F(SimpleEnvelopeMakerTest, AConstantSettlesAtItsOwnLevel) {
    const Stereo audio(2 * kRate, 1000);
    EXPECT_NEAR(envelopeOf(audio, kRate, 640).back(), 1000, 1);
}

TEST_F(SimpleEnvelopeMakerTest, LengthThatIsNoMultipleOf128EndsInAPartialChunk) {
    const Stereo audio(2 * 48005, 1000);  // 375 chunks and five frames
    const std::vector<std::int16_t> envelope = envelopeOf(audio, 48005, 640);
    ASSERT_EQ(envelope.size(), 376U);
    EXPECT_NEAR(envelope[375], 1000, 1);
}

TEST_F(SimpleEnvelopeMakerTest, IgnoresEveryFrameAfterTheDeclaredLength) {
    const Stereo audio = stereoNoise(30000);
    const Stereo shorter(audio.begin(), audio.begin() + 2 * 20005);
    EXPECT_EQ(envelopeOf(audio, 20005, 640), envelopeOf(shorter, 20005, 640));
}

TEST_F(SimpleEnvelopeMakerTest, BlocksOfAnySizeGiveTheSameEnvelope) {
    expectBlocksLeaveNoTrace(envelopeOf);
}

TEST_F(SimpleEnvelopeMakerTest, ResetEmptiesTheEnvelopeButKeepsTheFilterState) {
    StereoFedSimpleEnvelope maker;
    maker.create(kRate, kRate);
    feed(maker, Stereo(2 * kRate, 10000), 640);
    maker.reset();
    EXPECT_EQ(maker.envelope(), std::vector<std::int16_t>(375));
    feed(maker, Stereo(2 * kRate), 640);
    EXPECT_GT(maker.envelope()[0], 5000);
    EXPECT_EQ(maker.envelope().back(), 0);
}

TEST_F(SimpleEnvelopeMakerTest, CreateAgainEqualsANewMaker) {
    StereoFedSimpleEnvelope maker;
    maker.create(kRate, kRate);
    feed(maker, stereoNoise(kRate), 640);
    maker.create(44100, 20000);
    feed(maker, stereoNoise(20000), 588);
    StereoFedSimpleEnvelope fresh;
    fresh.create(44100, 20000);
    feed(fresh, stereoNoise(20000), 588);
    EXPECT_EQ(maker.envelope(), fresh.envelope());
}

/** A minute of kicks at 120 BPM from `firstKick` on, and beats that start elsewhere. */
struct Analysed {
    Analysed(double firstKick, double firstBeat, float bpm = 120.0F, double kickBpm = 120.0) {
        const double kickStep = 60.0 * kRate / kickBpm;
        StereoFedSimpleEnvelope maker;
        maker.create(kRate, kMinute);
        feed(maker, kickTrack(kMinute, kRate, regularFrames(firstKick, kickStep, kMinute)), 640);
        const double step = 60.0 * kRate / static_cast<double>(bpm);
        beats = beatsAt(regularFrames(firstBeat, step, kMinute), 60000.0F / bpm);
        beats.front().group = 3;
        refined = maker.analyze(bpm, beats);
    }
    peakss::BeatList beats;
    float refined;
};

// A period step of 0.01 values at 187.5 is 0.0064 BPM.
TEST_F(SimpleEnvelopeMakerTest, KeepsATempoThatIsRight) {
    EXPECT_NEAR(static_cast<double>(Analysed(24000.0, 24000.0).refined), 120.0, 0.0065);
}

// The first pulse is placed with the given tempo, amid the drift, and then held: for humps of equal
// height the least squares through it mend a quarter of the tempo error.
TEST_F(SimpleEnvelopeMakerTest, MovesATempoSomewhatOffTowardsTheKicks) {
    for (const double kickBpm : {119.5, 119.9, 120.1, 120.7}) {
        const Analysed result(24000.0, 24000.0, 120.0F, kickBpm);
        const double mended = (static_cast<double>(result.refined) - 120.0) / (kickBpm - 120.0);
        EXPECT_GT(mended, 0.15) << kickBpm;
        EXPECT_LT(mended, 1.0) << kickBpm;
    }
}

TEST_F(SimpleEnvelopeMakerTest, KeepsTheFirstBeatWhereTheBeatsAreOnThePulse) {
    const Analysed result(24000.0, 24480.0);
    EXPECT_EQ(result.beats.front().pos, 24480);
}

TEST_F(SimpleEnvelopeMakerTest, MovesHalfABeatEarlierWhenThePulsesLieBetween) {
    const Analysed result(12000.0, 24000.0);
    EXPECT_NEAR(result.beats.front().pos, 12000, 40);
}

TEST_F(SimpleEnvelopeMakerTest, MovesHalfABeatLaterWithoutRoomBeforeTheFirstBeat) {
    const Analysed result(12000.0 + 6000.0, 6000.0);
    EXPECT_NEAR(result.beats.front().pos, 18000, 40);
}

TEST_F(SimpleEnvelopeMakerTest, RebuiltListIsStrictlyPeriodicAndEndsBelowTheLength) {
    const Analysed result(24000.0, 24000.0);
    const auto& beats = result.beats;
    const double beat = 60.0 / static_cast<double>(result.refined) * kRate;
    EXPECT_LT(beats.back().pos, kMinute);
    EXPECT_GE(beats.back().pos + beat, kMinute);
    for (std::size_t i = 0; i < beats.size(); ++i) {
        EXPECT_NEAR(beats[i].pos, 24000.0 + static_cast<double>(i) * beat, 1.0);
        EXPECT_EQ(beats[i].group, static_cast<int>((i + 2) % 4) + 1);
        EXPECT_EQ(beats[i].phase, 0.0F);
        EXPECT_EQ(beats[i].band, -1);
        EXPECT_FALSE(beats[i].segHead);
        EXPECT_NEAR(static_cast<double>(beats[i].interval), beat / 48.0, 1e-3);
    }
}

std::vector<std::int32_t> numbersFrom(int firstNumber) {
    StereoFedSimpleEnvelope maker;
    maker.create(kRate, kRate * 2);
    peakss::BeatList beats = beatsAt({0, 24000}, 500.0F);
    beats.front().group = firstNumber;
    maker.analyze(120.0F, beats);
    std::vector<std::int32_t> numbers = numbersOf(beats);
    numbers.resize(4);
    return numbers;
}

TEST_F(SimpleEnvelopeMakerTest, AFirstNumberOutsideTheBarIsWrittenOnceThenFolded) {
    using Numbers = std::vector<std::int32_t>;
    EXPECT_EQ(numbersFrom(4), (Numbers{4, 1, 2, 3}));
    EXPECT_EQ(numbersFrom(7), (Numbers{7, 4, 1, 2}));
    EXPECT_EQ(numbersFrom(0), (Numbers{0, 1, 2, 3}));
    EXPECT_EQ(numbersFrom(-6), (Numbers{-6, -1, 0, 1}));
    EXPECT_EQ(numbersFrom(std::numeric_limits<int>::max()), (Numbers{2147483647, 4, 1, 2}));
}

// Silence: all sums are 0, so the shortest period stands: T = (187.5 − 2.1) / 375 s.
TEST_F(SimpleEnvelopeMakerTest, SilenceGivesTheFastestTempoTried) {
    StereoFedSimpleEnvelope maker;
    maker.create(kRate, kMinute);
    peakss::BeatList beats = beatsAt({0, 24000}, 500.0F);
    const double seconds = (((187.5 - 2.0) + 0.0 * 0.1) + -0.1 + 0.0 * 0.01) / 375.0;
    EXPECT_EQ(maker.analyze(120.0F, beats), static_cast<float>(60.0 / seconds));
    EXPECT_EQ(beats[1].interval, static_cast<float>(seconds * 1000.0));
    EXPECT_EQ(beats[1].pos, static_cast<int>(1 * 48000 * seconds + 0.0 + 0.5));
}

TEST_F(SimpleEnvelopeMakerTest, AnalyzingDoesNotChangeTheEnvelope) {
    StereoFedSimpleEnvelope maker;
    maker.create(kRate, kRate);
    feed(maker, stereoNoise(kRate), 640);
    const std::vector<std::int16_t> before = maker.envelope();
    const peakss::BeatList given = beatsAt({100, 24100}, 500.0F);
    peakss::BeatList once = given;
    peakss::BeatList twice = given;
    EXPECT_EQ(maker.analyze(120.0F, once), maker.analyze(120.0F, twice));
    EXPECT_EQ(positionsOf(once), positionsOf(twice));
    EXPECT_EQ(maker.envelope(), before);
}

TEST_F(SimpleEnvelopeMakerTest, LeavesEverythingWithoutATempoOrBeats) {
    StereoFedSimpleEnvelope maker;
    maker.create(kRate, kRate);
    for (const float bpm : {0.0F, -120.0F}) {
        peakss::BeatList beats = beatsAt({5, 6}, 500.0F);
        EXPECT_EQ(maker.analyze(bpm, beats), bpm);
        EXPECT_EQ(positionsOf(beats), (std::vector<std::int32_t>{5, 6}));
    }
    peakss::BeatList none;
    EXPECT_EQ(maker.analyze(120.0F, none), 120.0F);
    EXPECT_TRUE(none.empty());
    peakss::BeatList beats = beatsAt({5, 6}, 500.0F);
    EXPECT_TRUE(std::isnan(maker.analyze(std::nanf(""), beats)));
    EXPECT_EQ(beats.size(), 2U);
}

// A beat of less than one envelope value could be laid for ever: at 20000 BPM it is 1.125 values
// long, and the search goes 2.1 values below.
TEST_F(SimpleEnvelopeMakerTest, LeavesEverythingWhenARefinedBeatWouldHaveNoLength) {
    StereoFedSimpleEnvelope maker;
    maker.create(kRate, kRate);
    for (const float bpm : {20000.0F, 1e38F, std::numeric_limits<float>::infinity()}) {
        peakss::BeatList beats = beatsAt({5, 6}, 500.0F);
        EXPECT_EQ(maker.analyze(bpm, beats), bpm);
        EXPECT_EQ(beats.size(), 2U);
    }
}

TEST_F(SimpleEnvelopeMakerTest, ATempoNearZeroLeavesOneBeat) {
    StereoFedSimpleEnvelope maker;
    maker.create(kRate, kRate);
    for (const float bpm : {1e-44F, 1e-20F, 1e-3F}) {
        peakss::BeatList beats = beatsAt({5, 6}, 500.0F);
        EXPECT_GT(maker.analyze(bpm, beats), 0.0F);
        EXPECT_EQ(positionsOf(beats), std::vector<std::int32_t>{5});
    }
}

TEST_F(SimpleEnvelopeMakerTest, GridOfTheLongestTrackEndsBelowItsLength) {
    StereoFedSimpleEnvelope maker;
    const int longest = std::numeric_limits<int>::max();
    maker.create(kRate, longest);
    EXPECT_EQ(maker.envelope().size(), 16777216U);
    peakss::BeatList beats = beatsAt({longest - 100000, longest}, 500.0F);
    maker.analyze(120.0F, beats);
    EXPECT_EQ(beats.size(), 5U);  // beats of 23731 frames
    EXPECT_GT(beats.back().pos, longest - 24000);
    beats = beatsAt({std::numeric_limits<int>::min(), longest}, 500.0F);
    maker.analyze(120.0F, beats);
    // The half that rounds later positions is cut toward zero here.
    EXPECT_EQ(beats.front().pos, std::numeric_limits<int>::min() + 1);
}

TEST_F(SimpleEnvelopeMakerTest, ReleasedOrNeverCreatedIgnoresSamples) {
    StereoFedSimpleEnvelope maker;
    feed(maker, stereoNoise(1000), 640);
    maker.create(kRate, 1000);
    maker.putSample(nullptr, 640);
    maker.release();
    maker.release();
    feed(maker, stereoNoise(1000), 640);
    EXPECT_TRUE(maker.envelope().empty());
}

}  // namespace
}  // namespace beatatlas::test
