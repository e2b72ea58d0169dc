// SPDX-License-Identifier: MIT
#include "scan/ScanProgress.h"

#include <algorithm>
#include <cstdio>

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "base/displayName.h"
#include "cli/messages.h"
#include "io/columns.h"
#include "io/terminal.h"
#include "output/textFormat.h"

namespace app {

namespace {

constexpr std::chrono::milliseconds kShowEvery{100};
constexpr std::chrono::seconds kEventEvery{1};
constexpr double kShortestMeasuredSeconds = 0.5;

using Event = nlohmann::ordered_json;

void tellProgram(ResultStream& results, const Event& event) {
    // Reasons may quote what a file says.
    results.write(event.dump(-1, ' ', false, Event::error_handler_t::replace) + "\n");
}

}  // namespace

ScanProgress::ScanProgress(Manner manner, bool isQuiet, ResultStream& results)
    : manner_(manner), isQuiet_(isQuiet), results_(results) {
    const bool isWatched = isatty(STDERR_FILENO) != 0 && !isQuiet;
    if (manner_ == Manner::watched && !isWatched) manner_ = Manner::none;
}

ScanProgress::~ScanProgress() {
    wipe();
}

void ScanProgress::showFound(std::int64_t files) {
    if (manner_ != Manner::watched || !isTime()) return;
    showLine("looking for files: " + output::grouped(files));
}

void ScanProgress::begin(const catalogue::Scan::Counts& counts) {
    toDo_ = counts.toDo;
    weightToDo_ = counts.weightToDo;
    tally_.known = counts.known;
    tally_.knownFailures = counts.knownFailures;
    begin_ = Clock::now();
    if (manner_ != Manner::json) return;
    const Event event = {{"event", "begin"},
                         {"found", counts.found},
                         {"known", counts.known},
                         {"knownFailures", counts.knownFailures},
                         {"toDo", counts.toDo}};
    tellProgram(results_, event);
}

bool ScanProgress::isTime() {
    const auto now = Clock::now();
    if (now < nextShow_) return false;
    nextShow_ = now;
    if (manner_ == Manner::json)
        nextShow_ += kEventEvery;
    else
        nextShow_ += kShowEvery;
    return true;
}

void ScanProgress::show(double weight, double seconds) {
    if (manner_ == Manner::none || !isTime()) return;
    if (manner_ == Manner::watched) return showLine(lineOf(weight, seconds));
    const double done = fraction(weight);
    const double time = elapsed();
    Event event = {{"event", "progress"},
                   {"done", tally_.done()},
                   {"toDo", toDo_},
                   {"failed", tally_.failed},
                   {"fraction", done},
                   {"audioHours", (tally_.audioSeconds + seconds) / ScanTally::kSecondsPerHour},
                   {"elapsedSeconds", time},
                   {"speed", time > 0.0 ? (tally_.audioSeconds + seconds) / time : 0.0}};
    if (done > 0.0) event["secondsLeft"] = time * (1.0 - done) / done;
    tellProgram(results_, event);
}

std::string ScanProgress::lineOf(double weight, double seconds) const {
    const double music = tally_.audioSeconds + seconds;
    const double done = fraction(weight);
    const double time = elapsed();
    std::string text = output::grouped(tally_.done()) + " of " + output::grouped(toDo_);
    text += fmt::format("  {:3d} %  {:.1f} h of music", static_cast<int>(done * 100.0),
                        music / ScanTally::kSecondsPerHour);
    if (time >= kShortestMeasuredSeconds) text += fmt::format("  {:.0f}x", music / time);
    if (time >= kShortestMeasuredSeconds && done > 0.0)
        text += "  " + output::clockTimeInSeconds(time * (1.0 - done) / done) + " left";
    if (tally_.failed > 0) text += "  " + output::grouped(tally_.failed) + " failed";
    return text;
}

/** Of all the work. Files of unknown kinds weigh nothing: where there are no others, they count. */
double ScanProgress::fraction(double weightInWork) const {
    const double files = static_cast<double>(tally_.done()) / std::max(1.0, double(toDo_));
    if (weightToDo_ <= 0.0) return files;
    return std::clamp((weightDone_ + weightInWork) / weightToDo_, 0.0, 1.0);
}

double ScanProgress::elapsed() const {
    return std::chrono::duration<double>(Clock::now() - begin_).count();
}

void ScanProgress::addAnalysed(double weight, double audioSeconds) {
    ++tally_.analysed;
    tally_.audioSeconds += audioSeconds;
    weightDone_ += weight;
}

void ScanProgress::addKnownSound(double weight, bool isMoved) {
    ++(isMoved ? tally_.moved : tally_.retagged);
    weightDone_ += weight;
}

void ScanProgress::addFailure(const std::string& path, double weight,
                              const catalogue::Failure& failure) {
    weightDone_ += weight;
    if (failure.kind == catalogue::FailureKind::notAudio) {
        ++tally_.notAudio;
        return;
    }
    ++tally_.failed;
    tellError(path, failure.reason);
    if (manner_ != Manner::json) return;
    const Event event = {{"event", "failure"},
                         {"path", base::displayName(path)},
                         {"kind", catalogue::failureName(failure.kind)},
                         {"reason", failure.reason}};
    tellProgram(results_, event);
}

void ScanProgress::tellError(const std::string& path, const std::string& text) {
    wipe();
    printFileError(path, text);
}

void ScanProgress::tellWarning(const std::string& path, const std::string& text) {
    wipe();
    printFileWarning(path, text);
}

void ScanProgress::tellNote(const std::string& path, const std::string& text) {
    wipe();
    printFileNote(path, text);
}

void ScanProgress::setGone(std::int64_t gone, std::int64_t pruned) {
    tally_.gone = gone;
    tally_.pruned = pruned;
}

void ScanProgress::tellEnd(bool isComplete) {
    wipe();
    std::string text = summaryOf(tally_);
    const std::int64_t left = toDo_ - tally_.done();
    if (left > 0) text += ", " + output::grouped(left) + " left for the next scan";
    if (!isQuiet_) printError(text);
    if (manner_ != Manner::json) return;
    const Event event = {{"event", "end"},
                         {"complete", isComplete},
                         {"analysed", tally_.analysed},
                         {"known", tally_.known},
                         {"knownFailures", tally_.knownFailures},
                         {"retagged", tally_.retagged},
                         {"moved", tally_.moved},
                         {"gone", tally_.gone},
                         {"pruned", tally_.pruned},
                         {"failed", tally_.failed},
                         {"notAudio", tally_.notAudio},
                         {"noFiles", tally_.noFiles},
                         {"left", left},
                         {"audioHours", tally_.audioSeconds / ScanTally::kSecondsPerHour},
                         {"elapsedSeconds", elapsed()}};
    tellProgram(results_, event);
}

void ScanProgress::showLine(const std::string& text) {
    // A terminal may wrap once its last column is written.
    writeOver(fitted(text, terminalColumns() - 1));
    isShown_ = true;
}

void ScanProgress::wipe() {
    if (isShown_) writeOver("");
    isShown_ = false;
    nextShow_ = std::min(nextShow_, Clock::now());
}

}  // namespace app
