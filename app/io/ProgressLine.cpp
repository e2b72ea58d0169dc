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
constexpr std::size_t kNarrowestBar = 8;
constexpr std::size_t kFewestNameColumns = 16;
constexpr std::size_t kFewestColumnsForSpeed = 50;
constexpr std::size_t kBarFrame = 4;              ///< two spaces and two brackets
constexpr double kShortestMeasuredSeconds = 0.5;  ///< before that, what is left is a guess
constexpr std::string_view kWipeLine = "\r\x1B[K";

std::size_t terminalColumns() {
    struct winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualColumns;
    return size.ws_col;
}

/** The first characters of the text, as many as surely fit: a wrapped line could not be wiped.
 *  Every character from U+0800 on, among them all those of double width, counts as two columns. */
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

ProgressLine::ProgressLine(std::string_view path, bool wanted)
    : name_(base::displayName(path.substr(path.rfind('/') + 1))),
      active_(wanted && isatty(STDERR_FILENO) == 1) {}

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
    const auto speed = room < kFewestColumnsForSpeed ? Speed::hidden : Speed::shown;
    const std::string figures = progressFigures(done, trackSeconds, elapsed, speed);
    // The name comes before the bar where there is no room for both.
    const std::size_t free = room - std::min(room, figures.size());
    const std::size_t barRoom = free - std::min(free, kFewestNameColumns + kBarFrame);
    const std::size_t barWidth = std::min({kWidestBar, room / 3, barRoom});
    const std::string drawn = barWidth < kNarrowestBar ? "" : "  " + bar(done, barWidth);
    const std::string name = shortened(name_, free - std::min(free, drawn.size()));
    print(std::string(kWipeLine) + shortened(name + drawn + figures, room));
}

void ProgressLine::print(const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

std::string progressFigures(double fraction, double trackSeconds, double elapsedSeconds,
                            Speed speed) {
    const bool isMeasured = elapsedSeconds >= kShortestMeasuredSeconds && fraction > 0.0;
    std::string times;
    std::string left;
    if (isMeasured && trackSeconds > 0.0)
        times = fmt::format("{:.0f}x", fraction * trackSeconds / elapsedSeconds);
    if (isMeasured)
        left = output::clockTimeInSeconds(elapsedSeconds * (1.0 - fraction) / fraction) + " left";
    std::string text = fmt::format("  {:3d} %", static_cast<int>(fraction * 100.0));
    if (speed == Speed::shown) text += fmt::format("  {:>5}", times);
    return text + fmt::format("  {:>12}", left);
}

}  // namespace app
