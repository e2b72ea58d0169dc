// SPDX-License-Identifier: MIT
#include "cli/messages.h"

#include <cstdio>

#include <fmt/format.h>

#include "base/displayName.h"

namespace app {

void printError(const std::string& text) {
    const std::string line = fmt::format("beatatlas: {}\n", text);
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void printFileError(const std::string& path, const std::string& reason) {
    printError(base::displayName(path) + ": " + reason);
}

void printFileWarning(const std::string& path, const std::string& text) {
    printError(base::displayName(path) + ": warning: " + text);
}

void printFileNote(const std::string& path, const std::string& text) {
    printError(base::displayName(path) + ": note: " + text);
}

}  // namespace app
