// SPDX-License-Identifier: MIT
#include "dsp/truncation.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace beatatlas;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

TEST(TruncationTest, CutsTowardZeroOnBothSides) {
    EXPECT_EQ(truncToInt32(2.999F), 2);
    EXPECT_EQ(truncToInt32(-2.999F), -2);
    EXPECT_EQ(truncToInt32(0.99999999), 0);
    EXPECT_EQ(truncToInt32(-0.99999999), 0);
}

TEST(TruncationTest, ReachesBothEndsOfInt32) {
    EXPECT_EQ(truncToInt32(2147483647.0), kMax);
    EXPECT_EQ(truncToInt32(2147483647.99), kMax);
    EXPECT_EQ(truncToInt32(-2147483648.0), kMin);
    EXPECT_EQ(truncToInt32(-2147483648.99), kMin);
    EXPECT_EQ(truncToInt32(2147483520.0F), 2147483520);  // the largest float below 2^31
}

TEST(TruncationTest, GivesTheMostNegativeIntegerForWhatDoesNotFit) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (double value :
         {2147483648.0, -2147483649.0, 1e38, -1e38, kInfinity, -kInfinity, std::nan("")}) {
        EXPECT_EQ(truncToInt32(value), kMin) << value;
        EXPECT_EQ(truncToInt32(static_cast<float>(value)), kMin) << value;
    }
    EXPECT_EQ(truncToInt64(std::nan("")), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(truncToInt64(9223372036854775808.0), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(truncToInt64(-9.9e15), -9900000000000000);
}

// 16-bit samples wrap: 40000 = 65536 − 25536.
TEST(TruncationTest, SamplesKeepTheLowSixteenBits) {
    EXPECT_EQ(truncToInt16(32767.9F), 32767);
    EXPECT_EQ(truncToInt16(32768.0F), -32768);
    EXPECT_EQ(truncToInt16(40000.0F), -25536);
    EXPECT_EQ(truncToInt16(-40000.0), 25536);
    EXPECT_EQ(truncToInt16(65536.0F), 0);
    EXPECT_EQ(truncToInt16(std::nanf("")), 0);
}

TEST(TruncationTest, WrappingArithmeticGoesRoundTheEnds) {
    EXPECT_EQ(wrappingAdd(kMax, 1), kMin);
    EXPECT_EQ(wrappingSubtract(kMin, 1), kMax);
    EXPECT_EQ(wrappingAdd(-3, 5), 2);
}

}  // namespace
