// SPDX-License-Identifier: MIT
// The flags that the results rest on, seen at work.
#include <cfenv>

#include "dsp/RoundingMode.h"
#include "support/RoundTowardZero.h"

namespace {

class NumericsTest : public beatatlas::test::RoundTowardZero {};

#if defined(__x86_64__)
// Compiled for a processor that has fused multiply-add, so that only the flag keeps the two apart.
__attribute__((target("fma"), noinline)) double productPlus(double a, double b, double c) {
    return a * b + c;
}

// (1 + 2^−30)² = 1 + 2^−29 + 2^−60; the product alone drops the last term, a fused one keeps it.
TEST_F(NumericsTest, MultiplyAndAddAreNotFused) {
    if (!__builtin_cpu_supports("fma")) GTEST_SKIP() << "this processor cannot fuse";
    const volatile double a = 1.0 + 0x1p-30;
    const volatile double c = -(1.0 + 0x1p-29);
    EXPECT_EQ(productPlus(a, a, c), 0.0);
}
#endif

// One third is below its nearest float and double alike only when cut: 0x3eaaaaab is nearest,
// 0x3eaaaaaa cut.
TEST_F(NumericsTest, DivisionIsCutTowardZero) {
    const volatile float one = 1.0F;
    const volatile float three = 3.0F;
    EXPECT_EQ(one / three, 0x1.555554p-2F);
}

// 48000 × 0.29 is 13919.999…: rounded to nearest it would reach 13920.
TEST_F(NumericsTest, LengthsOfStatedSecondsAreCutBelowTheWholeNumber) {
    const volatile int rate = 48000;
    EXPECT_EQ(static_cast<int>(rate * 0.29), 13919);
    EXPECT_EQ(static_cast<int>(rate * 1.7), 81599);
}

TEST(RoundingModeTest, ScopeGivesTheThreadItsModeBack) {
    ASSERT_EQ(std::fesetround(FE_UPWARD), 0);
    {
        const beatatlas::TowardZeroScope scope;
        EXPECT_EQ(std::fegetround(), FE_TOWARDZERO);
    }
    EXPECT_EQ(std::fegetround(), FE_UPWARD);
    std::fesetround(FE_TONEAREST);
}

TEST(RoundingModeTest, SettingTheModeLeavesItSet) {
    beatatlas::setRoundTowardZero();
    EXPECT_EQ(std::fegetround(), FE_TOWARDZERO);
    std::fesetround(FE_TONEAREST);
}

}  // namespace
