// SPDX-License-Identifier: MIT
#include "peakss/sensing/PeakSensor.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/TestNoise.h"
#include "peakss/sensing/PeakBuffer.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::whiteNoise;
using peakss::PeakBuffer;
using peakss::PeakSensor;

constexpr int kMaxPos = std::numeric_limits<int>::max();

// At 48 kHz with 8 samples per level: a peak is confirmed 13919 samples (0.29 s) after its maximum,
// the line holds for 81599 (1.7 s) and falls for 62400 (1.3 s) at a time.
class PeakSensorTest : public beatatlas::test::RoundTowardZero {
protected:
    static constexpr int kStep = 8;
    static constexpr int kConfirm = 13920;    // 13919, raised to whole steps
    static constexpr int kFirstFall = 81600;  // likewise more than 81599

    void SetUp() override {
        RoundTowardZero::SetUp();
        buffer_.create(0);
        sensor_.setSamplingRate(48000);
        sensor_.setStep(kStep);
    }

    void put(float level) { sensor_.putLevel(level, buffer_); }

    // Silence, up to and including the level that ends at pos.
    void silenceUntil(int pos) {
        while (sensor_.pos() < pos) put(0.0F);
    }

    int confirmed() const { return buffer_.ring().count(); }

    // How many inputs the moving mean is taken over: of silence and a 1 it is 1 / length.
    int diffLength() {
        sensor_.reset(0);
        return static_cast<int>(std::lround(1.0F / (1.0F - sensor_.getDiff(1.0F))));
    }

    PeakSensor sensor_;
    PeakBuffer buffer_;
};

TEST_F(PeakSensorTest, SilenceKeepsTheLineOnTheFloor) {
    EXPECT_EQ(sensor_.line(), 0.001F);
    silenceUntil(4 * 62400);
    EXPECT_FALSE(sensor_.isTracking());
    EXPECT_EQ(confirmed(), 0);
    put(0.0009F);
    EXPECT_FALSE(sensor_.isTracking());
    EXPECT_EQ(sensor_.line(), 0.001F);
}

TEST_F(PeakSensorTest, LevelOnTheLineOpensAPeak) {
    put(0.001F);
    EXPECT_TRUE(sensor_.isTracking());
    EXPECT_EQ(sensor_.peakPos(), 8);
    EXPECT_EQ(sensor_.peakLevel(), 0.001F);
}

TEST_F(PeakSensorTest, HigherLevelMovesThePeakAndAnEqualOneDoesNot) {
    put(0.5F);
    put(0.6F);
    put(0.6F);
    put(0.4F);
    EXPECT_EQ(sensor_.peakPos(), 16);
    EXPECT_EQ(sensor_.peakLevel(), 0.6F);
    EXPECT_EQ(sensor_.line(), 0.6F * 0.75F);
}

TEST_F(PeakSensorTest, PeakIsConfirmedOnceTheTimeHasPassedAfterItsMaximum) {
    put(0.5F);
    put(0.6F);  // the maximum, at 16
    silenceUntil(16 + kConfirm - kStep);
    EXPECT_TRUE(sensor_.isTracking());
    EXPECT_EQ(confirmed(), 0);
    put(0.0F);
    EXPECT_FALSE(sensor_.isTracking());
    ASSERT_EQ(confirmed(), 1);
    EXPECT_EQ(buffer_.ring().back(0).pos, 16);
    EXPECT_EQ(buffer_.ring().back(0).level, 0.6F);
}

TEST_F(PeakSensorTest, HigherLevelInTheLastMomentPutsTheConfirmationOff) {
    put(0.5F);
    silenceUntil(8 + kConfirm - kStep);
    put(0.51F);
    EXPECT_TRUE(sensor_.isTracking());
    EXPECT_EQ(confirmed(), 0);
    EXPECT_EQ(sensor_.peakPos(), 8 + kConfirm);
}

