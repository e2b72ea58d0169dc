// SPDX-License-Identifier: MIT
#include "view/ZoomViewMaker.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

#include <gmock/gmock.h>

#include "dsp/TestNoise.h"
#include "support/Allocations.h"
#include "support/RoundTowardZero.h"

namespace beatatlas {

bool operator==(const ZoomPoint& a, const ZoomPoint& b) {
    return a.level == b.level && a.color == b.color;
}

void PrintTo(const ZoomPoint& p, std::ostream* os) {
    *os << p.level << "/" << p.color;
}

namespace {

using ::testing::ElementsAreArray;

using Stereo = std::vector<std::int16_t>;

static_assert(sizeof(ZoomPoint) == 4, "two 16-bit integers and nothing else");

constexpr double kPi = 3.14159265358979323846;

/** A maker that filters for itself, sample by sample. */
class StereoFedZoom : public ZoomViewMaker {
public:
    bool create(int rate, int total, int divisor, bool deferred) {
        const bool isMade = ZoomViewMaker::create(rate, total, divisor, deferred);
        section_ = bassFilter();
        return isMade;
    }

    void reset() {
        ZoomViewMaker::reset();
        section_ = bassFilter();
    }

    void putSample(const std::int16_t* stereo, int n) {
        bass_.assign(1, 0.0);  // no null array for n < 1
        for (int i = 0; stereo != nullptr && i < n; ++i) {
            const std::int16_t* frame = stereo + 2 * static_cast<std::size_t>(i);
            bass_.resize(static_cast<std::size_t>(i) + 1);
            bass_.back() = section_.step((frame[0] + frame[1]) / 2);
        }
        ZoomViewMaker::putSample(stereo, bass_.data(), n);
    }

private:
    SecondOrderSection section_;
    std::vector<double> bass_ = std::vector<double>(5000);
};

class ZoomViewMakerTest : public test::RoundTowardZero {
protected:
    static std::vector<ZoomPoint> points(const ZoomViewMaker& maker) {
        return {maker.points(), maker.points() + maker.count()};
    }

    static int frames(const Stereo& stereo) { return static_cast<int>(stereo.size() / 2); }

    /** The zoom wave of a whole track at 150 points per second. */
    static std::vector<ZoomPoint> waveOf(const Stereo& stereo, bool deferred = true,
                                         int rate = 48000, int block = 640) {
        StereoFedZoom maker;
        EXPECT_TRUE(maker.create(rate, frames(stereo), 150, deferred));
        feed(maker, stereo, block);
        return points(maker);
    }

