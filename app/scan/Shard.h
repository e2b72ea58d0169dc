// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace app {

/** One of several equal shares of all files, by their absolute names alone: the same file is in the
 *  same share on every machine that sees it under that name, whatever else is there. */
struct Shard {
    std::uint64_t number = 1;  ///< from 1
    std::uint64_t count = 1;

    bool has(const std::string& path) const;
};

}  // namespace app
