// SPDX-License-Identifier: MIT
#include "catalogue/fileExists.h"

#include <cerrno>

#include <sys/stat.h>

namespace catalogue {

bool fileExists(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) return true;
    return errno != ENOENT && errno != ENOTDIR;
}

}  // namespace catalogue
