// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace app {

/** A file's name from the root on, as the catalogue has it: without ".", doubled slashes and "..",
 *  which is followed as the system does. Other links stay: a track keeps the name it is reached by,
 *  wherever a disk is mounted. The file need not exist. */
std::string absolutePath(const std::string& path);

}  // namespace app
