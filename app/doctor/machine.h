// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace app {

/** @name What this process runs on
 *  @{ */

/** The processor's name as the system states it; empty where it does not. */
std::string processorName();

/** The widest instructions in which the library computes here: "AVX-512", "AVX2" or "baseline". */
std::string vectorFormText();

/** Bytes. Of all memory, and of what a program may take without driving others out. */
struct Memory {
    std::int64_t all = 0;
    std::int64_t available = 0;
};
Memory memory();
/** @} */

}  // namespace app
