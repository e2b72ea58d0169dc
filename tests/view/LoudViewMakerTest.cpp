// SPDX-License-Identifier: MIT
#include "view/LoudViewMaker.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>

#include "dsp/TestNoise.h"
#include "support/Allocations.h"
#include "support/PlainBands.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"
#include "view/PlainLoudView.h"

namespace beatatlas {

bool operator==(const WavePoint& a, const WavePoint& b) {
    return a.level == b.level && a.color == b.color;
}

void PrintTo(const WavePoint& p, std::ostream* os) {
    *os << p.level << "/" << p.color;
}

namespace {

using ::testing::Each;
using ::testing::ElementsAreArray;

using Samples = std::vector<float>;

constexpr int kRate = 48000;
constexpr int kBlock = 640;
constexpr double kPi = 3.14159265358979323846;

/** A view that filters for itself, one plain cascade after the other. */
class MonoFedView : public LoudViewMaker {
public:
    int create(int rate, int len) {
        const int isMade = LoudViewMaker::create(rate, len);
        if (isMade == 1) filters_ = std::make_unique<test::PlainBands>(rate_ = rate, 4);
        return isMade;
    }

    void reset() {
        LoudViewMaker::reset();
        if (filters_) filters_ = std::make_unique<test::PlainBands>(rate_, 4);
    }

    int putMono(const float* in, int n) {
        if (!filters_) return analyzePeak(in, &none_, &none_, &none_, n);
        const peakss::BandSignals bands = filters_->operate(in, std::max(n, 0));
        return analyzePeak(in, bands.viewLow, bands.bands[2], bands.bands[3], n);
    }

private:
    int rate_ = 0;
    std::unique_ptr<test::PlainBands> filters_;
    float none_ = 0.0F;
};

class LoudViewMakerTest : public test::RoundTowardZero {
protected:
    static void feed(MonoFedView& maker, const Samples& in, int block) {
        const int size = static_cast<int>(in.size());
        for (int at = 0; at < size; at += block)
            ASSERT_EQ(maker.putMono(&in[static_cast<std::size_t>(at)], std::min(block, size - at)),
                      1);
    }

    static void makeViewOf(MonoFedView& maker, const Samples& in, int rate, int block) {
        ASSERT_EQ(maker.create(rate, static_cast<int>(in.size())), 1);
        feed(maker, in, block);
        maker.analyzeLoudColor(0, maker.loudNum());
    }

    static Samples seconds(double seconds) {
        return Samples(static_cast<std::size_t>(seconds * kRate), 0.0F);
    }

    static std::vector<WavePoint> loudWave(const LoudViewMaker& maker) {
        return {maker.loudWave(), maker.loudWave() + kLoudPoints};
    }

    static std::vector<WavePoint> dotsWave(const LoudViewMaker& maker) {
        return {maker.dotsWave(), maker.dotsWave() + kDots};
    }

