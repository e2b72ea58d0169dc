// SPDX-License-Identifier: MIT
#include "analysis/LibraryCall.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace app {
namespace {

class LibraryCall : public testing::Test {
protected:
    void SetUp() override { std::fesetround(FE_UPWARD); }
    void TearDown() override { std::fesetround(FE_TONEAREST); }
};

TEST_F(LibraryCall, RunsTowardZeroAndGivesTheOwnModeBack) {
    const int inside = libraryCall([] { return std::fegetround(); });
    EXPECT_EQ(inside, FE_TOWARDZERO);
    EXPECT_EQ(std::fegetround(), FE_UPWARD);
}

TEST_F(LibraryCall, GivesTheOwnModeBackWhenTheCallChangesIt) {
    libraryCall([] { std::fesetround(FE_DOWNWARD); });
    EXPECT_EQ(std::fegetround(), FE_UPWARD);
}

TEST_F(LibraryCall, GivesTheOwnModeBackWhenTheCallThrows) {
    EXPECT_THROW(libraryCall([] { throw std::runtime_error("no"); }), std::runtime_error);
    EXPECT_EQ(std::fegetround(), FE_UPWARD);
}

}  // namespace
}  // namespace app
