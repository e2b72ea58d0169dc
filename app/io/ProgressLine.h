// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace app {

/** One line on standard error that tells how far a track is, while a person watches: nothing at all is printed when
 *  standard error is not a terminal. The line is wiped when the object goes. */
class ProgressLine {
public:
    /** @param wanted  false keeps silent even on a terminal */
    ProgressLine(std::string_view name, bool wanted);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /** @param fraction  of the whole work, 0 to 1; values outside are taken to the nearer end */
    void show(std::string_view stage, double fraction);

    /** Wipes the line, so that something else can be printed. */
    void clear();

private:
    void print(const std::string& line);

    std::string name_;
    bool active_;
    bool shown_ = false;
    std::chrono::steady_clock::time_point nextShow_{};
};

}  // namespace app
