// SPDX-License-Identifier: MIT
#include "io/ProgressLine.h"

#include <array>
#include <cstdio>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
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

    /** Everything that arrived; the terminal passes it on a moment later. */
    std::string shown() {
        restoreError();
        std::string text;
        std::array<char, 4096> buffer{};
        for (struct pollfd ready = {controller_, POLLIN, 0}; poll(&ready, 1, 100) > 0;) {
            const ssize_t count = read(controller_, buffer.data(), buffer.size());
            if (count <= 0) break;
            text.append(buffer.data(), static_cast<std::size_t>(count));
        }
        return text;
    }

    int controller_ = -1;
    int ownError_ = -1;
};

// Of 39 usable columns a third is the bar: 13, of which 42 % fill 5.
TEST_F(ProgressLineTest, ShowsNameBarAndPercentAndWipesThemInTheEnd) {
    { ProgressLine("song.mp3", true).show(0.42, 300.0); }
    const std::string text = shown();
    EXPECT_THAT(text, HasSubstr("song.mp3  [#####........]  42 %\r"));
    EXPECT_THAT(text, EndsWith("\r\x1B[K"));
    EXPECT_THAT(text, Not(HasSubstr("\n")));
}

TEST_F(ProgressLineTest, KeepsToOneLineOfTheTerminal) {
    { ProgressLine(std::string(200, 'n'), true).show(0.5, 300.0); }
    // "  [" and the bar of 13, "]" and "  50 %" take 23 of the 39 usable columns: the name has 16.
    const std::string text = shown();
    EXPECT_THAT(text, HasSubstr(std::string(16, 'n') + "  ["));
    EXPECT_THAT(text, Not(HasSubstr(std::string(17, 'n'))));
}

// Eight of them are sixteen columns.
TEST_F(ProgressLineTest, CountsTwoColumnsForCharactersThatMayBeWide) {
    std::string name;
    for (int i = 0; i < 20; ++i) name += "音";
    { ProgressLine(name, true).show(0.5, 300.0); }
    EXPECT_THAT(shown(), HasSubstr("\x1B[K音音音音音音音音  ["));
}

TEST_F(ProgressLineTest, NeverShowsMoreThanAHundredPercent) {
    { ProgressLine("x", true).show(7.5, 300.0); }
    EXPECT_THAT(shown(), HasSubstr("[#############] 100 %"));
}

TEST_F(ProgressLineTest, PrintsNothingWhenNotWanted) {
    { ProgressLine("x", false).show(0.5, 300.0); }
    EXPECT_EQ(shown(), "");
}

// 43 % of 300 s in 1.5 s are 129 s of music: 86 times. As 43 % took 1.5 s, the other 57 % take 1.99 s.
TEST(ProgressLine, TellsSpeedAndTimeLeft) {
    EXPECT_EQ(progressFigures(0.43, 300.0, 1.5), "  43 %  86x  0:01 left");
    EXPECT_EQ(progressFigures(0.01, 36000.0, 10.0), "   1 %  36x  16:30 left");
}

TEST(ProgressLine, TellsNoSpeedOfATrackOfUnknownLength) {
    EXPECT_EQ(progressFigures(0.5, 0.0, 60.0), "  50 %  1:00 left");
}

TEST(ProgressLine, TellsNoSpeedBeforeItCanBeMeasured) {
    EXPECT_EQ(progressFigures(0.25, 300.0, 0.1), "  25 %");
    EXPECT_EQ(progressFigures(0.0, 300.0, 5.0), "   0 %");
}

TEST(ProgressLine, PrintsNothingWhereNobodyWatches) {
    testing::internal::CaptureStderr();
    { ProgressLine("x", true).show(0.5, 300.0); }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace app
