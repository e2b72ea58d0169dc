// SPDX-License-Identifier: MIT
#include "envelope/UnitEnvelopeMaker.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "envelope/PulsePeaks.h"
#include "envelope/StereoFed.h"
#include "envelope/kickTrack.h"
#include "envelope/plainFilters.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using UnitEnvelopeMakerTest = RoundTowardZero;
using Positions = std::vector<std::int32_t>;

constexpr int kRate = 48000;
constexpr int kMinute = 60 * kRate;
constexpr double kBeat = 24000.0;  // 120 BPM

std::vector<std::int16_t> envelopeOf(const Stereo& audio, int length, int blockFrames) {
    StereoFedUnitEnvelope maker;
    EXPECT_TRUE(maker.create(kRate, length));
    feed(maker, audio, blockFrames);
    return maker.envelope();
}

/** A maker that has heard these kicks in `frames` frames. */
struct Fed : StereoFedUnitEnvelope {
    Fed(int frames, const std::vector<std::int64_t>& kicks) {
        create(kRate, frames);
        feed(*this, kickTrack(frames, kRate, kicks), 640);
    }
};

// The oracle filters the whole track at once and takes every 128th frame of it.
TEST_F(UnitEnvelopeMakerTest, EnvelopeIsDetrendedAndSmoothedFromEvery128thFilteredFrame) {
    for (const int rate : {44100, 48000}) {
        const Stereo audio = stereoNoise(20000);
        StereoFedUnitEnvelope maker;
        maker.create(rate, 20000);
        feed(maker, audio, rate / 75);
        const auto audioLowPass = PlainFilter::secondOrder(150.0, rate, true);
        const auto smoother = PlainFilter::secondOrder(5.0, rate / 128.0, true);
        const auto detrender = PlainFilter::firstOrderHighPass(0.5, rate / 128.0);
        const std::vector<double> bass = audioLowPass.run(audioLowPass.run(plainMono(audio)));
        const std::vector<double> levels = detrender.run(smoother.run(plainMagnitudes(bass, 128)));
        EXPECT_EQ(maker.envelope(), cutTo16Bits(levels));
    }
}

TEST_F(UnitEnvelopeMakerTest, AConstantLevelDecaysToZero) {
    const Stereo audio(2 * 10 * kRate, 10000);
    const std::vector<std::int16_t> envelope = envelopeOf(audio, 10 * kRate, 640);
    EXPECT_GT(*std::max_element(envelope.begin(), envelope.end()), 5000);
    EXPECT_EQ(envelope.back(), 0);
}

TEST_F(UnitEnvelopeMakerTest, LengthThatIsNoMultipleOf128EndsInAPartialChunk) {
    const std::vector<std::int16_t> envelope = envelopeOf(stereoNoise(1285), 1285, 640);
    EXPECT_EQ(envelope.size(), 11U);
    EXPECT_NE(envelope[10], 0);
}

TEST_F(UnitEnvelopeMakerTest, BlocksOfAnySizeGiveTheSameEnvelope) {
    expectBlocksLeaveNoTrace(envelopeOf);
}

TEST_F(UnitEnvelopeMakerTest, ResetEmptiesBothArraysButKeepsTheFilterState) {
    StereoFedUnitEnvelope maker;
    maker.create(kRate, kRate);
    feed(maker, Stereo(2 * kRate, 10000), 640);
    peakss::BeatList beats = beatsAt({0, 24000}, 500.0F);
    maker.analyze(120.0F, beats, false);
    maker.reset();
    EXPECT_EQ(maker.envelope(), std::vector<std::int16_t>(375));
    EXPECT_EQ(maker.peakLevels(), std::vector<std::int16_t>(375));
    feed(maker, Stereo(2 * kRate), 640);
    EXPECT_NE(maker.envelope()[0], 0);
}

TEST_F(UnitEnvelopeMakerTest, ASecondAnalysisStillSeesThePulsesOfTheFirst) {
    Fed maker(kMinute, regularFrames(0.0, kBeat, kMinute));
    peakss::BeatList beats = beatsAt(regularFrames(0.0, kBeat, kMinute), 500.0F);
    maker.analyze(120.0F, beats, false);
    const std::vector<std::int16_t> first = maker.peakLevels();
    feed(maker, Stereo(2 * 640), 640);
    maker.analyze(120.0F, beats, false);
    EXPECT_EQ(maker.peakLevels(), first);
}

