// SPDX-License-Identifier: MIT
#include "cli/bracketGuard.h"

namespace app {

namespace {

constexpr char kMark = '\x01';

}  // namespace

std::string guarded(const std::string& argument) {
    // A name that begins with the mark itself gets another one, so that exactly one is removed
    // again.
    const bool needsMark =
        !argument.empty() && (argument.front() == '[' || argument.front() == kMark);
    return needsMark ? kMark + argument : argument;
}

std::string guardedName(const std::string& argument) {
    return kMark + argument;
}

std::string unguarded(const std::string& argument) {
    return !argument.empty() && argument.front() == kMark ? argument.substr(1) : argument;
}

}  // namespace app