    static void feed(StereoFedZoom& maker, const Stereo& stereo, int block) {
        for (int at = 0; at < frames(stereo); at += block)
            maker.putSample(&stereo[2 * static_cast<std::size_t>(at)],
                            std::min(block, frames(stereo) - at));
    }
};

Stereo constant(int value, std::size_t frames) {
    return Stereo(2 * frames, static_cast<std::int16_t>(value));
}

void append(Stereo& to, const Stereo& more) {
    to.insert(to.end(), more.begin(), more.end());
}

Stereo tone(double hz, double rate, double amplitude, std::size_t frames) {
    Stereo stereo;
    for (std::size_t i = 0; i < frames; ++i) {
        const double angle = 2.0 * kPi * hz * static_cast<double>(i) / rate;
        stereo.insert(stereo.end(), 2, static_cast<std::int16_t>(amplitude * std::sin(angle)));
    }
    return stereo;
}

Stereo stereoNoise(std::size_t frames, std::uint32_t seed) {
    Stereo stereo;
    for (const float sample : test::whiteNoise(2 * frames, seed))
        stereo.push_back(static_cast<std::int16_t>(32767.0F * sample));
    return stereo;
}

/** The wave of a whole track by its definition, from a mono signal filtered in one go: the oracle.
 *  Colour classes are searched with real thresholds, levels scaled with real divisions. */
std::vector<ZoomPoint> plainWave(const Stereo& stereo, double rate, std::size_t frameLen) {
    std::vector<double> mono;
    for (std::size_t i = 0; i + 1 < stereo.size(); i += 2)
        mono.push_back(std::trunc((stereo[i] + stereo[i + 1]) * 0.5));
    const double k = std::tan((150.0 * kPi) / rate);
    const double r = 0.7071067811865475;
    const double d = 1.0 + k / r + k * k;
    const double a1 = (2.0 * (k * k) - 2.0) / d;
    const double a2 = (1.0 - k / r + k * k) / d;
    const double b0 = k * k / d;
    const double b1 = 2.0 * (k * k) / d;
    std::vector<double> low(mono.size());
    double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
    for (std::size_t i = 0; i < mono.size(); ++i) {
        low[i] = b0 * mono[i] + b1 * x1 + b0 * x2 - a1 * y1 - a2 * y2;
        x2 = x1;
        x1 = mono[i];
        y2 = y1;
        y1 = low[i];
    }
    std::vector<double> peaks;
    std::vector<ZoomPoint> wave;
    for (std::size_t from = 0; from < mono.size(); from += frameLen) {
        double peak = 0.0, lowPeak = 0.0;
        for (std::size_t i = from; i < std::min(from + frameLen, mono.size()); ++i) {
            peak = std::max(peak, std::min(std::abs(mono[i]), 32767.0));
            lowPeak = std::max(lowPeak, std::min(std::abs(std::trunc(low[i])), 32767.0));
        }
        int color = 0;
        while (color < 7 && (peak == 0.0 || !(lowPeak / peak >= 1.0 - (color + 1) * 0.125)))
            ++color;
        wave.push_back({0, static_cast<std::int16_t>(color)});
        peaks.push_back(peak);
    }
    const double trackPeak = *std::max_element(peaks.begin(), peaks.end());
    for (std::size_t i = 0; i < wave.size(); ++i) {
        const double s = std::trunc(peaks[i] / trackPeak * 32767.0);
        const double v = std::floor(s / 256.0);
        wave[i].level = static_cast<std::int16_t>(std::floor(v * v * 31.0 / 16129.0));
    }
    return wave;
}

TEST_F(ZoomViewMakerTest, MakesOneHundredAndFiftyPointsPerSecond) {
    EXPECT_EQ(waveOf(constant(100, 48000), true, 48000).size(), 150U);
    EXPECT_EQ(waveOf(constant(100, 44100), true, 44100).size(), 150U);
}

TEST_F(ZoomViewMakerTest, IsFreshAfterCreate) {
    StereoFedZoom maker;
    EXPECT_EQ(maker.count(), 0);
    EXPECT_EQ(maker.points(), nullptr);
    ASSERT_TRUE(maker.create(48000, 641, 150, true));
    EXPECT_EQ(maker.count(), 0);
    const std::vector<ZoomPoint> room(maker.points(), maker.points() + 3);
    EXPECT_THAT(room, ::testing::Each(ZoomPoint{0, 0}));
}

// 320 frames at 48000, 294 at 44100: the click in the sample after the first frame lands in the
// second point.
TEST_F(ZoomViewMakerTest, TakesARateOver150FramesPerPoint) {
    for (const int rate : {48000, 44100}) {
        Stereo track = constant(0, static_cast<std::size_t>(rate / 150));
        append(track, constant(12000, 1));
        append(track, constant(0, 100));
        const std::vector<ZoomPoint> wave = waveOf(track, true, rate);
        ASSERT_EQ(wave.size(), 2U);
        EXPECT_EQ(wave[0].level, 0);
        EXPECT_EQ(wave[1].level, 31);
    }
}

TEST_F(ZoomViewMakerTest, GivesASilentFrameLevelZeroAndColorSeven) {
    Stereo track = constant(0, 320);
    append(track, constant(20000, 320));
    const std::vector<ZoomPoint> wave = waveOf(track);
    EXPECT_EQ(wave[0], (ZoomPoint{0, 7}));
}

// The low-pass still rings when the frame after a loud one is silent: its peak is 0, so there is
// nothing to colour.
TEST_F(ZoomViewMakerTest, ColorsASilentFrameSevenEvenWhileTheBassRings) {
    Stereo track = constant(20000, 320);
    append(track, constant(0, 320));
    EXPECT_EQ(waveOf(track)[1], (ZoomPoint{0, 7}));
}

TEST_F(ZoomViewMakerTest, ColorsAHighToneSevenInEveryFrame) {
    for (const ZoomPoint& point : waveOf(tone(5000.0, 48000.0, 30000.0, 48000)))
        EXPECT_EQ(point.color, 7);
}

// 40 Hz lies well below 150 Hz; the first frames are left out while the filter settles. A frame of
// 6.7 ms around a zero crossing of so slow a wave has its lagging bass peak above its own peak:
// still the first class.
TEST_F(ZoomViewMakerTest, ColorsADeepToneZero) {
    const std::vector<ZoomPoint> wave = waveOf(tone(40.0, 48000.0, 30000.0, 48000));
    const auto zeros = std::count_if(wave.begin() + 15, wave.end(),
                                     [](const ZoomPoint& p) { return p.color == 0; });
    EXPECT_GE(zeros, 100);
}

// A constant c passes the low-pass at gain 1, but every step is cut toward zero: the bass settles
// just below c and is truncated to c - 1. The ratios 0/1, 1/2, 3/4 and 7/8 each lie exactly on a
// class's lower bound and belong to it.
TEST_F(ZoomViewMakerTest, OpensEachColorClassAtItsLowerBound) {
    const int colors[4][2] = {{1, 7}, {2, 3}, {4, 1}, {8, 0}};
    for (const auto& [value, color] : colors)
        EXPECT_EQ(waveOf(constant(value, 9600)).back().color, color) << value;
}

TEST_F(ZoomViewMakerTest, EndsASilentTrackWithAllLevelsZero) {
    EXPECT_THAT(waveOf(constant(0, 3200)), ::testing::Each(ZoomPoint{0, 7}));
}

TEST_F(ZoomViewMakerTest, EndsTheLoudestFrameAtThirtyOneHoweverQuietTheTrack) {
    for (const int loudest : {1, 7, 300, 32767}) {
        Stereo track = constant(loudest / 2, 320);
        append(track, constant(loudest, 320));
        EXPECT_EQ(waveOf(track)[1].level, 31) << loudest;
    }
}

// 100 of 400: s = trunc(0.25 × 32767) = 8191, v = 31, 961 × 31 / 16129 = 1.8. 200 of 400: s =
// 16383, v = 63, 3969 × 31 / 16129 = 7.6. 399 of 400: s = trunc(32685.08), v = 127, 31.
TEST_F(ZoomViewMakerTest, ScalesLevelsOnASquareLawAgainstTheTrackPeak) {
    Stereo track;
    for (const int value : {100, 200, 399, 400}) append(track, constant(value, 320));
    const std::vector<ZoomPoint> wave = waveOf(track);
    EXPECT_EQ(wave[0].level, 1);
    EXPECT_EQ(wave[1].level, 7);
    EXPECT_EQ(wave[2].level, 31);
    EXPECT_EQ(wave[3].level, 31);
}

// 2048 × 32767 / 4681 is 14336 = 56 × 256 exactly, since 4681 × 7 = 32767. The quotient 2048 / 4681
// however is inexact and cut toward zero, so the product ends below 14336: v = 55 and 3025 × 31 /
// 16129 = 5.8, where multiplying first would give v = 56 and 6.03.
TEST_F(ZoomViewMakerTest, DividesByTheTrackPeakBeforeItMultiplies) {
    Stereo track = constant(2048, 320);
    append(track, constant(4681, 320));
    EXPECT_EQ(waveOf(track)[0].level, 5);
}

TEST_F(ZoomViewMakerTest, KeepsRawPeaksUntilTheDeclaredLengthIsReached) {
    StereoFedZoom maker;
    ASSERT_TRUE(maker.create(48000, 960, 150, true));
    maker.putSample(constant(5000, 320).data(), 320);
    maker.putSample(constant(-9000, 320).data(), 320);
    ASSERT_EQ(maker.count(), 2);
    EXPECT_EQ(maker.points()[0].level, 5000);
    EXPECT_EQ(maker.points()[1].level, 9000);
    const int firstColor = maker.points()[0].color;
    maker.putSample(constant(9000, 320).data(), 320);
    ASSERT_EQ(maker.count(), 3);
    EXPECT_EQ(maker.points()[0].level,
              9);  // s = trunc(5/9 × 32767) = 18203, v = 71, 5041 × 31 / 16129 = 9.7
    EXPECT_EQ(maker.points()[1].level, 31);
    EXPECT_EQ(maker.points()[0].color, firstColor);
}

// 255 / 256 = 0; 16384 / 256 = 64, 4096 × 31 / 16129 = 7.9; 32767 / 256 = 127, 31.
TEST_F(ZoomViewMakerTest, ScalesEachPointAtOnceAgainstFullScaleWhenNotDeferred) {
    StereoFedZoom maker;
    ASSERT_TRUE(maker.create(48000, 960, 150, false));
    maker.putSample(constant(255, 320).data(), 320);
    EXPECT_EQ(maker.points()[0].level, 0);
    maker.putSample(constant(16384, 320).data(), 320);
    EXPECT_EQ(maker.points()[1].level, 7);
    maker.putSample(constant(32767, 320).data(), 320);
    EXPECT_EQ(maker.points()[2].level, 31);
    EXPECT_EQ(maker.points()[1].level, 7);
}

TEST_F(ZoomViewMakerTest, KeepsLastShortFrame) {
    Stereo track = constant(0, 320);
    append(track, constant(1000, 1));
    const std::vector<ZoomPoint> wave = waveOf(track);
    ASSERT_EQ(wave.size(), 2U);
    EXPECT_EQ(wave[1].level, 31);
}

TEST_F(ZoomViewMakerTest, TakesATrackOfOneFrame) {
    const std::vector<ZoomPoint> wave = waveOf(constant(-3, 1));
    ASSERT_EQ(wave.size(), 1U);
    EXPECT_EQ(wave[0], (ZoomPoint{31, 7}));
}

// (1 + 2) / 2 = 1.5 → 1 and (-1 - 2) / 2 = -1.5 → -1: both halves lose their fraction toward zero.
TEST_F(ZoomViewMakerTest, HalvesTheChannelSumTowardZero) {
    for (const std::int16_t sign : {std::int16_t{1}, std::int16_t{-1}}) {
        StereoFedZoom maker;
        ASSERT_TRUE(maker.create(48000, 1000, 150, true));
        Stereo frame;
        for (int i = 0; i < 320; ++i) {
            frame.push_back(sign);
            frame.push_back(static_cast<std::int16_t>(2 * sign));
        }
        maker.putSample(frame.data(), 320);
        EXPECT_EQ(maker.points()[0].level, 1);
    }
}

TEST_F(ZoomViewMakerTest, CapsTheMagnitudeOfTheMostNegativeSample) {
    StereoFedZoom maker;
    ASSERT_TRUE(maker.create(48000, 1000, 150, true));
    maker.putSample(constant(-32768, 320).data(), 320);
    EXPECT_EQ(maker.points()[0].level, 32767);
    EXPECT_EQ(waveOf(constant(-32768, 320))[0].level, 31);
}

TEST_F(ZoomViewMakerTest, OppositeChannelsCancel) {
    Stereo track;
    for (int i = 0; i < 640; ++i) track.insert(track.end(), {12345, -12345});
    EXPECT_THAT(waveOf(track), ::testing::Each(ZoomPoint{0, 7}));
}

TEST_F(ZoomViewMakerTest, AgreesWithAPlainWaveOfTheWholeTrack) {
    Stereo track = stereoNoise(5000, 3);
    append(track, tone(60.0, 48000.0, 20000.0, 7000));
    append(track, tone(170.0, 48000.0, 9000.0, 7000));
    append(track, tone(400.0, 48000.0, 25000.0, 7001));
    EXPECT_THAT(waveOf(track), ElementsAreArray(plainWave(track, 48000.0, 320)));
    EXPECT_THAT(waveOf(track, true, 44100), ElementsAreArray(plainWave(track, 44100.0, 294)));
}

// The bass comes to rest in silence and on a level, and must be as it was when a deep tone follows.
TEST_F(ZoomViewMakerTest, AgreesWithAPlainWaveThatPauses) {
    for (const int level : {0, 300}) {
        Stereo track = tone(60.0, 48000.0, 20000.0, 1001);
        append(track, constant(level, 100000));
        append(track, tone(140.0, 48000.0, 9000.0, 3001));
        append(track, constant(0, 100001));
        append(track, tone(170.0, 48000.0, 9000.0, 3001));
        EXPECT_THAT(waveOf(track), ElementsAreArray(plainWave(track, 48000.0, 320)));
    }
}

// From 40 to 400 Hz in 20 s: thousands of frames, of which some lie so near a class's bound that a
// corner one hertz off would move them over it.
TEST_F(ZoomViewMakerTest, AgreesWithAPlainWaveOfASweep) {
    Stereo sweep;
    double angle = 0.0;
    for (int i = 0; i < 20 * 48000; ++i) {
        angle += 2.0 * kPi * (40.0 + (360.0 * i) / (20.0 * 48000.0)) / 48000.0;
        sweep.insert(sweep.end(), 2, static_cast<std::int16_t>(30000.0 * std::sin(angle)));
    }
    EXPECT_THAT(waveOf(sweep), ElementsAreArray(plainWave(sweep, 48000.0, 320)));
}

TEST_F(ZoomViewMakerTest, UsesEveryColorClass) {
    Stereo track;
    for (const double hz : {30.0, 110.0, 140.0, 170.0, 200.0, 240.0, 300.0, 400.0, 900.0})
        append(track, tone(hz, 48000.0, 20000.0, 6400));
    bool seen[8] = {};
    for (const ZoomPoint& point : waveOf(track)) seen[point.color] = true;
    EXPECT_THAT(seen, ::testing::Each(true));
}

TEST_F(ZoomViewMakerTest, GivesTheSameBitsForAnyBlockLength) {
    Stereo track = stereoNoise(4000, 5);
    append(track, tone(90.0, 48000.0, 20000.0, 4001));
    const std::vector<ZoomPoint> expected = waveOf(track, true, 48000, frames(track));
    for (const int block : {1, 2, 3, 319, 320, 321, 587, 588, 589, 640, 4096})
        EXPECT_THAT(waveOf(track, true, 48000, block), ElementsAreArray(expected)) << block;
}

// 1000 declared, 1500 fed in one call: the frame that crosses 1000 (960…1279) takes its 280 further
// frames too, and the rest is ignored.
TEST_F(ZoomViewMakerTest, CompletesTheCrossingFrameFromTheCallAndIgnoresTheRest) {
    for (const bool deferred : {true, false}) {
        StereoFedZoom maker;
        ASSERT_TRUE(maker.create(48000, 1000, 150, deferred));
        Stereo track = constant(0, 1000);
        append(track, constant(0, 279));
        append(track, constant(32767, 1));
        append(track, constant(32767, 220));
        maker.putSample(track.data(), frames(track));
        ASSERT_EQ(maker.count(), 4);
        EXPECT_EQ(maker.points()[3].level, 31);
    }
}

TEST_F(ZoomViewMakerTest, IgnoresWhatIsFedAfterTheEnd) {
    for (const bool deferred : {true, false}) {
        StereoFedZoom maker;
        ASSERT_TRUE(maker.create(48000, 700, 150, deferred));
        const Stereo track = stereoNoise(700, 6);
        feed(maker, track, 640);
        const std::vector<ZoomPoint> expected = points(maker);
        ASSERT_EQ(expected.size(), 3U);
        feed(maker, stereoNoise(5000, 7), 640);
        EXPECT_THAT(points(maker), ElementsAreArray(expected));
    }
}

TEST_F(ZoomViewMakerTest, ResetEqualsNew) {
    const Stereo track = stereoNoise(2000, 8);
    StereoFedZoom maker;
    ASSERT_TRUE(maker.create(48000, 2000, 150, true));
    feed(maker, stereoNoise(1234, 9), 640);
    maker.reset();
    EXPECT_EQ(maker.count(), 0);
    EXPECT_EQ(maker.points()[0], (ZoomPoint{0, 0}));
    feed(maker, track, 640);
    EXPECT_THAT(points(maker), ElementsAreArray(waveOf(track)));
}

TEST_F(ZoomViewMakerTest, CreateStartsOverWithAnotherRate) {
    const Stereo track = stereoNoise(2000, 10);
    StereoFedZoom maker;
    ASSERT_TRUE(maker.create(48000, 2000, 150, true));
    feed(maker, track, 640);
    ASSERT_TRUE(maker.create(44100, 2000, 150, true));
    feed(maker, track, 588);
    EXPECT_THAT(points(maker), ElementsAreArray(waveOf(track, true, 44100, 588)));
}

TEST_F(ZoomViewMakerTest, ReleaseIsIdempotentAndLeavesNothing) {
    StereoFedZoom maker;
    maker.release();
    ASSERT_TRUE(maker.create(48000, 2000, 150, true));
    maker.putSample(constant(1, 400).data(), 400);
    maker.release();
    maker.release();
    EXPECT_EQ(maker.count(), 0);
    EXPECT_EQ(maker.points(), nullptr);
    maker.putSample(constant(1, 400).data(), 400);
    maker.reset();
    EXPECT_EQ(maker.analyzeLV(), 0);
    EXPECT_EQ(maker.count(), 0);
}

TEST_F(ZoomViewMakerTest, IgnoresCountsBelowOneAndNullArrays) {
    StereoFedZoom maker;
    ASSERT_TRUE(maker.create(48000, 2000, 150, true));
    const Stereo frame = constant(1, 1);
    maker.putSample(frame.data(), 0);
    maker.putSample(frame.data(), -1);
    maker.putSample(frame.data(), INT_MIN);
    maker.putSample(nullptr, 2000);
    maker.ZoomViewMaker::putSample(frame.data(), nullptr, 1);
    EXPECT_EQ(maker.count(), 0);
    const Stereo track = stereoNoise(2000, 11);
    feed(maker, track, 640);
    EXPECT_THAT(points(maker), ElementsAreArray(waveOf(track)));
}

TEST_F(ZoomViewMakerTest, RefusesArgumentsOutOfRange) {
    StereoFedZoom maker;
    EXPECT_FALSE(maker.create(48000, 0, 150, true));
    EXPECT_FALSE(maker.create(48000, INT_MIN, 150, true));
    EXPECT_FALSE(maker.create(48000, 1000, 0, true));
    EXPECT_FALSE(maker.create(48000, 1000, -150, true));
    EXPECT_FALSE(maker.create(149, 1000, 150, true));
    EXPECT_EQ(maker.points(), nullptr);
}

// ceil(2147483647 / 320) = 6710887 points, 26 MB.
TEST_F(ZoomViewMakerTest, TakesTheLongestLengthThatCanBeDeclared) {
    StereoFedZoom maker;
    ASSERT_TRUE(maker.create(48000, INT_MAX, 150, true));
    EXPECT_EQ(maker.points()[6710886], (ZoomPoint{0, 0}));
    feed(maker, constant(100, 640), 640);
    EXPECT_EQ(maker.count(), 2);
}

TEST_F(ZoomViewMakerTest, AnalyzeLVCountsAndScalesWhatHasBeenFed) {
    StereoFedZoom maker;
    ASSERT_TRUE(maker.create(48000, 2000, 150, true));
    feed(maker, constant(4000, 640), 640);
    EXPECT_EQ(maker.analyzeLV(), 2);
    EXPECT_EQ(maker.points()[0].level, 31);
}

TEST_F(ZoomViewMakerTest, HoldsNothingWhenMemoryCannotBeHad) {
    ZoomViewMaker maker;
    ASSERT_TRUE(maker.create(48000, 2000, 150, true));
    test::AllocationsFailAfter shortage(0);
    EXPECT_THROW(maker.create(48000, 2000, 150, true), std::bad_alloc);
    EXPECT_EQ(maker.points(), nullptr);
    const std::int16_t frame[2] = {1, 1};
    const double bass = 1.0;
    maker.putSample(frame, &bass, 1);
    EXPECT_EQ(maker.count(), 0);
}

TEST_F(ZoomViewMakerTest, AllocatesNothingWhileFeeding) {
    StereoFedZoom maker;
    ASSERT_TRUE(maker.create(48000, 9000, 150, true));
    const Stereo track = stereoNoise(9000, 12);
    const std::size_t before = test::allocationCount();
    feed(maker, track, 640);
    EXPECT_EQ(test::allocationCount(), before);
    EXPECT_EQ(maker.count(), 29);
}

}  // namespace
}  // namespace beatatlas
