// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "io/RunProgress.h"

namespace app {

/** Shows on standard error how far a command is with its tracks.
 *
 *  On a terminal it is one line that is overwritten and erased at the end; its fields keep their
 *  positions during a track. On a narrow terminal the bar is omitted first, then the speed, the
 *  time left and the name. If standard error is not a terminal, or other lines are printed too, it
 *  is a separate line now and then. */
class ProgressLine {
public:
    using Clock = std::chrono::steady_clock;

    enum class Manner {
        /** Nothing at all. */
        quiet,
        /** The line on a terminal, otherwise lines now and then. */
        watched,
        /** Lines now and then. */
        lines,
    };

    /** @param paths  of all the tracks, in their order */
    ProgressLine(const std::vector<std::string>& paths, Manner manner,
                 Clock::time_point begin = Clock::now());
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void beginTrack(const std::string& path);

    /** As RunProgress::show(). */
    void show(double fraction, double trackSeconds, Clock::time_point now = Clock::now());

    /** Erases the line, so that something else can be printed. */
    void endTrack(bool isDone);

    /** If there were several tracks: how many are done and how many failed. */
    void tellOutcome();

private:
    void wipe();
    void showOver(double elapsedSeconds);
    void printProgress(double elapsedSeconds) const;

    RunProgress run_;
    Manner manner_;
    std::string path_;
    bool shown_ = false;
    Clock::time_point begin_;
    Clock::time_point nextShow_;
};

/** The line on a terminal: "12 of 300  song.mp3  [######......]   43 %    85x     0:12 left", the
 *  speed as a multiple of real time. Every figure keeps its columns, which are blank while it is
 *  unknown.
 *  @param name     of the file, ready for display
 *  @param columns  available on the terminal */
std::string progressText(const RunProgress& run, const std::string& name, double elapsedSeconds,
                         std::size_t columns);

}  // namespace app
