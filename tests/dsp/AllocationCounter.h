// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

/** Replaces this test program's operator new by one that counts and can be made to fail. Include it in one source
 *  file per program. */
namespace beatatlas::test {

inline std::size_t allocationCount = 0;

/** Allocations that are still granted; negative: all. */
inline long allocationsGranted = -1;

inline void* countedAllocation(std::size_t size) {
    ++allocationCount;
    if (allocationsGranted == 0) throw std::bad_alloc();
    if (allocationsGranted > 0) --allocationsGranted;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}

/** While it lives, every allocation after the first `granted` fails. */
class AllocationsFailAfter {
public:
    explicit AllocationsFailAfter(long granted) { allocationsGranted = granted; }
    ~AllocationsFailAfter() { allocationsGranted = -1; }
    AllocationsFailAfter(const AllocationsFailAfter&) = delete;
    AllocationsFailAfter& operator=(const AllocationsFailAfter&) = delete;
};

}  // namespace beatatlas::test

void* operator new(std::size_t size) {
    return beatatlas::test::countedAllocation(size);
}
void* operator new[](std::size_t size) {
    return beatatlas::test::countedAllocation(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
