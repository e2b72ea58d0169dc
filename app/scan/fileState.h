// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <sys/stat.h>

#include "catalogue/Analysed.h"

namespace app {

/** By what the catalogue takes a file for unchanged. A time beyond the year 2262, which a file
 *  system may state, wraps around: it is compared, no more. */
inline catalogue::FileState fileStateOf(const struct stat& status) {
    constexpr std::uint64_t kNanoseconds = 1000000000;
    const std::uint64_t time = static_cast<std::uint64_t>(status.st_mtim.tv_sec) * kNanoseconds +
                               static_cast<std::uint64_t>(status.st_mtim.tv_nsec);
    return {status.st_size, static_cast<std::int64_t>(time)};
}

}  // namespace app
