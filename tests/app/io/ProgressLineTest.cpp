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

    static void resize(unsigned short columns) {
        const struct winsize size = {24, columns, 0, 0};
        ioctl(STDERR_FILENO, TIOCSWINSZ, &size);
    }

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

// Of 79 usable columns a third is the bar: 26, of which 42 % fill 10. Percentage, speed and time
// take 28.
TEST_F(ProgressLineTest, ShowsNameBarAndPercentAndWipesThemInTheEnd) {
    resize(80);
    { ProgressLine("/music/of/a/friend/song.mp3", true).show(0.42, 300.0); }
    const std::string text = shown();
    EXPECT_THAT(text, HasSubstr("\x1B[Ksong.mp3  [##########................]   42 %" +
                                std::string(21, ' ') + "\r"));
    EXPECT_THAT(text, EndsWith("\r\x1B[K"));
    EXPECT_THAT(text, Not(HasSubstr("\n")));
}

// 28 columns for the figures, 30 and 4 for the bar, the name has the rest of 119.
TEST_F(ProgressLineTest, GivesTheNameWhatTheBarLeavesOfAWideTerminal) {
    resize(120);
    { ProgressLine(std::string(200, 'n'), true).show(0.5, 300.0); }
    EXPECT_THAT(shown(), HasSubstr("\x1B[K" + std::string(57, 'n') + "  [###"));
}

// Percentage and time take 21 of 39 usable columns: 18 are left, for the name alone.
TEST_F(ProgressLineTest, KeepsTheNameRatherThanTheBarOnANarrowTerminal) {
    { ProgressLine(std::string(200, 'n'), true).show(0.5, 300.0); }
    const std::string line = std::string(18, 'n') + "   50 %" + std::string(14, ' ');
    EXPECT_THAT(shown(), HasSubstr("\x1B[K" + line + "\r"));
}

// 9 characters of two columns are 18.
TEST_F(ProgressLineTest, CountsTwoColumnsForCharactersThatMayBeWide) {
    std::string name;
    for (int i = 0; i < 20; ++i) name += "音";
    { ProgressLine(name, true).show(0.5, 300.0); }
    EXPECT_THAT(shown(), HasSubstr("\x1B[K音音音音音音音音音   50 %"));
}

TEST_F(ProgressLineTest, NeverShowsMoreThanOneLineHasRoomFor) {
    for (const unsigned short columns : {1, 2, 10, 21, 22, 30, 50, 51, 60}) {
        resize(columns);
        { ProgressLine(std::string(200, 'n'), true).show(0.5, 300.0); }
    }
    std::size_t begin = 0;
    const std::string text = shown();
    for (const std::size_t columns : {1, 2, 10, 21, 22, 30, 50, 51, 60}) {
        const std::size_t from = text.find("\x1B[K", begin) + 3;
        const std::size_t to = text.find('\r', from);
        EXPECT_EQ(to - from, columns - 1);
        begin = to + 4;
    }
}

TEST_F(ProgressLineTest, NeverShowsMoreThanAHundredPercent) {
    resize(80);
    { ProgressLine("x", true).show(7.5, 300.0); }
    EXPECT_THAT(shown(), HasSubstr("[##########################]  100 %"));
}

TEST_F(ProgressLineTest, PrintsNothingWhenNotWanted) {
    { ProgressLine("x", false).show(0.5, 300.0); }
    EXPECT_EQ(shown(), "");
}

// 43 % of 300 s in 1.5 s are 129 s of music: 86 times. As 43 % took 1.5 s, the other 57 % take
// 1.99 s.
TEST(ProgressLine, TellsSpeedAndTimeLeft) {
    EXPECT_EQ(progressFigures(0.43, 300.0, 1.5, Speed::shown), "   43 %    86x     0:01 left");
    EXPECT_EQ(progressFigures(0.43, 300.0, 1.5, Speed::hidden), "   43 %     0:01 left");
    EXPECT_EQ(progressFigures(0.01, 36000.0, 10.0, Speed::shown), "    1 %    36x    16:30 left");
}

TEST(ProgressLine, TellsNoSpeedOfATrackOfUnknownLength) {
    EXPECT_EQ(progressFigures(0.5, 0.0, 60.0, Speed::shown), "   50 %            1:00 left");
}

TEST(ProgressLine, TellsNoSpeedBeforeItCanBeMeasured) {
    EXPECT_EQ(progressFigures(0.25, 300.0, 0.1, Speed::shown), "   25 %" + std::string(21, ' '));
    EXPECT_EQ(progressFigures(0.0, 300.0, 5.0, Speed::shown), "    0 %" + std::string(21, ' '));
}

// From the first call to the last of a track of two hours at 1234 times its speed.
TEST(ProgressLine, KeepsEveryFigureInItsColumns) {
    for (const double done : {0.0, 0.001, 0.05, 0.5, 0.999, 1.0})
        EXPECT_EQ(progressFigures(done, 7200.0, 5.83 * done, Speed::shown).size(), 28U) << done;
    EXPECT_EQ(progressFigures(0.001, 36000.0, 30.0, Speed::shown).size(), 28U) << "hours left";
}

TEST(ProgressLine, PrintsNothingWhereNobodyWatches) {
    testing::internal::CaptureStderr();
    { ProgressLine("x", true).show(0.5, 300.0); }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace app
