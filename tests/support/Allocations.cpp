// SPDX-License-Identifier: MIT
#include "support/Allocations.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <new>

extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void __real_free(void* memory);
}

namespace {

using beatatlas::test::Requests;
using beatatlas::test::Shortage;

class Limit {
public:
    void set(long granted, Shortage shortage) {
        granted_ = granted;
        shortage_ = shortage;
        refusals_ = 0;
    }
    void lift() { granted_ = kAll; }
    long refusals() const { return refusals_; }

    bool refuses() {
        if (granted_ > 0)
            --granted_;
        else if (granted_ == 0) {
            ++refusals_;
            if (shortage_ == Shortage::once) lift();
            return true;
        }
        return false;
    }

private:
    static constexpr long kAll = -1;

    long granted_ = kAll;
    long refusals_ = 0;
    Shortage shortage_ = Shortage::lasting;
};

// Threads of the program under test allocate at the same time. Nothing allocates while holding
// this.
std::mutex mutex;

std::size_t news = 0;
long live = 0;
std::array<Limit, 3> limits;  // by Requests

// free() also receives blocks that the C library allocated itself; only blocks from this calloc are
// counted.
std::array<void*, 256> callocs{};

Limit& limitOf(Requests requests) {
    return limits[static_cast<std::size_t>(requests)];
}

bool isRefused(Requests kind) {
    const bool refused = limitOf(kind).refuses();
    return limitOf(Requests::both).refuses() || refused;
}

void* allocateOrNull(std::size_t size, std::size_t alignment) noexcept {
    const std::lock_guard lock(mutex);
    ++news;
    // An absurd size would overflow to zero when rounded up.
    if (isRefused(Requests::news) || size > SIZE_MAX - alignment) return nullptr;
    const std::size_t rounded =
        (std::max<std::size_t>(size, 1) + alignment - 1) / alignment * alignment;
    void* memory = std::aligned_alloc(alignment, rounded);
    if (memory != nullptr) ++live;
    return memory;
}

void* allocate(std::size_t size, std::size_t alignment) {
    if (void* memory = allocateOrNull(size, alignment)) return memory;
    throw std::bad_alloc();
}

void release(void* memory) noexcept {
    if (memory == nullptr) return;
    const std::lock_guard lock(mutex);
    --live;
    __real_free(memory);
}

constexpr std::size_t kUsual = alignof(std::max_align_t);

std::size_t number(std::align_val_t alignment) {
    return static_cast<std::size_t>(alignment);
}

}  // namespace

namespace beatatlas::test {

std::size_t allocationCount() {
    const std::lock_guard lock(mutex);
    return news;
}

long liveBlocks() {
    const std::lock_guard lock(mutex);
    return live;
}

RequestsFailAfter::RequestsFailAfter(long granted, Shortage shortage, Requests requests)
    : requests_(requests) {
    const std::lock_guard lock(mutex);
    limitOf(requests).set(granted, shortage);
}

RequestsFailAfter::~RequestsFailAfter() {
    const std::lock_guard lock(mutex);
    limitOf(requests_).lift();
}

long RequestsFailAfter::refusals() const {
    const std::lock_guard lock(mutex);
    return limitOf(requests_).refusals();
}

}  // namespace beatatlas::test

extern "C" {

void* __wrap_calloc(std::size_t count, std::size_t size) {
    const std::lock_guard lock(mutex);
    if (isRefused(Requests::callocs)) return nullptr;
    const auto slot = std::find(callocs.begin(), callocs.end(), nullptr);
    void* memory = __real_calloc(count, size);
    if (memory == nullptr || slot == callocs.end()) return memory;
    *slot = memory;
    ++live;
    return memory;
}

void __wrap_free(void* memory) {
    const std::lock_guard lock(mutex);
    const auto slot = std::find(callocs.begin(), callocs.end(), memory);
    if (memory != nullptr && slot != callocs.end()) {
        *slot = nullptr;
        --live;
    }
    __real_free(memory);
}
}

void* operator new(std::size_t size) {
    return allocate(size, kUsual);
}
void* operator new[](std::size_t size) {
    return allocate(size, kUsual);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocate(size, number(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return allocate(size, number(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size, kUsual);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size, kUsual);
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
    release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    release(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    release(memory);
}