TEST_F(PeakSensorTest, NextPeakMayOpenOnTheLevelThatConfirmsTheLast) {
    put(1.0F);
    silenceUntil(8 + kConfirm - kStep);
    put(0.75F);  // on the line, not above the peak
    ASSERT_EQ(confirmed(), 1);
    EXPECT_EQ(buffer_.ring().back(0).pos, 8);
    EXPECT_TRUE(sensor_.isTracking());
    EXPECT_EQ(sensor_.peakPos(), 8 + kConfirm);
    EXPECT_EQ(sensor_.peakLevel(), 0.75F);
}

TEST_F(PeakSensorTest, SofterLevelBelowTheHeldLineIsPassedOver) {
    put(1.0F);
    silenceUntil(8 + kFirstFall - kStep);
    put(0.74F);
    EXPECT_FALSE(sensor_.isTracking());
    EXPECT_EQ(sensor_.line(), 0.75F);
}

// 0.75 holds until 8 + 81600; then 0.25 / 62400 per sample down to half the peak. 62408 samples
// later (more than 62400) the next fall halves the line, to 0.25 within another 62400.
TEST_F(PeakSensorTest, LineFallsToHalfThePeakThenHalvesAgain) {
    constexpr int firstEnd = 8 + kFirstFall + 62400;
    put(1.0F);
    silenceUntil(8 + kFirstFall);
    EXPECT_EQ(sensor_.line(), 0.75F);
    put(0.0F);
    EXPECT_NEAR(sensor_.line(), 0.75F - 8 * 0.25F / 62400, 1e-6F);
    silenceUntil(8 + kFirstFall + 31200);
    EXPECT_NEAR(sensor_.line(), 0.625F, 1e-3F);
    silenceUntil(firstEnd);
    EXPECT_NEAR(sensor_.line(), 0.5F, 1e-3F);
    silenceUntil(firstEnd + 8 + 31200);
    EXPECT_NEAR(sensor_.line(), 0.375F, 1e-3F);
    silenceUntil(firstEnd + 8 + 62400);
    EXPECT_NEAR(sensor_.line(), 0.25F, 2e-3F);
}

// The target of a later fall is a share of the line as it is, not of the peak: with later falls to
// the line's own level (share 1) the line stays at the 0.4 the first fall has reached.
TEST_F(PeakSensorTest, LaterFallsLeaveFromTheLine) {
    sensor_.setLimitLine(0.5F, 0.8F, 0.5F, 0.4F, 0.5F, 1.0F);  // 24000 samples each
    put(1.0F);
    EXPECT_EQ(sensor_.line(), 0.8F);
    silenceUntil(8 + 24000);
    // More than 24000 after the peak only here: the fall is planned, and begins with the next
    // level.
    put(0.0F);
    EXPECT_EQ(sensor_.line(), 0.8F);
    put(0.0F);
    EXPECT_LT(sensor_.line(), 0.8F);
    silenceUntil(8 + 24008 + 24000);
    EXPECT_NEAR(sensor_.line(), 0.4F, 1e-3F);
    silenceUntil(8 + 24008 + 24008 + 20000);
    EXPECT_NEAR(sensor_.line(), 0.4F, 1e-3F);
}

// Nothing is held after a reset: the first level, at 1, plans the first fall, of 24000 samples. The
// later one, planned at 24002, rises to twice the line, which shows with the next level.
TEST_F(PeakSensorTest, ResetPlansTheFirstFallWithTheFirstLevel) {
    sensor_.setStep(1);
    sensor_.setLimitLine(0.5F, 0.8F, 0.5F, 0.4F, 0.5F, 2.0F);
    put(1.0F);
    sensor_.reset(0);
    silenceUntil(24002);
    EXPECT_EQ(sensor_.line(), 0.001F);
    put(0.0F);
    EXPECT_GT(sensor_.line(), 0.001F);
}

