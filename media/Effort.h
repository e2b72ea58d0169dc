// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace media {

/** How much of the machine the work on one file may take. Results never depend on it. */
struct Effort {
    std::int64_t memoryBytes = std::int64_t{1} << 30;  ///< of the whole process, about
    int threads = 1;                                   ///< from 1; of several, one decodes
};

}  // namespace media