TEST_F(UnitEnvelopeMakerTest, BeatsOnTheKicksStayWhereTheyAre) {
    Fed maker(kMinute, regularFrames(0.0, kBeat, kMinute));
    const auto frames = regularFrames(0.0, kBeat, kMinute);
    peakss::BeatList beats = beatsAt(frames, 500.0F);
    maker.analyze(120.0F, beats, false);
    EXPECT_EQ(positionsOf(beats), Positions(frames.begin(), frames.end()));
}

// Beats between the kicks move by half a beat, 94 envelope values. The first has no room for it
// before, so the move is forward, and the beat at 0 is one that would need a whole step of room.
TEST_F(UnitEnvelopeMakerTest, BeatsBetweenTheKicksMoveByHalfABeat) {
    Fed maker(kMinute, regularFrames(0.0, kBeat, kMinute));
    peakss::BeatList beats = beatsAt(regularFrames(12000.0, kBeat, kMinute), 500.0F);
    maker.analyze(120.0F, beats, false);
    ASSERT_EQ(beats.size(), 120U);
    double worst = 0.0;
    for (std::size_t i = 0; i < beats.size(); ++i) {
        const double offset = beats[i].pos - static_cast<double>(i + 1) * kBeat;
        worst = std::max(worst, std::fabs(offset));
    }
    EXPECT_LE(worst, 128.0);
}

// At 44.1 kHz the pulses are looked for 110 ms, 344.53 × 0.11 = 37.9 and so 38 values, after the
// beats. At kicks every 194 values, the soft ones of which are no pulses, a quarter of a beat is
// 48: beats 48 values late are on the pulses, at 49 they are not and move.
TEST_F(UnitEnvelopeMakerTest, PulsesBelongToTheBeats110MsBeforeThem) {
    constexpr int kSlowRate = 44100;
    constexpr int kStep = 194 * 128;
    constexpr int kFrames = 40 * kStep;
    Stereo audio = kickTrack(kFrames, kSlowRate, regularFrames(0.0, 2.0 * kStep, kFrames));
    for (const std::int64_t soft : regularFrames(kStep, 2.0 * kStep, kFrames))
        addKick(audio, soft, kSlowRate, 5000.0);
    for (const int late : {48, 49}) {
        StereoFedUnitEnvelope maker;
        maker.create(kSlowRate, kFrames);
        feed(maker, audio, 588);
        std::vector<std::int16_t> levels(maker.envelope().size());
        const std::vector<int> pulses = retainPulsePeaks(maker.envelope(), levels);
        const int first = (pulses[10] - 38 + late) % 194 * 128;
        peakss::BeatList beats = beatsAt(regularFrames(first, kStep, kFrames), 563.08F);
        maker.analyze(60.0F * kSlowRate / kStep, beats, false);
        EXPECT_EQ(beats[20].pos % kStep == first, late == 48) << late;
    }
}

TEST_F(UnitEnvelopeMakerTest, KeepPhaseNeverMovesTheGridButStillNumbersAndFillsIt) {
    Fed maker(kMinute, regularFrames(0.0, kBeat, kMinute));
    const auto frames = regularFrames(36000.0, kBeat, kMinute - 30000.0);
    peakss::BeatList beats = beatsAt(frames, 500.0F);
    for (peakss::BeatInfo& beat : beats) beat.group = 77;
    maker.analyze(120.0F, beats, true);
    ASSERT_EQ(beats.size(), frames.size() + 2);
    EXPECT_EQ(beats.front().pos, 12000);
    EXPECT_EQ(beats.back().pos, frames.back() + 24000);
    for (std::size_t i = 1; i + 1 < beats.size(); ++i) EXPECT_EQ(beats[i].pos, frames[i - 1]);
    for (std::size_t i = 1; i < beats.size(); ++i) {
        EXPECT_EQ(beats[i].group, beats[i - 1].group % 4 + 1);
    }
}

// A song whose kicks rest for two bars and come back on the first of a bar, the third given beat.
TEST_F(UnitEnvelopeMakerTest, APulseAfterARestOpensTheBar) {
    std::vector<std::int64_t> kicks = regularFrames(2 * kBeat, kBeat, 34 * kBeat);
    const std::vector<std::int64_t> after = regularFrames(46 * kBeat, kBeat, kMinute);
    kicks.insert(kicks.end(), after.begin(), after.end());
    Fed maker(kMinute, kicks);
    peakss::BeatList beats = beatsAt(regularFrames(0.0, kBeat, kMinute), 500.0F);
    maker.analyze(120.0F, beats, false);
    for (std::size_t i = 0; i < beats.size(); ++i) {
        ASSERT_EQ(beats[i].group, static_cast<int>((i + 2) % 4) + 1) << "beat " << i;
    }
}

