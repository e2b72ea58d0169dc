// SPDX-License-Identifier: MIT
#include "media/PcmMemory.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include <gtest/gtest.h>

extern "C" {

/** An absurd request is to be refused under the address sanitizer too, not reported. */
const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
}

namespace {

using media::PcmMemory;

constexpr std::size_t kBlockBytes = std::size_t{2} << 20U;

TEST(PcmMemoryTest, PiecesOfAnyLengthKeepWhatIsWrittenToThem) {
    // Of every length about those of decoders' blocks, beyond a block and back, more than a block
    // in all.
    std::vector<std::size_t> lengths = {1, 63, 64, 65, kBlockBytes - 1, kBlockBytes + 1, 8192};
    for (std::size_t i = 0; i < 400; ++i) lengths.push_back(9216);
    PcmMemory memory;
    std::vector<std::shared_ptr<std::byte>> pieces;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        pieces.push_back(memory.take(lengths[i]));
        std::memset(pieces[i].get(), static_cast<int>(i % 251), lengths[i]);
    }
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        const std::byte* piece = pieces[i].get();
        EXPECT_TRUE(std::all_of(piece, piece + lengths[i],
                                [&](std::byte b) { return b == static_cast<std::byte>(i % 251); }))
            << "piece " << i;
    }
}

TEST(PcmMemoryTest, EveryPieceIsAlignedForTheWidestVector) {
    PcmMemory memory;
    for (const std::size_t bytes : {1U, 2U, 63U, 64U, 65U, 9216U})
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory.take(bytes).get()) % 64, 0U);
}

TEST(PcmMemoryTest, APieceOutlivesTheMemoryItWasCutFrom) {
    auto memory = std::make_unique<PcmMemory>();
    const std::shared_ptr<std::byte> piece = memory->take(100);
    memory.reset();
    std::memset(piece.get(), 7, 100);
    EXPECT_EQ(piece.get()[99], std::byte{7});
}

TEST(PcmMemoryTest, ABlockThatCannotBeHadLeavesTheMemoryAsItWas) {
    constexpr std::size_t kMoreThanThereIs = std::size_t{1} << 60U;
    PcmMemory memory;
    EXPECT_THROW(memory.take(kMoreThanThereIs), std::bad_alloc);
    const std::shared_ptr<std::byte> first = memory.take(100);
    ASSERT_NE(first, nullptr);
    EXPECT_THROW(memory.take(kMoreThanThereIs), std::bad_alloc);
    const std::shared_ptr<std::byte> large = memory.take(2 * kBlockBytes);
    std::memset(first.get(), 7, 100);
    std::memset(large.get(), 8, 2 * kBlockBytes);
    EXPECT_EQ(first.get()[99], std::byte{7});
}

}  // namespace
