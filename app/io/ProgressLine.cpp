// SPDX-License-Identifier: MIT
#include "io/ProgressLine.h"

#include <algorithm>
#include <cstdio>

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "base/displayName.h"

namespace app {

namespace {

constexpr std::chrono::milliseconds kShowEvery{100};
constexpr std::size_t kUsualColumns = 80;
constexpr std::string_view kWipeLine = "\r\x1B[K";

std::size_t terminalColumns() {
    struct winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualColumns;
    return size.ws_col;
}

/** The first characters of the text; a wrapped line could not be wiped. */
std::string shortened(std::string_view text, std::size_t columns) {
    std::string kept;
    for (std::size_t i = 0; i < columns && !text.empty(); ++i) {
        const std::size_t length = std::max<std::size_t>(1, base::utf8CharacterLength(text));
        kept += text.substr(0, length);
        text.remove_prefix(length);
    }
    return kept;
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

void ProgressLine::show(std::string_view stage, double fraction) {
    if (!active_) return;
    const auto now = std::chrono::steady_clock::now();
    if (now < nextShow_) return;
    nextShow_ = now + kShowEvery;
    shown_ = true;
    const int percent = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * 100.0);
    const std::string line = fmt::format("{:3d} %  {:<9}  {}", percent, stage, name_);
    print(std::string(kWipeLine) + shortened(line, terminalColumns() - 1));
}

void ProgressLine::print(const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

}  // namespace app
