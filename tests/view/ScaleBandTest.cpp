// SPDX-License-Identifier: MIT
#include "view/scaleBand.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/TestNoise.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

using namespace beatatlas;

class ScaleBandTest : public beatatlas::test::RoundTowardZero {};

std::vector<float> rectifiedNoise() {
    std::vector<float> band = beatatlas::test::whiteNoise(640, 4);
    for (float& x : band) x = std::fabs(x);
    return band;
}

TEST_F(ScaleBandTest, ScalesInPlaceAndTellsTheLoudestWhereverItStands) {
    for (const VectorForm form : beatatlas::test::formsOfThisMachine()) {
        const beatatlas::test::FormScope scope(form);
        for (const std::size_t n : {0U, 1U, 7U, 8U, 9U, 17U, 588U, 640U}) {
            for (std::size_t at = 0; at < n; at += 1 + n / 20) {
                std::vector<float> band = rectifiedNoise();
                band[at] = 3.0F;
                const std::vector<float> original = band;
                EXPECT_EQ(scaleBand(band.data(), band.data(), static_cast<int>(n)), 98304.0F);
                for (std::size_t i = 0; i < band.size(); ++i)
                    ASSERT_EQ(band[i], i < n ? original[i] * 32768.0F : original[i]);
            }
        }
    }
}

TEST_F(ScaleBandTest, NanAndNegativeSamplesAreNeverTheLoudest) {
    for (const VectorForm form : beatatlas::test::formsOfThisMachine()) {
        const beatatlas::test::FormScope scope(form);
        std::vector<float> band(19, std::nanf(""));
        float scaled[19];
        EXPECT_EQ(scaleBand(band.data(), scaled, 19), 0.0F);
        band[3] = 0.5F;
        band[11] = -2.0F;
        EXPECT_EQ(scaleBand(band.data(), scaled, 19), 16384.0F);
        band[18] = std::numeric_limits<float>::infinity();
        EXPECT_EQ(scaleBand(band.data(), scaled, 19), std::numeric_limits<float>::infinity());
        EXPECT_TRUE(std::isnan(scaled[0]));
    }
}

}  // namespace
