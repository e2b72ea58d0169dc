// SPDX-License-Identifier: MIT
#include "media/PcmStore.h"

#include <bit>
#include <limits>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

namespace media {
namespace {

constexpr std::int64_t kAll = 1LL << 40;
constexpr std::size_t kBlock = 1000;

/** Frames whose samples show their index: 16-bit values, left and right different. */
StereoBlock blockFrom(std::size_t first, std::size_t frames = kBlock) {
    StereoBlock block;
    block.resize(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        block.left[i] = static_cast<float>((first + i) % 32768) / 32768.0F;
        block.right[i] = -static_cast<float>((first + i) % 32768 + 1) / 32768.0F;
    }
    return block;
}

/** Reads to the end in pieces of that size. */
StereoBlock readAll(PcmReader& reader, std::int64_t piece) {
    StereoBlock all;
    for (;;) {
        const std::size_t before = all.frames();
        all.resize(before + static_cast<std::size_t>(piece));
        const std::int64_t count =
            reader.read(all.left.data() + before, all.right.data() + before, piece);
        all.resize(before + static_cast<std::size_t>(count));
        if (count == 0) return all;
    }
}

void expectSameBits(const std::vector<float>& found, const std::vector<float>& put) {
    ASSERT_EQ(found.size(), put.size());
    for (std::size_t i = 0; i < put.size(); ++i)
        ASSERT_EQ(std::bit_cast<std::uint32_t>(found[i]), std::bit_cast<std::uint32_t>(put[i]))
            << i;
}

StereoBlock monoBlock(const std::vector<float>& samples) {
    return {samples, samples};
}

StereoBlock copyOf(const StereoBlock& block) {
    media::PcmMemory memory;
    const PcmChunk chunk(block, memory);
    StereoBlock copy;
    copy.resize(block.frames());
    chunk.copy(0, block.frames(), copy.left.data(), copy.right.data());
    return copy;
}

TEST(PcmChunk, KeepsEverySixteenBitValueInTwoBytes) {
    std::vector<float> all;
    for (int value = -32768; value <= 32767; ++value)
        all.push_back(static_cast<float>(value) / 32768.0F);
    const StereoBlock block = monoBlock(all);
    media::PcmMemory memory;
    const PcmChunk chunk(block, memory);
    EXPECT_TRUE(chunk.isInteger());
    EXPECT_EQ(chunk.bytes(), 65536U * 2 * 2);
    expectSameBits(copyOf(block).left, all);
}

// One of them at the very end of one side is enough.
TEST(PcmChunk, KeepsTheBitsOfWhatIsNoSixteenBitValue) {
    const float step = 1.0F / 32768.0F;
    for (const float odd :
         {1.0F, -1.0F - step, step / 2.0F, 0.3F, -0.0F, 1e-40F, 3e38F, -3e38F,
          std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN(), std::bit_cast<float>(0xFFC12345U)}) {
        StereoBlock block = blockFrom(0, 5000);
        block.right.back() = odd;
        media::PcmMemory memory;
        const PcmChunk chunk(block, memory);
        EXPECT_FALSE(chunk.isInteger()) << odd;
        EXPECT_EQ(chunk.bytes(), 5000U * 2 * 4);
        const StereoBlock copy = copyOf(block);
        expectSameBits(copy.left, block.left);
        expectSameBits(copy.right, block.right);
    }
}

TEST(PcmStore, GivesBackWhatWasPutInPiecesOfAnySize) {
    PcmStore store(kAll, PcmStore::WhenFull::grow);
    for (std::size_t at = 0; at < 5; ++at) store.append(blockFrom(at * kBlock));
    store.finish();
    EXPECT_EQ(store.frames(), 5000);
    for (const std::int64_t piece : {1, 7, 999, 1000, 1001, 20000}) {
        PcmReader reader(store);
        const StereoBlock all = readAll(reader, piece);
        expectSameBits(all.left, blockFrom(0, 5000).left);
        expectSameBits(all.right, blockFrom(0, 5000).right);
    }
}

TEST(PcmStore, LetsSeveralReadersFollowAWriter) {
    constexpr std::size_t kBlocks = 300;
    PcmStore store(kAll, PcmStore::WhenFull::wait);
    std::vector<StereoBlock> heard(3);
    std::vector<std::thread> readers;
    for (StereoBlock& own : heard)
        readers.emplace_back([&] {
            PcmReader reader(store);
            own = readAll(reader, 1 + static_cast<std::int64_t>(&own - heard.data()) * 700);
        });
    for (std::size_t at = 0; at < kBlocks; ++at) store.append(blockFrom(at * kBlock));
    store.finish();
    for (std::thread& reader : readers) reader.join();
    for (const StereoBlock& own : heard) EXPECT_EQ(own.left, blockFrom(0, kBlocks * kBlock).left);
    EXPECT_TRUE(store.isWhole());
}

// Two blocks of integers are 8,000 bytes.
TEST(PcmStore, BecomesAWindowAtItsLimitAndLosesNothingThatIsStillToBeRead) {
    PcmStore store(8000, PcmStore::WhenFull::wait);
    StereoBlock heard;
    {
        auto reader = std::make_unique<PcmReader>(store);
        std::thread writer([&] {
            for (std::size_t at = 0; at < 200; ++at) store.append(blockFrom(at * kBlock));
            store.finish();
        });
        heard = readAll(*reader, 300);
        writer.join();
    }
    EXPECT_EQ(heard.left, blockFrom(0, 200 * kBlock).left);
    EXPECT_FALSE(store.isWhole());
}

TEST(PcmStore, WaitsForTheSlowestReader) {
    PcmStore store(8000, PcmStore::WhenFull::wait);
    PcmReader slow(store);
    PcmReader quick(store);
    std::thread writer([&] {
        for (std::size_t at = 0; at < 20; ++at) store.append(blockFrom(at * kBlock));
        store.finish();
    });
    StereoBlock block;
    block.resize(kBlock);
    for (int i = 0; i < 2; ++i) quick.read(block.left.data(), block.right.data(), kBlock);
    StereoBlock rest;
    std::thread other([&] { rest = readAll(quick, kBlock); });
    EXPECT_EQ(readAll(slow, kBlock).left, blockFrom(0, 20 * kBlock).left);
    other.join();
    writer.join();
    EXPECT_EQ(rest.left, blockFrom(2 * kBlock, 18 * kBlock).left);
}

TEST(PcmStore, LetsTheWriterGoOnWhenItsLastReaderLeavesEarly) {
    PcmStore store(8000, PcmStore::WhenFull::wait);
    auto reader = std::make_unique<PcmReader>(store);
    std::thread writer([&] {
        for (std::size_t at = 0; at < 50; ++at) store.append(blockFrom(at * kBlock));
        store.finish();
    });
    StereoBlock block;
    block.resize(kBlock);
    reader->read(block.left.data(), block.right.data(), kBlock);
    reader.reset();
    writer.join();
    EXPECT_EQ(store.frames(), 50000);
    EXPECT_FALSE(store.isFull());
}

TEST(PcmStore, LetsAWaitingWriterGoWhenItIsAbandoned) {
    PcmStore store(1, PcmStore::WhenFull::wait);
    PcmReader reader(store);
    bool isWanted = true;
    std::thread writer([&] { isWanted = store.append(blockFrom(0)); });
    store.abandon();
    writer.join();
    EXPECT_FALSE(isWanted);
    EXPECT_FALSE(store.append(blockFrom(kBlock)));
}

TEST(PcmStore, GrowsBeyondItsLimitWhereNobodyCanWait) {
    PcmStore store(8000, PcmStore::WhenFull::grow);
    PcmReader reader(store);
    for (std::size_t at = 0; at < 10; ++at) EXPECT_TRUE(store.append(blockFrom(at * kBlock)));
    store.finish();
    EXPECT_TRUE(store.isFull());
    EXPECT_EQ(readAll(reader, kBlock).left, blockFrom(0, 10000).left);
    EXPECT_FALSE(store.isWhole());
    EXPECT_FALSE(store.isFull());
}

TEST(PcmStore, CountsWithoutKeepingWhereNobodyReads) {
    PcmStore store(8000, PcmStore::WhenFull::wait);
    for (std::size_t at = 0; at < 100; ++at) store.append(blockFrom(at * kBlock));
    store.finish();
    EXPECT_EQ(store.frames(), 100000);
    EXPECT_FALSE(store.isWhole());
}

TEST(PcmStore, ThrowsTheReasonOfAFailureBehindTheFramesBeforeIt) {
    PcmStore store(kAll, PcmStore::WhenFull::wait);
    store.append(blockFrom(0));
    store.fail(std::make_exception_ptr(std::runtime_error("torn")));
    for (int i = 0; i < 2; ++i) {
        PcmReader reader(store);
        StereoBlock block;
        block.resize(kBlock);
        EXPECT_EQ(reader.read(block.left.data(), block.right.data(), 5000), 1000);
        EXPECT_THROW(reader.read(block.left.data(), block.right.data(), 5000), std::runtime_error);
    }
    EXPECT_NO_THROW(store.awaitFirst());
    EXPECT_THROW(static_cast<void>(store.awaitEnd(0)), std::runtime_error);
}

TEST(PcmStore, WakesWhoWaitsForTheFirstFramesWhenThereAreNone) {
    PcmStore failing(kAll, PcmStore::WhenFull::wait);
    std::thread writer(
        [&] { failing.fail(std::make_exception_ptr(std::runtime_error("nothing"))); });
    EXPECT_THROW(failing.awaitFirst(), std::runtime_error);
    writer.join();
    PcmStore empty(kAll, PcmStore::WhenFull::wait);
    std::thread other([&] { empty.finish(); });
    EXPECT_NO_THROW(empty.awaitFirst());
    other.join();
}

}  // namespace
}  // namespace media