/** Beats with nothing heard: no votes, every index a pulse, the first of them at index 1. */
peakss::BeatList afterSilence(const std::vector<std::int64_t>& frames, int length) {
    StereoFedUnitEnvelope maker;
    maker.create(kRate, length);
    peakss::BeatList beats = beatsAt(frames, 500.0F);
    maker.analyze(120.0F, beats, true);
    return beats;
}

// The fallback takes the beat nearest to the first pulse, place 0. Without a made-up beat
// m = 0 + 4: the first beat is number 1.
TEST_F(UnitEnvelopeMakerTest, ANearFirstBeatIsNumberedFromTheGridItself) {
    EXPECT_EQ(numbersOf(afterSilence({21599, 45599, 69599}, 70000)), (Positions{1, 2, 3}));
}

// With a made-up beat at index 1 in front m = (0 + 5) mod 4 = 1: the first given beat is number 2,
// and the beat filled in before it, a whole interval from the start, number 1.
TEST_F(UnitEnvelopeMakerTest, AFarFirstBeatShiftsTheNumbersByTheMadeUpOne) {
    EXPECT_EQ(numbersOf(afterSilence({21600, 45600, 69600}, 70000)), (Positions{2, 3, 4}));
    EXPECT_EQ(numbersOf(afterSilence({24000, 48000}, 50000)), (Positions{1, 2, 3}));
}

/** A track of eight-beat phrases that start at beat 6: a loud kick on the beat, loud ones at the
 *  given later places, and soft ones on the last two beats, which keep the average below the
 *  loud. */
struct Phrases {
    Phrases(int count, const std::vector<double>& laterBeats) {
        const int frames = (8 * count + 12) * 24000;
        Stereo audio(2 * static_cast<std::size_t>(frames));
        const auto kick = [&](double beat, double peak) {
            addKick(audio, static_cast<std::int64_t>(beat * kBeat), kRate, peak);
        };
        for (int i = 0; i < count; ++i) {
            const double start = 6.0 + 8.0 * i;
            kick(start, 20000.0);
            for (const double later : laterBeats) kick(start + later, 20000.0);
            kick(start + 6.0, 5000.0);
            kick(start + 7.0, 5000.0);
        }
        StereoFedUnitEnvelope maker;
        maker.create(kRate, frames);
        feed(maker, audio, 640);
        beats = beatsAt(regularFrames(0.0, kBeat, frames), 500.0F);
        maker.analyze(120.0F, beats, false);
    }
    peakss::BeatList beats;
};

// Two and a half beats, then two: each phrase votes for beat 6, which becomes a first of a bar.
TEST_F(UnitEnvelopeMakerTest, ElevenFiguresDecideTheBar) {
    const Phrases phrases(11, {2.5, 4.5});
    EXPECT_EQ(phrases.beats[0].pos, 0);
    EXPECT_EQ(phrases.beats[6].group, 1);
    EXPECT_EQ(phrases.beats[10].group, 1);
}

// Two of each three loud kicks lie off the beats. Eleven figures are trusted, and their starts lie
// on the beats; of ten all pulses are asked, and most are off.
TEST_F(UnitEnvelopeMakerTest, FewerThanElevenFiguresLetAllPulsesDecideTheHalfBeat) {
    EXPECT_EQ(Phrases(11, {2.5, 4.5}).beats[4].pos % 24000, 0);
    EXPECT_NEAR(Phrases(10, {2.5, 4.5}).beats[4].pos % 24000, 12000, 128);
}

// One and a half beats is a figure of its own kind, trusted from 81 on. Here too two of each three
// loud kicks lie off the beats, and the starts on them.
TEST_F(UnitEnvelopeMakerTest, EightyOneNetShortFiguresAreTrusted) {
    EXPECT_EQ(Phrases(81, {1.5, 4.5}).beats[4].pos % 24000, 0);
    EXPECT_NEAR(Phrases(80, {1.5, 4.5}).beats[4].pos % 24000, 12000, 128);
}