    static void expectPlainView(const LoudViewMaker& maker, const test::PlainLoudView& plain);
};

void LoudViewMakerTest::expectPlainView(const LoudViewMaker& maker,
                                        const test::PlainLoudView& plain) {
    EXPECT_EQ(maker.loudNum(), plain.loudReady);
    EXPECT_EQ(maker.dotsNum(), plain.dotsReady);
    for (std::size_t k = 0; k < plain.loud.size(); ++k) {
        EXPECT_EQ(maker.loudWave()[k].level, plain.loud[k].level) << "point " << k;
        EXPECT_EQ(maker.loudWave()[k].color, plain.loud[k].color) << "point " << k;
    }
    for (std::size_t k = 0; k < plain.dots.size(); ++k) {
        EXPECT_EQ(maker.dotsWave()[k].level, plain.dots[k].level) << "dot " << k;
        EXPECT_EQ(maker.dotsWave()[k].color, plain.dots[k].color) << "dot " << k;
    }
}

/** A kick every half second, hats between, a melody that comes and goes, a break without bass and a
 *  silent end. */
Samples music(int rate, std::size_t frames) {
    Samples track(frames);
    const Samples noise = test::whiteNoise(frames, 21);
    for (std::size_t i = 0; i < frames; ++i) {
        const double t = static_cast<double>(i) / rate;
        const double part = static_cast<double>(i) / static_cast<double>(frames);
        if (part > 0.93) break;
        const double beat = std::fmod(t, 0.5);
        const double offBeat = std::fmod(t + 0.25, 0.5);
        const double bassOn = part > 0.4 && part < 0.55 ? 0.0 : 1.0;
        const double kick = bassOn * std::exp(-beat * 14.0) * std::sin(2.0 * kPi * 95.0 * beat);
        const double hat = 0.3 * std::exp(-offBeat * 60.0) * static_cast<double>(noise[i]);
        const double melody = 0.25 * std::sin(2.0 * kPi * 880.0 * t) * (part > 0.2 ? 1.0 : 0.05);
        track[i] = static_cast<float>(0.9 * (kick + hat + melody) * (0.3 + 0.7 * part));
    }
    return track;
}

TEST_F(LoudViewMakerTest, AgreesWithAPlainViewAt48000) {
    const Samples track = music(48000, 48000 * 61 + 123);
    MonoFedView maker;
    makeViewOf(maker, track, 48000, 640);
    test::PlainLoudView plain(48000, static_cast<std::int64_t>(track.size()));
    plain.feed(track);
    expectPlainView(maker, plain);
    EXPECT_EQ(plain.loudReady, 400);
    EXPECT_EQ(plain.dotsReady, 100);
}

TEST_F(LoudViewMakerTest, AgreesWithAPlainViewAt44100) {
    const Samples track = music(44100, 44100 * 47 + 588 * 3 + 301);
    MonoFedView maker;
    makeViewOf(maker, track, 44100, 588);
    test::PlainLoudView plain(44100, static_cast<std::int64_t>(track.size()));
    plain.feed(track);
    expectPlainView(maker, plain);
    EXPECT_EQ(plain.loudReady, 400);
}

TEST_F(LoudViewMakerTest, AgreesWithAPlainViewOnNoiseOfManyLengths) {
    for (const std::size_t frames :
         {1U, 639U, 640U, 641U, 6400U, 63999U, 64000U, 64003U, 200001U}) {
        Samples track = test::whiteNoise(frames, static_cast<std::uint32_t>(frames));
        for (std::size_t i = 0; i < frames; ++i)
            if ((i / 20000) % 3 == 1) track[i] *= 0.01F;
        MonoFedView maker;
        makeViewOf(maker, track, kRate, kBlock);
        test::PlainLoudView plain(kRate, static_cast<std::int64_t>(frames));
        plain.feed(track);
        expectPlainView(maker, plain);
    }
}

// The decay of a held level, and its fall to the floor, take minutes of near silence after a loud
// start.
TEST_F(LoudViewMakerTest, AgreesWithAPlainViewThroughALongDecay) {
    Samples track = seconds(45.0);
    const Samples noise = test::whiteNoise(track.size(), 5);
    for (std::size_t i = 0; i < track.size(); ++i)
        track[i] = noise[i] * (i < 100000 || i > 2000000 ? 0.8F : 3e-7F);
    MonoFedView maker;
    makeViewOf(maker, track, kRate, kBlock);
    test::PlainLoudView plain(kRate, static_cast<std::int64_t>(track.size()));
    plain.feed(track);
    expectPlainView(maker, plain);
}

TEST_F(LoudViewMakerTest, EveryVectorFormDrawsTheSameView) {
    const Samples in = test::whiteNoise(4 * kRate + 100, 77);
    MonoFedView expected;
    makeViewOf(expected, in, kRate, kBlock);
    for (const VectorForm form : test::formsOfThisMachine()) {
        const test::FormScope scope(form);
        MonoFedView maker;
        makeViewOf(maker, in, kRate, kBlock);
        EXPECT_THAT(loudWave(maker), ElementsAreArray(loudWave(expected)));
    }
}

// A band handed in is taken as rectified: where it is negative there is no peak.
TEST_F(LoudViewMakerTest, DoesNotRectifyTheCallersBands) {
    Samples in = seconds(4.0);
    Samples negative(in.size(), -0.5F);
    MonoFedView maker;
    ASSERT_EQ(maker.create(kRate, static_cast<int>(in.size())), 1);
    maker.analyzePeak(in.data(), negative.data(), negative.data(), negative.data(),
                      static_cast<int>(in.size()));
    EXPECT_EQ(maker.loudNum(), 400);
    maker.analyzeLoudColor(0, 400);
    for (int k = 0; k < 400; ++k) EXPECT_EQ(maker.loudWave()[k].color, 5) << k;
    EXPECT_THAT(dotsWave(maker), Each(WavePoint{0.0F, 5}));
}

TEST_F(LoudViewMakerTest, GivesTheSameBitsForAnyNumberOfBlocksPerCall) {
    const Samples track = music(kRate, 48000 * 15 + 77);
    MonoFedView one;
    makeViewOf(one, track, kRate, kBlock);
    for (const int blocks : {2, 3, 128, 5000}) {
        MonoFedView maker;
        makeViewOf(maker, track, kRate, blocks * kBlock);
        EXPECT_THAT(loudWave(maker), ElementsAreArray(loudWave(one))) << blocks;
        EXPECT_THAT(dotsWave(maker), ElementsAreArray(dotsWave(one))) << blocks;
    }
}

TEST_F(LoudViewMakerTest, LeavesSilenceAtZeroWithColorFive) {
    const Samples silence = seconds(5.0);
    MonoFedView maker;
    makeViewOf(maker, silence, kRate, kBlock);
    EXPECT_EQ(maker.loudNum(), 400);
    EXPECT_EQ(maker.dotsNum(), 100);
    EXPECT_THAT(loudWave(maker), Each(WavePoint{0.0F, 5}));
    EXPECT_THAT(dotsWave(maker), Each(WavePoint{0.0F, 5}));
}

// 99 blocks: one block per dot, so the chunk counter moves on one dot with every chunk.
TEST_F(LoudViewMakerTest, UsesOneBlockPerDotForATrackShorterThanAHundredBlocks) {
    Samples track = test::whiteNoise(99 * kBlock, 31);
    MonoFedView maker;
    ASSERT_EQ(maker.create(kRate, static_cast<int>(track.size())), 1);
    for (int chunk = 0; chunk < 98; ++chunk) {
        maker.putMono(&track[static_cast<std::size_t>(chunk * kBlock)], kBlock);
        ASSERT_EQ(maker.dotsNum(), chunk + 1);
    }
}

// 199 blocks in integer division by 100 is still one block per dot; 200 blocks are two.
TEST_F(LoudViewMakerTest, DividesTheBlocksAmongTheDotsInWholeNumbers) {
    for (const int blocks : {199, 200}) {
        Samples track = test::whiteNoise(static_cast<std::size_t>(20 * kBlock), 32);
        MonoFedView maker;
        ASSERT_EQ(maker.create(kRate, blocks * kBlock), 1);
        feed(maker, track, kBlock);
        EXPECT_EQ(maker.dotsNum(), blocks == 199 ? 20 : 10);
    }
}

/** The view of a track of so many declared samples whose bands keep a constant level, fed in one
 *  call. */
void makeViewOfConstantBands(LoudViewMaker& maker, int declared, int fed) {
    const auto size = static_cast<std::size_t>(fed);
    Samples in(size, 0.0F);
    Samples band(size, 0.5F);
    ASSERT_EQ(maker.create(kRate, declared), 1);
    maker.analyzePeak(in.data(), band.data(), band.data(), band.data(), fed);
}

// A constant level opens the decimated records at the fourth sample, where the count starts anew;
// from there it stays in step with the groups of four, and the last sample of a whole block
// completes one.
TEST_F(LoudViewMakerTest, EndsTheDotsOfWholeBlocksWhenTheLastCountIsAMultipleOfFour) {
    MonoFedView maker;
    makeViewOfConstantBands(maker, 300 * kBlock, 300 * kBlock);
    EXPECT_EQ(maker.dotsNum(), 100);
}

// Declared two samples less than the whole blocks fed: the last declared sample is in a full chunk
// and completes no group of four. The end goes unnoticed; the clamp leaves the last dot open.
TEST_F(LoudViewMakerTest, FinishesTheDotsThroughTheIndexClampWhenTheEndCompletesNoGroup) {
    MonoFedView maker;
    makeViewOfConstantBands(maker, 300 * kBlock - 2, 300 * kBlock);
    EXPECT_EQ(maker.loudNum(), 400);
    EXPECT_EQ(maker.dotsNum(), 99);
}

// The same length with its last chunk two samples short: the last sample is judged whatever its
// count.
TEST_F(LoudViewMakerTest, EndsTheDotsInAShortLastChunkWhateverTheCount) {
    MonoFedView maker;
    makeViewOfConstantBands(maker, 300 * kBlock - 2, 300 * kBlock - 2);
    EXPECT_EQ(maker.dotsNum(), 100);
}

// 20 s: 1500 blocks, 15 per dot. Bass peaks come every 25 blocks: in chunk 1, in chunk 26 (dot 1),
// and in chunk 51, the first past the start-up (dot 3).
TEST_F(LoudViewMakerTest, KeepsTheDotsAtZeroDuringTheFirstFiftyChunks) {
    Samples in = seconds(20.0);
    Samples kicks(in.size(), 0.0F);
    for (std::size_t i = 0; i < kicks.size(); i += 16000)
        std::fill_n(kicks.begin() + static_cast<std::ptrdiff_t>(i), 2000, 0.9F);
    MonoFedView maker;
    ASSERT_EQ(maker.create(kRate, static_cast<int>(in.size())), 1);
    maker.analyzePeak(in.data(), kicks.data(), kicks.data(), kicks.data(),
                      static_cast<int>(in.size()));
    ASSERT_EQ(maker.dotsNum(), 100);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(maker.dotsWave()[k].level, 0.0F) << k;
    EXPECT_GT(maker.dotsWave()[3].level, 0.0F);
}

// Bass, melody and cymbals in turn, 40 s each, pulsing twice a second: a slot of two points is 0.6
// s long and gets a peak of each band that sounds.
TEST_F(LoudViewMakerTest, TellsBassMelodyAndCymbalsApartByColor) {
    Samples track = seconds(120.0);
    const Samples noise = test::whiteNoise(track.size(), 8);
    for (std::size_t i = 0; i < track.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        const double pulse = 0.6 * std::exp(-std::fmod(t, 0.5) * 4.0);
        const double hz = t < 40.0 ? 150.0 : 1500.0;
        const double sound =
            t < 80.0 ? std::sin(2.0 * kPi * hz * t) : static_cast<double>(noise[i]);
        track[i] = static_cast<float>(pulse * sound);
    }
    MonoFedView maker;
    makeViewOf(maker, track, kRate, kBlock);
    const auto count = [&](int from, int color) {
        return std::count_if(maker.loudWave() + from, maker.loudWave() + from + 100,
                             [=](const WavePoint& p) { return p.color == color; });
    };
    EXPECT_GT(count(15, 0), 90);   // bass outweighs the rest
    EXPECT_GT(count(150, 4), 90);  // no bass, the middle well above the highs
    EXPECT_GT(count(285, 5), 90);  // no bass, highs as strong as the middle
}

// Bass pulses in the first 5 s of a declared 10 minutes: a point takes 1.5 s, so the first ones are
// finished and hold loud peaks of the low band alone.
TEST_F(LoudViewMakerTest, ColorsFromTheVeryFirstPoint) {
    Samples track = seconds(5.0);
    for (std::size_t i = 0; i < track.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        const double pulse = 0.6 * std::exp(-std::fmod(t, 0.5) * 4.0);
        track[i] = static_cast<float>(pulse * std::sin(2.0 * kPi * 150.0 * t));
    }
    MonoFedView maker;
    ASSERT_EQ(maker.create(kRate, 600 * kRate), 1);
    feed(maker, track, kBlock);
    ASSERT_EQ(maker.loudNum(), 2);
    maker.analyzeLoudColor(0, maker.loudNum());
    EXPECT_EQ(maker.loudWave()[0].color, 0);
    EXPECT_EQ(maker.loudWave()[1].color, 0);
}

// The first 16 of 40 s, before the break: 16 s are point 160. The strips of sums close a slot only
// with a peak, so they follow by up to one beat.
TEST_F(LoudViewMakerTest, GrowsItsPointsInStepWithTheDeclaredLength) {
    const Samples track = music(kRate, 48000 * 40);
    MonoFedView maker;
    ASSERT_EQ(maker.create(kRate, static_cast<int>(track.size())), 1);
    feed(maker, Samples(track.begin(), track.begin() + 48000 * 16), kBlock);
    EXPECT_LE(maker.loudNum(), 160);
    EXPECT_GE(maker.loudNum(), 150);
    EXPECT_EQ(maker.dotsNum(), 40);
    EXPECT_EQ(maker.loudWave()[170].level, 0.0F);
}

// Without bass the low band's strip stands still, and the points wait for it.
TEST_F(LoudViewMakerTest, WaitsWithItsPointsForTheNextPeakOfEveryBand) {
    const Samples track = music(kRate, 48000 * 40);  // the break reaches from 16 s to 22 s
    MonoFedView maker;
    ASSERT_EQ(maker.create(kRate, static_cast<int>(track.size())), 1);
    feed(maker, Samples(track.begin(), track.begin() + 48000 * 21), kBlock);
    EXPECT_LE(maker.loudNum(), 164);
}

TEST_F(LoudViewMakerTest, KeepsColorFiveUntilAskedToColor) {
    const Samples track = music(kRate, 48000 * 20);
    MonoFedView maker;
    ASSERT_EQ(maker.create(kRate, static_cast<int>(track.size())), 1);
    feed(maker, track, kBlock);
    const auto colored = [&](int from, int to) {
        return std::count_if(maker.loudWave() + from, maker.loudWave() + to,
                             [](const WavePoint& p) { return p.color != 5; });
    };
    EXPECT_EQ(colored(0, 400), 0);
    maker.analyzeLoudColor(100, 200);
    EXPECT_EQ(colored(0, 100), 0);
    EXPECT_GT(colored(100, 200), 5);
    EXPECT_EQ(colored(200, 400), 0);
}

TEST_F(LoudViewMakerTest, DotsKeepColorFive) {
    const Samples track = music(kRate, 48000 * 20);
    MonoFedView maker;
    makeViewOf(maker, track, kRate, kBlock);
    const std::vector<WavePoint> before = dotsWave(maker);
    maker.analyzeDotsColor(0, 100);
    EXPECT_THAT(dotsWave(maker), ElementsAreArray(before));
    for (const WavePoint& dot : before) EXPECT_EQ(dot.color, 5);
}

TEST_F(LoudViewMakerTest, ColorsOnlyPointsThatExist) {
    MonoFedView maker;
    maker.analyzeLoudColor(0, 400);
    ASSERT_EQ(maker.create(kRate, 1000), 1);
    maker.analyzeLoudColor(-7, 0);
    maker.analyzeLoudColor(INT_MIN, INT_MAX);
    maker.analyzeLoudColor(400, 401);
    maker.analyzeLoudColor(10, 5);
    EXPECT_THAT(loudWave(maker), Each(WavePoint{0.0F, 5}));
}

// A call of 700 samples is a chunk of 640, counted as those from 1280 k on, and one of 60, counted
// as those from 1280 k + 640 on. Sample 48199 = 1280 × 37 + 839, the last one, is in neither.
TEST_F(LoudViewMakerTest, LastPointStaysOpenWhereTheDeclaredEndIsNeverMet) {
    Samples track = test::whiteNoise(48000 * 3, 4);
    MonoFedView maker;
    ASSERT_EQ(maker.create(kRate, 48200), 1);
    const auto feedOdd = [&track, &maker] {
        for (std::size_t at = 0; at + 700 <= track.size(); at += 700)
            EXPECT_EQ(maker.putMono(&track[at], 700), 1);
    };
    feedOdd();
    EXPECT_EQ(maker.loudNum(), 399);
    EXPECT_EQ(maker.dotsNum(), 99);
    const std::vector<WavePoint> loud = loudWave(maker);
    const std::vector<WavePoint> dots = dotsWave(maker);
    feedOdd();
    EXPECT_EQ(maker.loudNum(), 399);
    EXPECT_EQ(maker.dotsNum(), 99);
    EXPECT_THAT(loudWave(maker), ElementsAreArray(loud));
    EXPECT_THAT(dotsWave(maker), ElementsAreArray(dots));
}

TEST_F(LoudViewMakerTest, LeavesFinishedWavesAloneWhenFedPastTheEnd) {
    const Samples track = music(kRate, 48000 * 8 + 5);
    MonoFedView maker;
    makeViewOf(maker, track, kRate, kBlock);
    ASSERT_EQ(maker.loudNum(), 400);
    ASSERT_EQ(maker.dotsNum(), 100);
    const std::vector<WavePoint> loud = loudWave(maker);
    const std::vector<WavePoint> dots = dotsWave(maker);
    feed(maker, test::whiteNoise(100000, 3), kBlock);
    EXPECT_THAT(loudWave(maker), ElementsAreArray(loud));
    EXPECT_THAT(dotsWave(maker), ElementsAreArray(dots));
}

TEST_F(LoudViewMakerTest, ResetEqualsNew) {
    const Samples track = music(kRate, 48000 * 12);
    MonoFedView fresh;
    makeViewOf(fresh, track, kRate, kBlock);
    MonoFedView used;
    ASSERT_EQ(used.create(kRate, static_cast<int>(track.size())), 1);
    feed(used, test::whiteNoise(300000, 2), kBlock);
    used.reset();
    EXPECT_EQ(used.loudNum(), 0);
    EXPECT_EQ(used.dotsNum(), 0);
    EXPECT_THAT(loudWave(used), Each(WavePoint{0.0F, 5}));
    feed(used, track, kBlock);
    used.analyzeLoudColor(0, 400);
    EXPECT_THAT(loudWave(used), ElementsAreArray(loudWave(fresh)));
    EXPECT_THAT(dotsWave(used), ElementsAreArray(dotsWave(fresh)));
}

TEST_F(LoudViewMakerTest, CreateStartsOverAtAnotherRate) {
    const Samples track = music(44100, 44100 * 12);
    MonoFedView fresh;
    makeViewOf(fresh, track, 44100, 588);
    MonoFedView used;
    makeViewOf(used, test::whiteNoise(100000, 6), 48000, 640);
    makeViewOf(used, track, 44100, 588);
    EXPECT_THAT(loudWave(used), ElementsAreArray(loudWave(fresh)));
    EXPECT_THAT(dotsWave(used), ElementsAreArray(dotsWave(fresh)));
}

TEST_F(LoudViewMakerTest, ReleaseIsIdempotentAndFeedingThenDoesNothing) {
    Samples block(kBlock, 0.5F);
    MonoFedView maker;
    EXPECT_EQ(maker.putMono(block.data(), kBlock), 0);
    maker.reset();
    ASSERT_EQ(maker.create(kRate, 6400), 1);
    feed(maker, Samples(6400, 0.5F), kBlock);
    EXPECT_EQ(maker.loudNum(), 400);
    maker.release();
    maker.release();
    EXPECT_EQ(maker.loudNum(), 0);
    EXPECT_EQ(maker.dotsNum(), 0);
    EXPECT_EQ(maker.putMono(block.data(), kBlock), 0);
}

TEST_F(LoudViewMakerTest, IgnoresEmptyCallsAndMissingArrays) {
    Samples block(kBlock, 0.5F);
    MonoFedView maker;
    ASSERT_EQ(maker.create(kRate, 6400), 1);
    float* const all = block.data();
    EXPECT_EQ(maker.analyzePeak(nullptr, all, all, all, kBlock), 0);
    EXPECT_EQ(maker.analyzePeak(all, nullptr, all, all, kBlock), 0);
    EXPECT_EQ(maker.analyzePeak(all, all, nullptr, all, kBlock), 0);
    EXPECT_EQ(maker.analyzePeak(all, all, all, nullptr, kBlock), 0);
    EXPECT_EQ(maker.putMono(block.data(), 0), 1);
    EXPECT_EQ(maker.putMono(block.data(), -1), 1);
    EXPECT_EQ(maker.putMono(block.data(), INT_MIN), 1);
    EXPECT_EQ(maker.loudNum(), 0);
    EXPECT_EQ(maker.dotsNum(), 0);
}

TEST_F(LoudViewMakerTest, RefusesARateWithoutABlock) {
    MonoFedView maker;
    EXPECT_EQ(maker.create(74, 1000), 0);
    EXPECT_EQ(maker.create(0, 1000), 0);
    EXPECT_EQ(maker.create(-48000, 1000), 0);
}

TEST_F(LoudViewMakerTest, TakesAnyDeclaredLength) {
    for (const int len : {INT_MIN, -1, 0, 1, 2, INT_MAX - 1, INT_MAX}) {
        MonoFedView maker;
        ASSERT_EQ(maker.create(kRate, len), 1);
        feed(maker, test::whiteNoise(64000, 9), kBlock);
        EXPECT_LE(maker.loudNum(), 400) << len;
        EXPECT_LE(maker.dotsNum(), 100) << len;
    }
}

TEST_F(LoudViewMakerTest, FinishesATrackOfOneSample) {
    MonoFedView maker;
    makeViewOf(maker, {0.5F}, kRate, kBlock);
    EXPECT_EQ(maker.loudNum(), 400);
    EXPECT_EQ(maker.dotsNum(), 100);
}

TEST_F(LoudViewMakerTest, SurvivesInputThatIsNoSignal) {
    const float inf = std::numeric_limits<float>::infinity();
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), inf, -inf, 1e38F, -3.4e38F}) {
        Samples track = test::whiteNoise(48000 * 6, 17);
        for (std::size_t i = 20000; i < track.size(); i += 20001) track[i] = bad;
        MonoFedView maker;
        makeViewOf(maker, track, kRate, kBlock);
        EXPECT_EQ(maker.loudNum(), 400) << bad;
        MonoFedView handed;
        ASSERT_EQ(handed.create(kRate, static_cast<int>(track.size())), 1);
        handed.analyzePeak(track.data(), track.data(), track.data(), track.data(),
                           static_cast<int>(track.size()));
        EXPECT_EQ(handed.dotsNum(), 100) << bad;
    }
}

