// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace app {

/** One of the user's own folders: what the environment variable says, else `underHome` in the home
 *  folder, and empty where there is no home. A relative path in a variable counts as none, which
 *  is the rule for XDG's base folders. */
std::filesystem::path userFolder(const char* variable, const std::filesystem::path& underHome);

}  // namespace app
