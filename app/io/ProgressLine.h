// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace app {

/** One line on standard error that tells how far a track is, while a person watches: nothing at all
 *  is printed when standard error is not a terminal. The line is wiped when the object goes.
 *
 *  Nothing in it moves while it lives. On a narrow terminal the bar goes first, then the speed,
 *  then the name. */
class ProgressLine {
public:
    /** @param path    of the file, whose name is shown
     *  @param wanted  false keeps silent even on a terminal */
    ProgressLine(std::string_view path, bool wanted);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /** @param fraction      of the whole work, 0 to 1; values outside are taken to the nearer end
     *  @param trackSeconds  length of the track; 0 while that is not known, then no speed is
     *                       told */
    void show(double fraction, double trackSeconds);

    /** Wipes the line, so that something else can be printed. */
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    void print(const std::string& line);

    std::string name_;
    bool active_;
    bool shown_ = false;
    Clock::time_point begin_ = Clock::now();
    Clock::time_point nextShow_{};
};

enum class Speed { shown, hidden };

/** What follows the bar: "   43 %    85x     0:12 left", the speed in times of real time. Every
 *  figure keeps its columns, which are blank while it is not known: before half a second speed and
 *  time, and the speed of a track of unknown length. */
std::string progressFigures(double fraction, double trackSeconds, double elapsedSeconds,
                            Speed speed);

}  // namespace app
