// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "io/RunProgress.h"

namespace app {

/** Tells on standard error how far a command is with its tracks.
 *
 *  While a person watches it is one line that is written over again and wiped in the end; nothing
 *  in it moves while a track lasts. On a narrow terminal the bar goes first, then the speed, the
 *  time left and the name. Where standard error is no terminal, or other lines go between, it is a
 *  line of its own now and then. */
class ProgressLine {
public:
    using Clock = std::chrono::steady_clock;

    enum class Manner {
        quiet,    ///< nothing at all
        watched,  ///< the line on a terminal, else lines now and then
        lines,    ///< lines now and then
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

    /** Wipes the line, so that something else can be printed. */
    void endTrack(bool isDone);

    /** Where there were several tracks: how many are done and how many failed. */
    void tellOutcome();

private:
    void wipe();
    void showOver(double elapsedSeconds);
    void tell(double elapsedSeconds) const;

    RunProgress run_;
    Manner manner_;
    std::string path_;
    bool shown_ = false;
    Clock::time_point begin_;
    Clock::time_point nextShow_;
};

/** The line on a terminal: "12 of 300  song.mp3  [######......]   43 %    85x     0:12 left", the
 *  speed in times of real time. Every figure keeps its columns, which are blank while it is not
 *  known.
 *  @param name     as it is to be shown
 *  @param columns  that may be used */
std::string progressText(const RunProgress& run, const std::string& name, double elapsedSeconds,
                         std::size_t columns);

}  // namespace app
