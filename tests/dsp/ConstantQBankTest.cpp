// SPDX-License-Identifier: MIT
#include "dsp/ConstantQBank.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "beatatlas/dsp.h"
#include "support/RoundTowardZero.h"
#include "support/TrackSynth.h"
#include "support/VectorForms.h"
#include "support/signals.h"

namespace {

using beatatlas::ConstantQBank;

constexpr double kPi = 3.141592653589793;

class ConstantQBankTest : public beatatlas::test::RoundTowardZero {};

// One window at a time, one product at a time: the order in which the sums must come out.
float plainMagnitude(const float* x, int len, float hz, float rate, int frameLength) {
    std::vector<float> window(static_cast<std::size_t>(len));
    hanning(len, window.data());
    float re = 0.0F;
    float im = 0.0F;
    for (int i = 0; i < len; ++i) {
        const float seconds = static_cast<float>(i + 1) / rate;
        const double angle = 2.0 * kPi * static_cast<double>(hz) * static_cast<double>(seconds);
        const float w = window[static_cast<std::size_t>(i)];
        re += x[i] * (w * static_cast<float>(std::cos(angle)));
        im += x[i] * (w * static_cast<float>(std::sin(angle)));
    }
    return std::sqrt(re * re + im * im) *
           (static_cast<float>(frameLength) / static_cast<float>(len));
}

// 2 · 4000 Hz over the distance to the next semitone: 27.5 · (2^(1/12) − 1) = 1.635225 Hz for the
// lowest bin, 8000 / 1.635225 = 4892.3; an octave higher half of that, 2446.1.
TEST_F(ConstantQBankTest, WindowsSpanTheBeatingOfNeighbouringSemitones) {
    const ConstantQBank bank(72, 27.5F, 4000.0F);
    ASSERT_TRUE(bank.isUsable());
    EXPECT_EQ(bank.frameLength(), 4892);
    EXPECT_EQ(bank.windowLength(12), 2446);
    EXPECT_EQ(bank.windowLength(24), 1223);
}

std::vector<std::uint32_t> bitsOf(const std::vector<float>& values) {
    std::vector<std::uint32_t> bits;
    for (float v : values) bits.push_back(std::isnan(v) ? 1U : std::bit_cast<std::uint32_t>(v));
    return bits;
}

/** Every bin of every frame, each on its own; one NaN is as good as another. */
std::vector<float> plainRows(const ConstantQBank& bank, int bins, const std::vector<float>& x,
                             int hop, int frames, ConstantQBank::Place place) {
    std::vector<float> rows;
    for (int k = 0; k < bins; ++k) {
        const int len = bank.windowLength(k);
        const int start =
            place == ConstantQBank::Place::start ? 0 : (bank.frameLength() / 2) - (len / 2);
        const float hz = static_cast<float>(220.0 * std::pow(2.0, k / 12.0));
        for (int j = 0; j < frames; ++j)
            rows.push_back(
                plainMagnitude(x.data() + start + j * hop, len, hz, 8000.0F, bank.frameLength()));
    }
    return rows;
}

class ConstantQBankForms : public ConstantQBankTest {
protected:
    /** Counts of frames about the borders of one, two and four vectors of 4, 8 and 16 lanes. */
    void expectPlainBits(const std::vector<float>& x) {
        const ConstantQBank bank(5, 220.0F, 8000.0F);
        for (int frames : {1, 2, 3, 4, 5, 8, 9, 16, 17, 31, 33, 64, 65, 100}) {
            for (auto place : {ConstantQBank::Place::start, ConstantQBank::Place::middle}) {
                const auto expected = bitsOf(plainRows(bank, 5, x, 33, frames, place));
                for (auto form : beatatlas::test::formsOfThisMachine()) {
                    const beatatlas::test::FormScope scope(form);
                    std::vector<float> rows(5 * static_cast<std::size_t>(frames));
                    bank.magnitudes(x.data(), 33, frames, place, rows.data());
                    ASSERT_EQ(bitsOf(rows), expected)
                        << frames << ' ' << beatatlas::test::nameOf(form);
                }
            }
        }
    }
};

TEST_F(ConstantQBankForms, GiveThePlainSumInEveryFrameOfNoise) {
    expectPlainBits(beatatlas::test::whiteNoise(6000, 1.0, 5));
}

TEST_F(ConstantQBankForms, GiveThePlainSumInEveryFrameOfMusic) {
    beatatlas::test::TrackPlan plan;
    plan.lengthFrames = 60000;
    const std::vector<float> music = beatatlas::test::TrackSynth(plan).renderAll().left;
    expectPlainBits({music.begin() + 40000, music.begin() + 46000});
}

// Each stands where it meets some frames and not others.
TEST_F(ConstantQBankForms, GiveThePlainSumWithSamplesThatAreNoMusic) {
    for (float odd : {std::numeric_limits<float>::quiet_NaN(),
                      std::numeric_limits<float>::infinity(), 3e38F, 1e-45F, -0.0F}) {
        std::vector<float> x = beatatlas::test::whiteNoise(6000, 1.0, 6);
        for (std::size_t at : {700U, 701U, 2000U, 5999U}) x[at] = odd;
        expectPlainBits(x);
    }
    std::vector<float> denormal = beatatlas::test::whiteNoise(6000, 1.0, 7);
    for (float& v : denormal) v *= 1e-40F;
    expectPlainBits(denormal);
}

// A sine of amplitude 1 on the bin gives half of the window's sum, which is (N + 1) / 2; the weight
// brings every bin to the frame's length: N₀ / 4.
TEST_F(ConstantQBankTest, APureToneGivesTheSameMagnitudeInEveryBin) {
    const ConstantQBank bank(72, 27.5F, 4000.0F);
    for (int k : {12, 30, 48, 60}) {
        const double hz = 27.5 * std::pow(2.0, k / 12.0);
        const std::vector<float> x = beatatlas::test::sine(6000, hz, 4000, 1.0);
        std::vector<float> out(72);
        bank.magnitudes(x.data(), 1, 1, ConstantQBank::Place::start, out.data());
        EXPECT_NEAR(out[static_cast<std::size_t>(k)], bank.frameLength() / 4.0,
                    0.03 * bank.frameLength() / 4.0)
            << k;
    }
}

TEST_F(ConstantQBankTest, CountsWholeFramesAndNoneWhereThereIsNoHop) {
    const ConstantQBank bank(72, 27.5F, 4000.0F);
    EXPECT_EQ(bank.frameCount(4892 + 1000, 100), 10);
    EXPECT_EQ(bank.frameCount(4892 + 99, 100), 0);
    EXPECT_EQ(bank.frameCount(4892, 100), 0);
    EXPECT_EQ(bank.frameCount(100, 1), 0);
    EXPECT_EQ(bank.frameCount(0, 1), 0);
    EXPECT_EQ(bank.frameCount(-5, 1), 0);
    EXPECT_EQ(bank.frameCount(100000, 0), 0);
    EXPECT_EQ(bank.frameCount(100000, -7), 0);
    EXPECT_EQ(bank.frameCount(std::numeric_limits<long>::max(), 1),
              std::numeric_limits<int>::max());
}

// 2 · 15 Hz over the distances between semitones from 434 Hz: 30 / 25.8 is one sample, 30 / 97.5
// none.
TEST_F(ConstantQBankTest, ABinThatSeesNoSampleIsNoNumber) {
    const ConstantQBank bank(24, 434.0F, 15.0F);
    ASSERT_TRUE(bank.isUsable());
    EXPECT_EQ(bank.frameLength(), 1);
    EXPECT_EQ(bank.windowLength(23), 0);
    const float sample = 1000.0F;
    std::vector<float> rows(24);
    bank.magnitudes(&sample, 1, 1, ConstantQBank::Place::start, rows.data());
    EXPECT_NEAR(rows[0], 1000.0F, 0.01F);  // one point of the window is its top
    EXPECT_TRUE(std::isnan(rows[23]));
}

TEST_F(ConstantQBankTest, IsNotUsableWithoutMeaning) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    for (float bad : {nan, infinity, -infinity, 0.0F, -440.0F, 1e-44F, 1e38F}) {
        EXPECT_FALSE(ConstantQBank(72, bad, 44100.0F).isUsable()) << bad;
        EXPECT_EQ(ConstantQBank(72, bad, 44100.0F).frameCount(1L << 40, 1), 0) << bad;
    }
    for (float bad : {nan, infinity, -infinity, 0.0F, -44100.0F, 1e-44F, 1e38F})
        EXPECT_FALSE(ConstantQBank(72, 27.5F, bad).isUsable()) << bad;
    EXPECT_FALSE(ConstantQBank(0, 27.5F, 44100.0F).isUsable());
    // 27.5 Hz · 2^(k/12) leaves single precision at k = 1480; from there on the distance between
    // neighbours is no number.
    EXPECT_TRUE(ConstantQBank(1479, 27.5F, 44100.0F).isUsable());
    EXPECT_FALSE(ConstantQBank(1482, 27.5F, 44100.0F).isUsable());
}

TEST_F(ConstantQBankTest, NoFramesTouchNothing) {
    const ConstantQBank bank(72, 27.5F, 4000.0F);
    float row = 7.0F;
    for (const int frames : {0, -1})
        bank.magnitudes(nullptr, 1, frames, ConstantQBank::Place::start, &row);
    EXPECT_EQ(row, 7.0F);
}

}  // namespace
