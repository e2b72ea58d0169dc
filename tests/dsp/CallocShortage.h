// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/** Makes calloc fail. For a test program linked with --wrap=calloc; include it in one source file of it. */
namespace beatatlas::test {

/** Calls of calloc that are still granted; negative: all. */
inline int callocsGranted = -1;

/** While it lives, every calloc after the first `granted` gives null. */
class CallocFailsAfter {
public:
    explicit CallocFailsAfter(int granted) { callocsGranted = granted; }
    ~CallocFailsAfter() { callocsGranted = -1; }
    CallocFailsAfter(const CallocFailsAfter&) = delete;
    CallocFailsAfter& operator=(const CallocFailsAfter&) = delete;
};

}  // namespace beatatlas::test

extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);

void* __wrap_calloc(std::size_t count, std::size_t size) {
    using beatatlas::test::callocsGranted;
    if (callocsGranted == 0) return nullptr;
    if (callocsGranted > 0) --callocsGranted;
    return __real_calloc(count, size);
}
}
