// SPDX-License-Identifier: MIT
#include "util/PitchSearchPlan.h"

#include <climits>

#include <gtest/gtest.h>

namespace beatatlas::test {
namespace {

void expectPlan(int mode, bool isLong, const PitchSearchPlan& expected) {
    const PitchSearchPlan plan = pitchSearchPlanOf(mode, isLong);
    EXPECT_EQ(plan.hop, expected.hop) << mode << isLong;
    EXPECT_EQ(plan.start, expected.start) << mode << isLong;
    EXPECT_EQ(plan.step, expected.step) << mode << isLong;
    EXPECT_EQ(plan.end, expected.end) << mode << isLong;
    EXPECT_EQ(plan.refinesAfter, expected.refinesAfter) << mode << isLong;
}

TEST(PitchSearchPlan, EveryModeAndLengthHasItsOwn) {
    for (const int mode : {3, 4}) {
        expectPlan(mode, true, {3072, 2, 2, 11, true});
        expectPlan(mode, false, {3072, 2, 2, 11, true});
    }
    expectPlan(2, true, {3072, 2, 2, 11, true});
    expectPlan(2, false, {3072, 0, 1, 13, false});
    expectPlan(1, true, {3072, 0, 1, 13, false});
    expectPlan(1, false, {2048, 2, 2, 11, true});
    for (const int mode : {0, -1, 5, INT_MAX, INT_MIN}) {
        expectPlan(mode, true, {2048, 0, 1, 13, false});
        expectPlan(mode, false, {2048, 0, 1, 13, false});
    }
}

}  // namespace
}  // namespace beatatlas::test
