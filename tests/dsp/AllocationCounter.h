// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

/** Replaces this test program's operator new by one that counts. Include it in one source file per program. */
namespace beatatlas::test {

inline std::size_t allocationCount = 0;

inline void* countedAllocation(std::size_t size) {
    ++allocationCount;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}

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