// Two beats behind a made-up one: the grid holds only the first of them, so there is nothing to
// measure the move by.
TEST_F(UnitEnvelopeMakerTest, TwoBeatsBehindAMadeUpOneNeverMove) {
    Fed maker(4 * kRate, regularFrames(12000.0, kBeat, 4.0 * kRate));
    peakss::BeatList beats = beatsAt({24000 * 6, 24000 * 7}, 500.0F);
    maker.analyze(120.0F, beats, false);
    EXPECT_EQ(positionsOf(beats), (Positions{24000 * 5, 24000 * 6, 24000 * 7}));
}

TEST_F(UnitEnvelopeMakerTest, ThreeBeatsBehindAMadeUpOneMoveByTheThirdGridEntry) {
    Fed maker(10 * kRate, regularFrames(12000.0, kBeat, 10.0 * kRate));
    peakss::BeatList beats = beatsAt({24000 * 6, 24000 * 7, 24000 * 8}, 500.0F);
    maker.analyze(120.0F, beats, false);
    // The grid's first entry is the made-up 1, without room before it: forward by 94 values.
    // Entry 2, 24000 × 7 / 128 = 1312.5 + 0.5 → 1313, becomes 1407: 180096 − 168000 = 12096.
    EXPECT_EQ(beats[1].pos, 24000 * 6 + 12096);
    EXPECT_EQ(beats[2].pos, 24000 * 7 + 12096);
}

TEST_F(UnitEnvelopeMakerTest, LeavesEverythingWithoutATempoOrTwoBeats) {
    StereoFedUnitEnvelope maker;
    maker.create(kRate, kRate);
    for (const float bpm : {0.0F, -1.0F, std::nanf("")}) {
        peakss::BeatList beats = beatsAt({-5, 24000, 48000}, 500.0F);
        maker.analyze(bpm, beats, false);
        EXPECT_EQ(beats.size(), 3U);
    }
    peakss::BeatList one = beatsAt({-5}, 500.0F);
    maker.analyze(120.0F, one, false);
    EXPECT_EQ(one.size(), 1U);
    peakss::BeatList none;
    maker.analyze(120.0F, none, false);
    EXPECT_TRUE(none.empty());
}

TEST_F(UnitEnvelopeMakerTest, AnEnvelopeWithoutPulsesNumbersFromTheFirstBeat) {
    for (const int length : {0, 1, 128}) {
        StereoFedUnitEnvelope maker;
        maker.create(kRate, length);
        peakss::BeatList beats = beatsAt({-100, -50, -10}, 500.0F);
        maker.analyze(120.0F, beats, false);
        EXPECT_EQ(numbersOf(beats).front(), 2);  // the first, negative one is gone
    }
}

TEST_F(UnitEnvelopeMakerTest, SurvivesAbsurdBeatsAndTempos) {
    constexpr float kInf = std::numeric_limits<float>::infinity();
    Fed maker(10 * kRate, regularFrames(0.0, kBeat, 10.0 * kRate));
    for (const float bpm : {1e-44F, 1e-5F, 1e5F, 1e38F, kInf}) {
        for (const float interval : {0.0F, -500.0F, 1e38F, kInf, std::nanf("")}) {
            peakss::BeatList beats = beatsAt({std::numeric_limits<std::int32_t>::min(), 5, 3,
                                              std::numeric_limits<std::int32_t>::max()},
                                             interval);
            maker.analyze(bpm, beats, false);
            EXPECT_LE(beats.size(), 6U);
            peakss::BeatList far = beatsAt({std::numeric_limits<std::int32_t>::max() - 1,
                                            std::numeric_limits<std::int32_t>::max()},
                                           interval);
            maker.analyze(bpm, far, false);
            EXPECT_LE(far.size(), 4U);
        }
    }
}

TEST_F(UnitEnvelopeMakerTest, ReleasedOrNeverCreatedIgnoresSamples) {
    StereoFedUnitEnvelope maker;
    feed(maker, stereoNoise(1000), 640);
    maker.create(kRate, std::numeric_limits<int>::max());
    EXPECT_EQ(maker.envelope().size(), 16777216U);
    maker.putSample(nullptr, 640);
    maker.release();
    maker.release();
    feed(maker, stereoNoise(1000), 640);
    EXPECT_TRUE(maker.envelope().empty());
}

}  // namespace
}  // namespace beatatlas::test
