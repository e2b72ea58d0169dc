// SPDX-License-Identifier: MIT
#include "io/RunProgress.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <numeric>
#include <system_error>

#include "output/textFormat.h"

namespace app {

namespace {

constexpr double kShortestMeasuredSeconds = 0.5;
constexpr double kLongestShownSeconds =
    1000.0 * 3600.0;  // at the very beginning the estimate may be huge

/** At least 1: a file that cannot be read counts too. */
double weightOf(const std::string& path) {
    std::error_code failure;
    const std::uintmax_t bytes = std::filesystem::file_size(path, failure);
    return failure ? 1.0 : std::max(1.0, static_cast<double>(bytes));
}

std::string countOf(std::size_t number) {
    return output::grouped(static_cast<std::int64_t>(number));
}

}  // namespace

RunProgress::RunProgress(const std::vector<std::string>& paths) {
    std::transform(paths.begin(), paths.end(), std::back_inserter(weights_), weightOf);
    all_ = std::accumulate(weights_.begin(), weights_.end(), 0.0);
}

void RunProgress::begin() {
    ++begun_;
    current_ = 0.0;
    trackSeconds_ = 0.0;
}

void RunProgress::show(double fraction, double trackSeconds) {
    current_ = fraction > 0.0 ? std::min(fraction, 1.0) : 0.0;
    trackSeconds_ = trackSeconds;
}

void RunProgress::end(bool isDone) {
    const double weight = weights_[begun_ - 1];
    const double share = isDone ? 1.0 : current_;
    all_ -= weight * (1.0 - share);
    before_ += weight * share;
    secondsBefore_ += trackSeconds_ * share;
    current_ = 0.0;
    trackSeconds_ = 0.0;
    ++(isDone ? done_ : failed_);
}

double RunProgress::fraction() const {
    const double current = done_ + failed_ < begun_ ? current_ * weights_[begun_ - 1] : 0.0;
    return all_ > 0.0 ? std::min(1.0, (before_ + current) / all_) : 0.0;
}

std::optional<double> RunProgress::speed(double elapsedSeconds) const {
    const double seconds = secondsBefore_ + current_ * trackSeconds_;
    if (elapsedSeconds < kShortestMeasuredSeconds || seconds <= 0.0) return std::nullopt;
    return seconds / elapsedSeconds;
}

std::optional<double> RunProgress::secondsLeft(double elapsedSeconds) const {
    const double done = fraction();
    if (elapsedSeconds < kShortestMeasuredSeconds || done <= 0.0) return std::nullopt;
    const double left = elapsedSeconds * (1.0 - done) / done;
    return left <= kLongestShownSeconds ? std::optional(left) : std::nullopt;
}

std::string RunProgress::count() const {
    if (tracks() < 2) return {};
    return countOf(begun_) + " of " + countOf(tracks());
}

std::string RunProgress::outcome() const {
    std::string text = output::counted(static_cast<std::int64_t>(done_), "track") + " done";
    if (failed_ > 0) text += ", " + countOf(failed_) + " failed";
    const std::size_t leftOut = tracks() - done_ - failed_;
    if (leftOut > 0) text += ", " + countOf(leftOut) + " left out";
    return text;
}

}  // namespace app
