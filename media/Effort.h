// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace media {

/** How much memory and how many threads the work on one file may use. Results never depend on
 *  it. */
struct Effort {
    /** Of the whole process, approximately. */
    std::int64_t memoryBytes = std::int64_t{1} << 30;
    /** At least 1; if several, one of them decodes. */
    int threads = 1;
};

}  // namespace media