TEST_F(PeakSensorTest, LineNeverStaysBelowTheFloor) {
    put(0.0011F);  // line at 0.000825, already below
    EXPECT_LT(sensor_.line(), 0.001F);
    silenceUntil(8 + kConfirm);
    EXPECT_EQ(sensor_.line(), 0.001F);
    put(0.00099F);
    EXPECT_FALSE(sensor_.isTracking());
}

TEST_F(PeakSensorTest, LengthsBelongToTheSamplingRate) {
    sensor_.setSamplingRate(44100);
    EXPECT_EQ(sensor_.rate(), 44100);
    // 44100 × 0.29 is just below 12789 in double precision: 12788, raised to 12792 in whole steps
    // of 8.
    put(1.0F);
    silenceUntil(8 + 12784);
    EXPECT_EQ(confirmed(), 0);
    put(0.0F);
    EXPECT_EQ(confirmed(), 1);
}

TEST_F(PeakSensorTest, ConfirmationLengthIsTruncatedInDoublePrecision) {
    sensor_.setStep(1);
    sensor_.setSamplingRate(48000);
    put(1.0F);
    silenceUntil(1 + 13918);
    EXPECT_EQ(confirmed(), 0);
    put(0.0F);
    EXPECT_EQ(confirmed(), 1);
}

TEST_F(PeakSensorTest, FreshSensorStepsSixteenSamples) {
    PeakSensor fresh;
    fresh.putLevel(0.0F, buffer_);
    EXPECT_EQ(fresh.pos(), 16);
    EXPECT_EQ(fresh.diffSource(), -1);
    EXPECT_EQ(fresh.getDiff(1.0F), 1.0F);
}

TEST_F(PeakSensorTest, ResetForgetsThePeakAndBeginsAtTheStart) {
    put(1.0F);
    sensor_.reset(96000);
    EXPECT_FALSE(sensor_.isTracking());
    EXPECT_EQ(sensor_.pos(), 96000);
    EXPECT_EQ(sensor_.line(), 0.001F);
    EXPECT_EQ(sensor_.peakLevel(), 0.0F);
    put(0.5F);
    EXPECT_EQ(sensor_.peakPos(), 96008);
}

TEST_F(PeakSensorTest, PeakIsConfirmedAcrossTheWrapOfPositions) {
    sensor_.reset(kMaxPos - 15);
    put(1.0F);  // at kMaxPos - 7
    for (int i = 0; i < kConfirm / kStep - 1; ++i) put(0.0F);
    EXPECT_EQ(confirmed(), 0);
    put(0.0F);
    EXPECT_EQ(confirmed(), 1);
    EXPECT_EQ(sensor_.peakPos(), kMaxPos - 7);
    EXPECT_LT(sensor_.pos(), 0);
}

// Only a time that runs backward puts a position before its maximum; read unsigned, the distance is
// huge.
TEST_F(PeakSensorTest, PositionBeforeTheMaximumEndsThePeakAtOnce) {
    sensor_.reset(1000);
    put(1.0F);
    sensor_.setStep(-8);
    put(0.0F);
    EXPECT_EQ(confirmed(), 1);
}

TEST_F(PeakSensorTest, AbsurdLevelsDoNoHarm) {
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    put(notANumber);
    EXPECT_FALSE(sensor_.isTracking());
    put(std::numeric_limits<float>::infinity());
    EXPECT_TRUE(sensor_.isTracking());
    put(notANumber);
    EXPECT_EQ(sensor_.peakPos(), 16);
    for (int i = 0; i < 40000; ++i) put(1e38F);
    EXPECT_EQ(confirmed(), 1);
}

TEST_F(PeakSensorTest, WithoutDifferenceAnalysisTheInputPasses) {
    EXPECT_EQ(sensor_.getDiff(0.5F), 0.5F);
    EXPECT_EQ(sensor_.getDiff(-0.5F), -0.5F);
}