TEST_F(LoudViewMakerTest, AllocatesNothingOnceWarm) {
    const Samples track = music(kRate, 48000 * 10);
    MonoFedView maker;
    ASSERT_EQ(maker.create(kRate, static_cast<int>(track.size())), 1);
    Samples in = track;
    maker.putMono(&in[0], kBlock);
    const std::size_t warm = test::allocationCount();
    for (std::size_t at = kBlock; at < in.size(); at += kBlock) maker.putMono(&in[at], kBlock);
    EXPECT_EQ(test::allocationCount(), warm);
    EXPECT_EQ(maker.loudNum(), 400);
}

TEST_F(LoudViewMakerTest, IgnoresFeedingAfterMemoryRanShort) {
    Samples block(kBlock, 0.5F);
    float* const all = block.data();
    LoudViewMaker maker;
    long granted = 0;
    for (bool created = false; !created; ++granted) {
        test::AllocationsFailAfter shortage(granted);
        try {
            created = maker.create(kRate, 6400) == 1;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(maker.analyzePeak(all, all, all, all, kBlock), 0);
        }
    }
    EXPECT_GT(granted, 3);  // a buffer for each band
    EXPECT_EQ(maker.analyzePeak(all, all, all, all, kBlock), 1);
}

}  // namespace
}  // namespace beatatlas
