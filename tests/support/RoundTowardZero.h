// SPDX-License-Identifier: MIT
#pragma once

#include <cfenv>

#include <gtest/gtest.h>

namespace beatatlas::test {

/** A fixture whose tests compute as a session does, rounding toward zero, and leave the thread as
 *  it was. */
class RoundTowardZero : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(std::fegetenv(&callersEnvironment_), 0);
        ASSERT_EQ(std::fesetround(FE_TOWARDZERO), 0);
    }
    void TearDown() override { std::fesetenv(&callersEnvironment_); }

private:
    std::fenv_t callersEnvironment_{};
};

}  // namespace beatatlas::test