// Mean of two: 1 − (1 + 0) / 2 = 0.5; 0 − (0 + 1) / 2 < 0; 2 − (2 + 0) / 2 = 1; 2 − (2 + 2) / 2 =
// 0.
TEST_F(PeakSensorTest, DifferenceIsTheInputLessItsMovingMeanAndNeverNegative) {
    sensor_.setDiffAnalyze(0.001F, 0);
    EXPECT_EQ(sensor_.getDiff(1.0F), 0.5F);
    EXPECT_EQ(sensor_.getDiff(0.0F), 0.0F);
    EXPECT_EQ(sensor_.getDiff(2.0F), 1.0F);
    EXPECT_EQ(sensor_.getDiff(2.0F), 0.0F);
}

// 1 ms and 0.2 ms: 48 and 9.6 samples at 48 kHz, 44.1 and 8.82 at 44.1 kHz, each rounded half up.
TEST_F(PeakSensorTest, DifferenceLengthIsRoundedToWholeSamples) {
    sensor_.setDiffAnalyze(1.0F, 0);
    EXPECT_EQ(diffLength(), 48);
    sensor_.setDiffAnalyze(0.2F, 3);
    EXPECT_EQ(diffLength(), 10);
    EXPECT_EQ(sensor_.diffSource(), 3);
    sensor_.setSamplingRate(44100);
    sensor_.setDiffAnalyze(1.0F, 0);
    EXPECT_EQ(diffLength(), 44);
    sensor_.setDiffAnalyze(0.2F, 3);
    EXPECT_EQ(diffLength(), 9);
}

TEST_F(PeakSensorTest, DifferenceLengthIsTwoAtLeast) {
    for (const float ms : {0.0F, -1.0F, 0.03F, std::numeric_limits<float>::quiet_NaN()}) {
        sensor_.setDiffAnalyze(ms, 0);
        EXPECT_EQ(diffLength(), 2) << ms;
    }
}

TEST_F(PeakSensorTest, MovingMeanForgetsWhatLeftIt) {
    sensor_.setDiffAnalyze(1.0F, 0);
    sensor_.getDiff(48.0F);
    for (int i = 0; i < 47; ++i) sensor_.getDiff(0.0F);
    // The 48 leaves the mean with this input, so that only the 1 itself is in it.
    EXPECT_EQ(sensor_.getDiff(1.0F), 1.0F - 1.0F / 48.0F);
}

TEST_F(PeakSensorTest, DifferenceOfNoNumberIsZero) {
    sensor_.setDiffAnalyze(1.0F, 0);
    EXPECT_EQ(sensor_.getDiff(std::numeric_limits<float>::quiet_NaN()), 0.0F);
    EXPECT_EQ(sensor_.getDiff(1.0F), 0.0F);
    sensor_.reset(0);
    EXPECT_EQ(sensor_.getDiff(48.0F), 47.0F);
}

// Blocks as short as the rings and shorter, longer and much longer; the oracle is getDiff().
TEST_F(PeakSensorTest, DifferencesOfTwoSensorsByTheBlockAreThoseSampleBySample) {
    PeakSensor other;
    PeakSensor plain;
    PeakSensor plainOther;
    for (PeakSensor* sensor : {&sensor_, &plain, &other, &plainOther})
        sensor->setSamplingRate(48000);
    for (PeakSensor* sensor : {&sensor_, &plain}) sensor->setDiffAnalyze(1.0F, 0);
    for (PeakSensor* sensor : {&other, &plainOther}) sensor->setDiffAnalyze(0.2F, 3);
    std::vector<float> in = whiteNoise(6000, 11);
    std::vector<float> otherIn = whiteNoise(6000, 12);
    for (std::vector<float>* signal : {&in, &otherIn}) {
        for (float& x : *signal) x = std::fabs(x);
        (*signal)[3000] = std::numeric_limits<float>::infinity();
    }
    std::vector<float> out(in.size());
    std::vector<float> otherOut(in.size());
    std::ptrdiff_t at = 0;
    for (const int count : {1, 9, 10, 11, 47, 48, 49, 2, 640, 100, 3, 5080}) {
        PeakSensor::getDiffs({{{&sensor_, in.data() + at, out.data() + at},
                               {&other, otherIn.data() + at, otherOut.data() + at}}},
                             count);
        at += count;
    }
    ASSERT_EQ(at, 6000);
    for (std::size_t i = 0; i < in.size(); ++i) {
        ASSERT_EQ(out[i], plain.getDiff(in[i])) << i;
        ASSERT_EQ(otherOut[i], plainOther.getDiff(otherIn[i])) << i;
    }
}

