// SPDX-License-Identifier: MIT
#include "io/terminal.h"

#include <cstdio>
#include <string>

#include <sys/ioctl.h>
#include <unistd.h>

namespace app {

namespace {

constexpr std::size_t kUsualColumns = 80;
constexpr std::string_view kWipeLine = "\r\x1B[K";

}  // namespace

std::size_t terminalColumns() {
    struct winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualColumns;
    return size.ws_col;
}

void writeOver(std::string_view text) {
    const std::string line = std::string(kWipeLine) + std::string(text);
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

}  // namespace app
