// SPDX-License-Identifier: MIT
// Oracle: the truncation of single samples, dsp/truncation.h.
#include "session/frameKernels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/TestNoise.h"
#include "dsp/truncation.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

using namespace beatatlas;
using beatatlas::test::FormScope;
using beatatlas::test::formsOfThisMachine;
using beatatlas::test::nameOf;

/** Noise of many magnitudes, with every border of the conversion among it. */
std::vector<float> awkwardSamples(std::size_t count, std::uint32_t seed) {
    constexpr float kInf = std::numeric_limits<float>::infinity();
    const std::vector<float> borders = {
        0.0F,           -0.0F,          0.99F,    -0.99F,    32767.9F,      32768.0F,
        -32768.9F,      -32769.0F,      65535.5F, -65536.0F, 2147483520.0F, 2147483648.0F,
        -2147483648.0F, -2147483904.0F, 1e38F,    -1e38F,    kInf,          -kInf,
        std::nanf(""),  9.999F,         10.0F,    -10.0F,    1e-40F,        40000.25F};
    std::vector<float> samples = beatatlas::test::whiteNoise(count, seed);
    for (std::size_t i = 0; i < count; ++i) {
        samples[i] *= 33000.0F;
        if (i % 3 == 1) samples[i] = borders[(i / 3 + seed) % borders.size()];
    }
    return samples;
}

class FrameKernelsTest : public beatatlas::test::RoundTowardZero {
protected:
    const std::vector<float> left_ = awkwardSamples(700, 1);
    const std::vector<float> right_ = awkwardSamples(700, 6);
};

TEST_F(FrameKernelsTest, ConvertsEveryFrameAsItsSamplesAlone) {
    for (const VectorForm form : formsOfThisMachine()) {
        const FormScope scope(form);
        for (const std::size_t n : {0U, 1U, 7U, 8U, 9U, 588U, 640U, 700U}) {
            std::vector<float> mono(n + 1, -7.0F);
            std::vector<std::int16_t> stereo(2 * n + 1, 77);
            convertFrames(left_.data(), right_.data(), static_cast<int>(n), mono.data(),
                          stereo.data());
            for (std::size_t i = 0; i < n; ++i) {
                const float mean = (left_[i] + right_[i]) * (1.0F / 65536.0F);
                ASSERT_TRUE(mono[i] == mean || (std::isnan(mono[i]) && std::isnan(mean))) << i;
                ASSERT_EQ(stereo[2 * i], truncToInt16(left_[i])) << nameOf(form) << " " << left_[i];
                ASSERT_EQ(stereo[2 * i + 1], truncToInt16(right_[i])) << nameOf(form);
            }
            EXPECT_EQ(mono[n], -7.0F);
            EXPECT_EQ(stereo[2 * n], 77);
        }
    }
}

TEST_F(FrameKernelsTest, SumsTheMagnitudesOfEveryFrame) {
    for (const VectorForm form : formsOfThisMachine()) {
        const FormScope scope(form);
        for (const std::size_t n : {0U, 1U, 7U, 8U, 9U, 16U, 588U, 640U, 700U}) {
            std::int64_t sum = 0;
            std::int32_t max = 0;
            for (std::size_t i = 0; i < n; ++i) {
                const int a = std::abs(static_cast<int>(truncToInt16(left_[i])));
                const int b = std::abs(static_cast<int>(truncToInt16(right_[i])));
                sum += a + b;
                max = std::max({max, a, b});
            }
            const LevelTotals totals =
                levelTotals(left_.data(), right_.data(), static_cast<int>(n));
            EXPECT_EQ(totals.sum, sum) << nameOf(form) << ", " << n;
            EXPECT_EQ(totals.max, max) << nameOf(form) << ", " << n;
        }
    }
}

// 32,768 frames of full magnitude fill a lane to 2^28; the sums of several such stretches need more
// than 32 bits.
TEST_F(FrameKernelsTest, LongStretchesOfFullScaleDoNotOverflow) {
    const std::vector<float> full(300007, -32768.0F);
    for (const VectorForm form : formsOfThisMachine()) {
        const FormScope scope(form);
        const LevelTotals totals = levelTotals(full.data(), full.data(), 300007);
        EXPECT_EQ(totals.sum, 300007LL * 65536);
        EXPECT_EQ(totals.max, 32768);
    }
}

}  // namespace