/** Takes levels as a host of putQuietLevels() has to: the confirming ones by putLevel(). */
void putInRuns(PeakSensor& sensor, PeakBuffer& buffer, const std::vector<float>& levels, int run) {
    const int count = static_cast<int>(levels.size());
    for (int from = 0; from < count; from += run) {
        const int to = std::min(from + run, count);
        for (int i = from; i < to;) {
            i = sensor.putQuietLevels(levels.data(), i, to);
            if (i < to) sensor.putLevel(levels[static_cast<std::size_t>(i++)], buffer);
        }
    }
}

void expectSameState(const PeakSensor& plain, const PeakSensor& fast) {
    EXPECT_EQ(fast.pos(), plain.pos());
    EXPECT_EQ(fast.line(), plain.line());
    EXPECT_EQ(fast.peakPos(), plain.peakPos());
    EXPECT_EQ(fast.peakLevel(), plain.peakLevel());
    EXPECT_EQ(fast.isTracking(), plain.isTracking());
}

// Hits that die away, a break in which the line falls to the floor, and a wrap of the positions;
// the oracle is putLevel() alone.
TEST_F(PeakSensorTest, QuietRunsChangeNothing) {
    std::vector<float> levels = whiteNoise(200000, 17);
    float swell = 0.0F;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (i % 3701 == 0 && i % 90000 < 30000) swell = 1.0F + levels[i];
        swell *= 0.998F;
        levels[i] = swell * (1.0F + 0.2F * levels[i]);
    }
    levels[77] = std::numeric_limits<float>::quiet_NaN();
    levels[150001] = 1e38F;
    for (const int start : {0, kMaxPos - 50000}) {
        for (const int run : {1, 2, 79, 80, 73, 200000}) {
            PeakSensor plain;
            PeakBuffer plainBuffer;
            plainBuffer.create(0);
            buffer_.create(0);
            for (PeakSensor* sensor : {&plain, &sensor_}) {
                sensor->setSamplingRate(48000);
                sensor->setStep(kStep);
                sensor->reset(start);
            }
            for (const float level : levels) plain.putLevel(level, plainBuffer);
            putInRuns(sensor_, buffer_, levels, run);
            expectSameState(plain, sensor_);
            ASSERT_EQ(confirmed(), plainBuffer.ring().count());
            ASSERT_GT(confirmed(), 10);
            for (int k = 0; k < confirmed(); ++k) {
                EXPECT_EQ(buffer_.ring().back(k).pos, plainBuffer.ring().back(k).pos);
                EXPECT_EQ(buffer_.ring().back(k).level, plainBuffer.ring().back(k).level);
            }
        }
    }
}

// A rate so low that a peak needs no time: every tracked level confirms one.
TEST_F(PeakSensorTest, QuietRunsStopWhereAPeakNeedsNoTime) {
    sensor_.setSamplingRate(3);
    PeakSensor plain;
    plain.setSamplingRate(3);
    plain.setStep(kStep);
    PeakBuffer plainBuffer;
    plainBuffer.create(0);
    const std::vector<float> levels = {0.1F, 0.2F, 0.3F, 0.0F, 0.5F, 0.5F, 0.9F, 0.1F};
    for (const float level : levels) plain.putLevel(level, plainBuffer);
    putInRuns(sensor_, buffer_, levels, 8);
    expectSameState(plain, sensor_);
    EXPECT_EQ(confirmed(), plainBuffer.ring().count());
    EXPECT_GT(confirmed(), 2);
}

}  // namespace
