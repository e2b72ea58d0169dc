// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <cstdlib>

namespace beatatlas::fuzz {

/** Ends the process with a message if a promise of the interface is broken, which the fuzzer
 *  reports as a find. */
inline void require(bool kept, const char* promise) {
    if (kept) return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

}  // namespace beatatlas::fuzz
