// SPDX-License-Identifier: MIT
#include "io/ProgressLine.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "io/columns.h"

namespace app {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

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

using namespace std::chrono_literals;

const ProgressLine::Clock::time_point kBegin{};

/** Shows a track half a second after the beginning of a command with so many. */
void showOne(const std::string& path, double fraction, std::size_t tracks = 1) {
    ProgressLine line(std::vector<std::string>(tracks, path), ProgressLine::Manner::watched,
                      kBegin);
    line.beginTrack(path);
    line.show(fraction, 300.0, kBegin + 100ms);
}

// Of 79 usable columns a third is the bar: 26, of which 42 % fill 10. Percentage, speed and time
// take 28.
TEST_F(ProgressLineTest, ShowsNameBarAndPercentAndWipesThemInTheEnd) {
    resize(80);
    showOne("/music/of/a/friend/song.mp3", 0.42);
    const std::string text = shown();
    EXPECT_THAT(text, HasSubstr("\x1B[Ksong.mp3  [##########................]   42 %" +
                                std::string(21, ' ') + "\r"));
    EXPECT_THAT(text, EndsWith("\r\x1B[K"));
    EXPECT_THAT(text, Not(HasSubstr("\n")));
}

// Of 71 columns beside the count the figures take 28, the name with the bar's frame keeps 20, and
// the bar has 23: a sixth of them and a half are filled.
TEST_F(ProgressLineTest, CountsTheTracks) {
    resize(80);
    ProgressLine line({"a.mp3", "b.mp3", "c.mp3"}, ProgressLine::Manner::watched, kBegin);
    for (const char* name : {"a.mp3", "b.mp3"}) {
        line.beginTrack(name);
        line.show(0.5, 300.0, kBegin + 100ms);
        line.endTrack(true);
    }
    line.tellOutcome();
    const std::string text = shown();
    EXPECT_THAT(text, HasSubstr("\x1B[K1 of 3  a.mp3  [###."));
    EXPECT_THAT(text, HasSubstr("\x1B[K2 of 3  b.mp3  [###########."));
    EXPECT_THAT(text, EndsWith("beatatlas: 2 tracks done, 1 left out\r\n"));
}

TEST_F(ProgressLineTest, NeverShowsMoreThanOneLineHasRoomFor) {
    for (const std::size_t tracks : {1, 3000}) {
        for (const std::size_t columns : {1, 2, 10, 20, 21, 22, 30, 40, 50, 51, 60, 80, 200}) {
            std::string name;
            for (int i = 0; i < 100; ++i)
                name += "音e\xCC\x81";  // two columns, and one of two characters
            RunProgress run(std::vector<std::string>(tracks, name));
            run.begin();
            run.show(0.5, 300.0);
            EXPECT_LE(columnsOf(progressText(run, name, 3.0, columns)), columns) << columns;
        }
    }
}

TEST_F(ProgressLineTest, PrintsNothingWhenNotWanted) {
    {
        ProgressLine line({"x", "y"}, ProgressLine::Manner::quiet, kBegin);
        line.beginTrack("x");
        line.show(0.5, 300.0, kBegin + 1h);
        line.endTrack(true);
        line.tellOutcome();
    }
    EXPECT_EQ(shown(), "");
}

/** The line for a track of 300 s that is 43 % done after 1.5 s, by itself or as the first of
 *  several. */
std::string textOf(const std::string& name, std::size_t columns, std::size_t tracks = 1) {
    RunProgress run(std::vector<std::string>(tracks, name));
    run.begin();
    run.show(0.43, 300.0);
    return progressText(run, name, 1.5, columns);
}

// 43 % of 300 s in 1.5 s are 129 s of music: 86 times. As 43 % took 1.5 s, the other 57 % take
// 1.99 s. Of 79 columns the bar has 26, of which 11 are filled.
TEST(ProgressText, TellsSpeedAndTimeLeft) {
    EXPECT_EQ(textOf("track.mp3", 79),
              "track.mp3  [###########...............]   43 %    86x     0:02 left");
}

TEST(ProgressText, IsTheOneThatTheManualShows) {
    std::ifstream manual(BEATATLAS_SOURCE "/docs/tool.md");
    const std::string text(std::istreambuf_iterator<char>(manual), {});
    EXPECT_THAT(text, HasSubstr("`" + textOf("track.mp3", 79) + "`"));
    RunProgress run(std::vector<std::string>(300, "track.mp3"));
    for (int i = 0; i < 12; ++i) {
        run.begin();
        run.show(i < 11 ? 1.0 : 0.43, 300.0);
        if (i < 11) run.end(true);
    }
    EXPECT_THAT(text, HasSubstr("`" + progressText(run, "track.mp3", 40.0, 79) + "`"));
}

// 28 columns for the figures, 30 and 4 for the bar, the name has the rest of 119.
TEST(ProgressText, GivesTheNameWhatTheBarLeavesOfAWideTerminal) {
    EXPECT_THAT(textOf(std::string(200, 'n'), 119), StartsWith(std::string(57, 'n') + "  [###"));
}

// Percentage and time take 21 of 39 usable columns: 18 are left, for the name alone; 9 characters
// of two columns are 18.
TEST(ProgressText, KeepsTheNameRatherThanTheBarOnANarrowTerminal) {
    EXPECT_EQ(textOf(std::string(200, 'n'), 39), std::string(18, 'n') + "   43 %     0:02 left");
    std::string wide;
    for (int i = 0; i < 20; ++i) wide += "音";
    EXPECT_EQ(textOf(wide, 39), "音音音音音音音音音   43 %     0:02 left");
}

// 43 % of the first of ten is 4 % of all, and 1.5 s were for that: 33 s are left.
TEST(ProgressText, KeepsCountAndPercentLongest) {
    EXPECT_EQ(textOf("song.mp3", 39, 10), "1 of 10  song.mp3    4 %     0:33 left");
    EXPECT_EQ(textOf("song.mp3", 19, 10), "1 of 10    4 %");
    EXPECT_EQ(textOf("song.mp3", 19), "song.mp3   43 %");
}

TEST(ProgressText, TellsNoSpeedBeforeItCanBeMeasured) {
    RunProgress run({"x"});
    run.begin();
    run.show(0.25, 300.0);
    EXPECT_THAT(progressText(run, "x", 0.1, 79), EndsWith("   25 %" + std::string(21, ' ')));
    run.show(0.25, 0.0);
    EXPECT_THAT(progressText(run, "x", 5.0, 79), EndsWith("   25 %            0:15 left"));
    run.show(0.0, 300.0);
    EXPECT_THAT(progressText(run, "x", 5.0, 79), EndsWith("    0 %" + std::string(21, ' ')));
}

// From the first call to the last of a track of two hours at 1234 times its speed.
TEST(ProgressText, KeepsEveryFigureInItsColumns) {
    RunProgress run({"x"});
    run.begin();
    for (const double done : {0.0, 0.001, 0.05, 0.5, 0.999, 1.0}) {
        run.show(done, 7200.0);
        EXPECT_EQ(progressText(run, "x", 5.83 * done, 79).size(), 1U + 30U + 28U) << done;
    }
}

/** What goes to a standard error that is no terminal. */
std::string linesOf(const std::vector<std::string>& paths, ProgressLine::Manner manner) {
    testing::internal::CaptureStderr();
    {
        ProgressLine line(paths, manner, kBegin);
        for (const std::string& path : paths) {
            line.beginTrack(path);
            for (const auto moment : {1s, 29s, 40s, 69s, 71s})
                line.show(0.5, 300.0, kBegin + moment);
            line.endTrack(path != "music/bad");
        }
        line.tellOutcome();
    }
    return testing::internal::GetCapturedStderr();
}

// 150 s of music in 40 s: 4 times. In the middle of the work as much time is left as was needed.
TEST(ProgressLine, PrintsALineNowAndThenWhereNobodyWatches) {
    EXPECT_EQ(linesOf({"music/x"}, ProgressLine::Manner::watched),
              "beatatlas: music/x: 50 %, 4x, 0:40 left\n"
              "beatatlas: music/x: 50 %, 2x, 1:11 left\n");
    EXPECT_EQ(linesOf({"music/x"}, ProgressLine::Manner::lines),
              linesOf({"music/x"}, ProgressLine::Manner::watched));
    EXPECT_EQ(linesOf({"music/x"}, ProgressLine::Manner::quiet), "");
}

// A quarter after 40 s leaves 120 s, after 71 s 213 s.
TEST(ProgressLine, CountsDoneAndFailedOfSeveralTracksInTheEnd) {
    EXPECT_EQ(linesOf({"music/bad", "b"}, ProgressLine::Manner::watched),
              "beatatlas: music/bad: 1 of 2, 25 %, 4x, 2:00 left\n"
              "beatatlas: music/bad: 1 of 2, 25 %, 2x, 3:33 left\n"
              "beatatlas: 1 track done, 1 failed\n");
}

}  // namespace
}  // namespace app
