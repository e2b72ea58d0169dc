// SPDX-License-Identifier: MIT
#include "media/PcmMemory.h"

#include <cstdlib>
#include <new>

#include <sys/mman.h>

namespace media {

namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20U;
constexpr std::size_t kVector = 64;

std::size_t roundUp(std::size_t bytes, std::size_t unit) {
    return (bytes + unit - 1) / unit * unit;
}

std::shared_ptr<std::byte> makeBlock(std::size_t bytes) {
    void* block = std::aligned_alloc(kHugePage, bytes);
    if (block == nullptr) throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
    madvise(block, bytes, MADV_HUGEPAGE);  // only a hint: the block is usable without huge pages
#endif
    return {static_cast<std::byte*>(block), [](std::byte* memory) { std::free(memory); }};
}

}  // namespace

std::shared_ptr<std::byte> PcmMemory::take(std::size_t bytes) {
    const std::size_t room = roundUp(bytes, kVector);
    if (used_ + room > size_) {
        const std::size_t size = roundUp(room, kHugePage);
        block_ = makeBlock(size);
        size_ = size;
        used_ = 0;
    }
    std::shared_ptr<std::byte> piece(block_, block_.get() + used_);
    used_ += room;
    return piece;
}

}  // namespace media
