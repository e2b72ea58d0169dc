// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <sys/stat.h>

#include "catalogue/Analysed.h"

namespace app {

/** By what the catalogue takes a file for unchanged. */
inline catalogue::FileState fileStateOf(const struct stat& status) {
    constexpr std::int64_t kNanoseconds = 1000000000;
    return {status.st_size, status.st_mtim.tv_sec * kNanoseconds + status.st_mtim.tv_nsec};
}

}  // namespace app
