// SPDX-License-Identifier: MIT
#include "io/ProgressLine.h"

#include <algorithm>
#include <cstdio>

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "base/displayName.h"
#include "output/textFormat.h"

namespace app {

namespace {

constexpr std::chrono::milliseconds kShowEvery{100};
constexpr std::size_t kUsualColumns = 80;
constexpr std::size_t kWidestBar = 30;
constexpr double kShortestMeasuredSeconds = 0.5;  ///< before that, what is left is a guess
constexpr std::string_view kWipeLine = "\r\x1B[K";

std::size_t terminalColumns() {
    struct winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualColumns;
    return size.ws_col;
}

/** The first characters of the text, as many as surely fit: a wrapped line could not be wiped. Every character from
 *  U+0800 on, among them all those of double width, counts as two columns. */
std::string shortened(std::string_view text, std::size_t columns) {
    std::string kept;
    while (!text.empty()) {
        const std::size_t length = std::max<std::size_t>(1, base::utf8CharacterLength(text));
        const std::size_t width = length > 2 ? 2 : 1;
        if (width > columns) break;
        columns -= width;
        kept += text.substr(0, length);
        text.remove_prefix(length);
    }
    return kept;
}

std::string bar(double fraction, std::size_t width) {
    const auto filled = static_cast<std::size_t>(fraction * static_cast<double>(width));
    return fmt::format("[{:#<{}}{:.<{}}]", "", filled, "", width - filled);
}

}  // namespace

ProgressLine::ProgressLine(std::string_view name, bool wanted)
    : name_(base::displayName(name)), active_(wanted && isatty(STDERR_FILENO) == 1) {}

ProgressLine::~ProgressLine() {
    clear();
}

void ProgressLine::clear() {
    if (shown_) print(std::string(kWipeLine));
    shown_ = false;
}

void ProgressLine::show(double fraction, double trackSeconds) {
    if (!active_) return;
    const auto now = Clock::now();
    if (now < nextShow_) return;
    nextShow_ = now + kShowEvery;
    shown_ = true;
    const double done = std::clamp(fraction, 0.0, 1.0);
    const std::size_t room = terminalColumns() - 1;
    const double elapsed = std::chrono::duration<double>(now - begin_).count();
    const std::string tail = progressFigures(done, trackSeconds, elapsed);
    // A third for the bar, what is left for the name; a terminal too narrow for both has neither.
    const std::size_t barWidth = std::min(kWidestBar, room / 3);
    const std::size_t taken = barWidth + 2 + 2 + tail.size();
    const std::string head =
        taken < room ? shortened(name_, room - taken) + "  " + bar(done, barWidth) : "";
    print(std::string(kWipeLine) + shortened(head + tail, room));
}

void ProgressLine::print(const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

std::string progressFigures(double fraction, double trackSeconds, double elapsedSeconds) {
    std::string text = fmt::format(" {:3d} %", static_cast<int>(fraction * 100.0));
    if (elapsedSeconds < kShortestMeasuredSeconds || fraction <= 0.0) return text;
    if (trackSeconds > 0.0)
        text += fmt::format("  {:.0f}x", fraction * trackSeconds / elapsedSeconds);
    const double left = elapsedSeconds * (1.0 - fraction) / fraction;
    return text + "  " + output::clockTimeInSeconds(left) + " left";
}

}  // namespace app
