// SPDX-License-Identifier: MIT
#include "dsp/sampleBlocks.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

class SampleBlocksTest : public beatatlas::test::RoundTowardZero {};

std::vector<std::int16_t> stereoNoise(std::size_t frames) {
    std::mt19937 random(5);
    std::vector<std::int16_t> stereo(2 * frames);
    for (std::int16_t& sample : stereo) sample = static_cast<std::int16_t>(random());
    return stereo;
}

// The sum of two 16-bit samples and its half are exact in double; the whole part is cut toward
// zero.
TEST_F(SampleBlocksTest, MeansAreHalfTheSumOfTheChannelsAndItsWholePartInEveryForm) {
    auto stereo = stereoNoise(100);
    const std::int16_t most = 32767;
    const std::int16_t least = -32768;
    for (std::size_t at : {0U, 7U, 50U}) {
        stereo[2 * at] = least;
        stereo[(2 * at) + 1] = at == 7 ? most : least;
        stereo[(2 * at) + 2] = most;
        stereo[(2 * at) + 3] = most;
    }
    for (auto form : beatatlas::test::formsOfThisMachine()) {
        const beatatlas::test::FormScope scope(form);
        for (std::size_t n = 0; n <= 100; ++n) {
            std::vector<double> means(101, -1.0);
            std::vector<double> wholes(101, -1.0);
            beatatlas::meansOfBlock(stereo.data(), means.data(), wholes.data(),
                                    static_cast<int>(n));
            for (std::size_t i = 0; i < n; ++i) {
                const double mean = (stereo[2 * i] + stereo[(2 * i) + 1]) / 2.0;
                SCOPED_TRACE(beatatlas::test::nameOf(form));
                ASSERT_EQ(means[i], mean) << i << " of " << n;
                ASSERT_EQ(wholes[i], std::trunc(mean)) << i << " of " << n;
            }
            ASSERT_EQ(means[n], -1.0) << "beyond the block";
            ASSERT_EQ(wholes[n], -1.0) << "beyond the block";
        }
    }
}

TEST_F(SampleBlocksTest, TheLargestMagnitudeIsFoundAtEveryPlaceInEveryForm) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (auto form : beatatlas::test::formsOfThisMachine()) {
        const beatatlas::test::FormScope scope(form);
        for (std::size_t n = 1; n <= 50; ++n) {
            for (std::size_t at = 0; at < n; ++at) {
                std::vector<double> values(n + 1, -0.5);
                values[(at + 1) % n] = nan;
                values[at] = at % 2 == 0 ? -7.25 : 7.25;
                values[n] = 9.0;
                ASSERT_EQ(beatatlas::largestMagnitude(values.data(), static_cast<int>(n)), 7.25)
                    << at << " of " << n << ' ' << beatatlas::test::nameOf(form);
            }
        }
        const std::vector<double> without(40, nan);
        EXPECT_EQ(beatatlas::largestMagnitude(without.data(), 40), 0.0);
    }
}

TEST_F(SampleBlocksTest, EmptyBlocksDoNothing) {
    for (int n : {0, -1}) {
        beatatlas::meansOfBlock(nullptr, nullptr, nullptr, n);
        beatatlas::widenBlock(nullptr, nullptr, n);
        beatatlas::magnitudesOfBlock(nullptr, nullptr, n);
        EXPECT_EQ(beatatlas::largestMagnitude(nullptr, n), 0.0);
    }
}

TEST_F(SampleBlocksTest, LargestSumIsThatOfTheLoudestFrameInEveryForm) {
    std::vector<std::int16_t> quiet(2 * 70, 3);
    for (auto form : beatatlas::test::formsOfThisMachine()) {
        const beatatlas::test::FormScope scope(form);
        EXPECT_EQ(beatatlas::largestSum(quiet.data(), 0), 0);
        for (std::size_t loud = 0; loud < 70; ++loud) {
            auto stereo = quiet;
            stereo[2 * loud] = stereo[2 * loud + 1] = -32768;
            EXPECT_EQ(beatatlas::largestSum(stereo.data(), 70), 65536) << loud;
            EXPECT_EQ(beatatlas::largestSum(stereo.data(), static_cast<int>(loud)),
                      loud == 0 ? 0 : 6);
            stereo[2 * loud] = 32767;
            stereo[2 * loud + 1] = 100;
            EXPECT_EQ(beatatlas::largestSum(stereo.data(), 70), 32867) << loud;
        }
    }
}

}  // namespace
