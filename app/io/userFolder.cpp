// SPDX-License-Identifier: MIT
#include "io/userFolder.h"

#include <cstdlib>

namespace app {

namespace fs = std::filesystem;

namespace {

fs::path absoluteIn(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && fs::path(value).is_absolute() ? fs::path(value) : fs::path();
}

}  // namespace

fs::path userFolder(const char* variable, const fs::path& underHome) {
    const fs::path own = absoluteIn(variable);
    if (!own.empty()) return own;
    const fs::path home = absoluteIn("HOME");
    return home.empty() ? fs::path() : home / underHome;
}

}  // namespace app
