// SPDX-License-Identifier: MIT
#include "io/ProgressLine.h"

#include <array>
#include <cstdio>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace app {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

/** A terminal of 40 columns on standard error while a test runs. */
class ProgressLineTest : public testing::Test {
protected:
    void SetUp() override {
        controller_ = posix_openpt(O_RDWR | O_NOCTTY);
        ASSERT_NE(controller_, -1);
        ASSERT_EQ(grantpt(controller_), 0);
        ASSERT_EQ(unlockpt(controller_), 0);
        const int terminal = open(ptsname(controller_), O_RDWR | O_NOCTTY);
        const struct winsize size = {24, 40, 0, 0};
        ioctl(terminal, TIOCSWINSZ, &size);
        ownError_ = dup(STDERR_FILENO);
        dup2(terminal, STDERR_FILENO);
        close(terminal);
    }

    void TearDown() override { restoreError(); }

    void restoreError() {
        if (ownError_ == -1) return;
        std::fflush(stderr);
        dup2(ownError_, STDERR_FILENO);
        close(std::exchange(ownError_, -1));
    }

    std::string shown() {
        restoreError();
        fcntl(controller_, F_SETFL, O_NONBLOCK);
        std::array<char, 4096> buffer{};
        const ssize_t count = read(controller_, buffer.data(), buffer.size());
        return {buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(0, count))};
    }

    int controller_ = -1;
    int ownError_ = -1;
};

TEST_F(ProgressLineTest, ShowsStagePercentAndNameAndWipesThemInTheEnd) {
    { ProgressLine("song.mp3", true).show("analysing", 0.42); }
    const std::string text = shown();
    EXPECT_THAT(text, HasSubstr(" 42 %  analysing  song.mp3"));
    EXPECT_THAT(text, EndsWith("\r\x1B[K"));
    EXPECT_THAT(text, Not(HasSubstr("\n")));
}

TEST_F(ProgressLineTest, KeepsToOneLineOfTheTerminal) {
    { ProgressLine(std::string(200, 'n'), true).show("analysing", 0.5); }
    // " 50 %  analysing  " takes 18 of the 39 usable columns.
    const std::string text = shown();
    EXPECT_THAT(text, HasSubstr(std::string(21, 'n')));
    EXPECT_THAT(text, Not(HasSubstr(std::string(22, 'n'))));
}

TEST_F(ProgressLineTest, NeverShowsMoreThanAHundredPercent) {
    { ProgressLine("x", true).show("measuring", 7.5); }
    EXPECT_THAT(shown(), HasSubstr("100 %"));
}

TEST_F(ProgressLineTest, PrintsNothingWhenNotWanted) {
    { ProgressLine("x", false).show("measuring", 0.5); }
    EXPECT_EQ(shown(), "");
}

TEST(ProgressLine, PrintsNothingWhereNobodyWatches) {
    testing::internal::CaptureStderr();
    { ProgressLine("x", true).show("measuring", 0.5); }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace app
