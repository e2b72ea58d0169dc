// SPDX-License-Identifier: MIT
#include "io/ProgressLine.h"

#include <algorithm>
#include <cstdio>

#include <fmt/format.h>
#include <unistd.h>

#include "base/displayName.h"
#include "io/columns.h"
#include "io/terminal.h"
#include "output/textFormat.h"

namespace app {

namespace {

constexpr std::chrono::milliseconds kShowEvery{100};
// Without a terminal: often enough to show that work goes on.
constexpr std::chrono::seconds kPrintEvery{30};
constexpr std::size_t kWidestBar = 30;
constexpr std::size_t kNarrowestBar = 8;
constexpr std::size_t kFewestNameColumns = 16;  // beside a bar
constexpr std::size_t kShortestName = 8;        // shorter ones are useless
constexpr std::size_t kFewestColumnsForSpeed = 50;
constexpr std::size_t kBarFrame = 4;  // two spaces and two brackets

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
}

int percent(const RunProgress& run) {
    return static_cast<int>(run.fraction() * 100.0);
}

std::string speedText(const RunProgress& run, double elapsedSeconds) {
    const auto speed = run.speed(elapsedSeconds);
    return speed ? fmt::format("{:.0f}x", *speed) : "";
}

std::string leftText(const RunProgress& run, double elapsedSeconds) {
    const auto seconds = run.secondsLeft(elapsedSeconds);
    return seconds ? output::clockTimeInSeconds(*seconds) + " left" : "";
}

/** Percentage, speed and time left: as many of them as leave room for a name. */
std::string figures(const RunProgress& run, double elapsedSeconds, std::size_t columns) {
    std::string text = fmt::format("  {:3d} %", percent(run));
    if (columns + 1 >= kFewestColumnsForSpeed)
        text += fmt::format("  {:>5}", speedText(run, elapsedSeconds));
    const std::string left = fmt::format("  {:>12}", leftText(run, elapsedSeconds));
    return text.size() + left.size() + kShortestName > columns ? text : text + left;
}

std::string bar(double fraction, std::size_t width) {
    const auto filled = static_cast<std::size_t>(fraction * static_cast<double>(width));
    return fmt::format("  [{:#<{}}{:.<{}}]", "", filled, "", width - filled);
}

}  // namespace

std::string progressText(const RunProgress& run, const std::string& name, double elapsedSeconds,
                         std::size_t columns) {
    std::string before = run.count();
    const std::size_t counted = before.empty() ? 0 : before.size() + 2;
    const std::size_t room = columns - std::min(columns, counted);
    const std::string numbers = figures(run, elapsedSeconds, room);
    const std::size_t free = room - std::min(room, numbers.size());
    if (free >= kShortestName || before.empty()) {
        // The name takes precedence over the bar when there is no room for both.
        const std::size_t barRoom = free - std::min(free, kFewestNameColumns + kBarFrame);
        const std::size_t barWidth = std::min({kWidestBar, columns / 3, barRoom});
        const std::string drawn = barWidth < kNarrowestBar ? "" : bar(run.fraction(), barWidth);
        before += (before.empty() ? "" : "  ") + fitted(name, free - drawn.size()) + drawn;
    }
    return fitted(before + numbers, columns);
}

ProgressLine::ProgressLine(const std::vector<std::string>& paths, Manner manner,
                           Clock::time_point begin)
    : run_(paths), manner_(manner), begin_(begin), nextShow_(begin) {
    if (manner_ == Manner::watched && isatty(STDERR_FILENO) == 0) manner_ = Manner::lines;
    if (manner_ == Manner::lines) nextShow_ += kPrintEvery;
}

ProgressLine::~ProgressLine() {
    wipe();
}

void ProgressLine::beginTrack(const std::string& path) {
    path_ = path;
    run_.begin();
}

void ProgressLine::show(double fraction, double trackSeconds, Clock::time_point now) {
    run_.show(fraction, trackSeconds);
    if (manner_ == Manner::quiet || now < nextShow_) return;
    const double elapsed = std::chrono::duration<double>(now - begin_).count();
    if (manner_ == Manner::watched) {
        showOver(elapsed);
        nextShow_ = now + kShowEvery;
    } else {
        printProgress(elapsed);
        nextShow_ = now + kPrintEvery;
    }
}

void ProgressLine::showOver(double elapsedSeconds) {
    const std::string name = base::displayName(path_.substr(path_.rfind('/') + 1));
    // A terminal may wrap once its last column is written.
    writeOver(progressText(run_, name, elapsedSeconds, terminalColumns() - 1));
    shown_ = true;
}

void ProgressLine::printProgress(double elapsedSeconds) const {
    std::string text = base::displayName(path_) + ": ";
    if (run_.tracks() > 1) text += run_.count() + ", ";
    text += fmt::format("{} %", percent(run_));
    for (const std::string& figure :
         {speedText(run_, elapsedSeconds), leftText(run_, elapsedSeconds)})
        text += figure.empty() ? "" : ", " + figure;
    print("beatatlas: " + text + "\n");
}

void ProgressLine::wipe() {
    if (shown_) writeOver("");
    shown_ = false;
}

void ProgressLine::endTrack(bool isDone) {
    run_.end(isDone);
    if (shown_) nextShow_ = {};
    wipe();
}

void ProgressLine::tellOutcome() {
    wipe();
    if (manner_ == Manner::quiet || run_.tracks() < 2) return;
    print("beatatlas: " + run_.outcome() + "\n");
}

}  // namespace app
