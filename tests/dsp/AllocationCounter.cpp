// SPDX-License-Identifier: MIT
#include "dsp/AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace {

constexpr long kAll = -1;

std::size_t count = 0;
long stillGranted = kAll;

void* allocate(std::size_t size) {
    ++count;
    if (stillGranted == 0) throw std::bad_alloc();
    if (stillGranted > 0) --stillGranted;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}

}  // namespace

namespace beatatlas::test {

std::size_t allocationCount() {
    return count;
}

AllocationsFailAfter::AllocationsFailAfter(long granted) {
    stillGranted = granted;
}

AllocationsFailAfter::~AllocationsFailAfter() {
    stillGranted = kAll;
}

}  // namespace beatatlas::test

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
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
