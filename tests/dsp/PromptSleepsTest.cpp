// SPDX-License-Identifier: MIT
#include "dsp/PromptSleeps.h"

#include <gtest/gtest.h>

#if defined(__linux__)

#include <stdexcept>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using beatatlas::PromptSleeps;

long allowance() {
    return syscall(SYS_prctl, PR_GET_TIMERSLACK, 0L, 0L, 0L, 0L);
}

/** Gives this thread the system's default back. */
class PromptSleepsTest : public testing::Test {
protected:
    ~PromptSleepsTest() override { prctl(PR_SET_TIMERSLACK, 0L, 0L, 0L, 0L); }
};

TEST_F(PromptSleepsTest, LeavesTheThreadNoAllowanceWhileItLives) {
    ASSERT_EQ(prctl(PR_SET_TIMERSLACK, 123456L, 0L, 0L, 0L), 0);
    {
        const PromptSleeps prompt;
        EXPECT_EQ(allowance(), 1);
    }
    EXPECT_EQ(allowance(), 123456);
}

TEST_F(PromptSleepsTest, GivesTheAllowanceBackWhenAnExceptionPasses) {
    ASSERT_EQ(prctl(PR_SET_TIMERSLACK, 77777L, 0L, 0L, 0L), 0);
    EXPECT_THROW(
        {
            const PromptSleeps prompt;
            throw std::runtime_error("out of here");
        },
        std::runtime_error);
    EXPECT_EQ(allowance(), 77777);
}

TEST_F(PromptSleepsTest, NestedOnesGiveBackWhatEachFound) {
    ASSERT_EQ(prctl(PR_SET_TIMERSLACK, 50001L, 0L, 0L, 0L), 0);
    {
        const PromptSleeps outer;
        { const PromptSleeps inner; }
        EXPECT_EQ(allowance(), 1);
    }
    EXPECT_EQ(allowance(), 50001);
}

TEST_F(PromptSleepsTest, GivesAnAllowanceOfManySecondsBack) {
    ASSERT_EQ(prctl(PR_SET_TIMERSLACK, 5000000000L, 0L, 0L, 0L), 0);
    { const PromptSleeps prompt; }
    EXPECT_EQ(allowance(), 5000000000L);
}

}  // namespace

#endif
