// SPDX-License-Identifier: MIT
#include "envelope/ChunkCollector.h"

#include <algorithm>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using ChunkCollectorTest = RoundTowardZero;

struct Chunk {
    double first;
    std::size_t index;
    bool operator==(const Chunk&) const = default;
};

using Signal = std::vector<double>;

/** Every value says where it stands. */
Signal countingFrames(int frames) {
    Signal signal;
    for (int i = 0; i < frames; ++i) signal.push_back(i);
    return signal;
}

std::vector<Chunk> collect(ChunkCollector& chunks, const Signal& signal, int blockFrames) {
    std::vector<Chunk> found;
    const int frames = static_cast<int>(signal.size());
    for (int at = 0; at < frames; at += blockFrames)
        chunks.putSample(signal.data() + at, std::min(blockFrames, frames - at),
                         [&](double first, std::size_t index) {
                             found.push_back({first, index});
                         });
    return found;
}

std::vector<Chunk> collect(const Signal& signal, int length, int blockFrames) {
    ChunkCollector chunks;
    chunks.create(length);
    return collect(chunks, signal, blockFrames);
}

TEST_F(ChunkCollectorTest, AChunkOf128FramesIsKnownByItsFirstValue) {
    const std::vector<Chunk> expected = {{0.0, 0}, {128.0, 1}, {256.0, 2}};
    EXPECT_EQ(collect(countingFrames(384), 384, 384), expected);
}

// 300 frames: two full chunks and one of 44.
TEST_F(ChunkCollectorTest, ClosesTheLastChunkShortAtTheDeclaredLength) {
    const std::vector<Chunk> expected = {{0.0, 0}, {128.0, 1}, {256.0, 2}};
    EXPECT_EQ(collect(countingFrames(300), 300, 300), expected);
    EXPECT_EQ(ChunkCollector::valueCount(300), 3U);
}

TEST_F(ChunkCollectorTest, HoldsAPartialChunkBackBeforeTheDeclaredLength) {
    EXPECT_EQ(collect(countingFrames(300), 301, 300).size(), 2U);
}

TEST_F(ChunkCollectorTest, IgnoresEverythingAfterTheDeclaredLength) {
    ChunkCollector chunks;
    chunks.create(256);
    EXPECT_EQ(collect(chunks, countingFrames(1000), 100).size(), 2U);
    EXPECT_TRUE(collect(chunks, countingFrames(1000), 100).empty());
    EXPECT_EQ(collect(countingFrames(1000), 300, 1000).size(), 3U);
}

TEST_F(ChunkCollectorTest, RewindStartsAtTheFirstChunkAgain) {
    ChunkCollector chunks;
    chunks.create(1000);
    const Signal signal = countingFrames(1000);
    const std::vector<Chunk> first = collect(chunks, signal, 333);
    chunks.rewind();
    EXPECT_EQ(collect(chunks, signal, 333), first);
}

TEST_F(ChunkCollectorTest, BlocksOfAnySizeGiveTheSameChunks) {
    const Signal signal = countingFrames(9000);
    const std::vector<Chunk> whole = collect(signal, 9000, 9000);
    EXPECT_EQ(whole.size(), 71U);  // 9000 / 128 = 70.3
    for (const int block : {1, 2, 3, 127, 128, 129, 587, 588, 589, 640, 4096}) {
        EXPECT_EQ(collect(signal, 9000, block), whole) << "blocks of " << block;
    }
}

TEST_F(ChunkCollectorTest, TakesNothingOfBadBlocksAndLengths) {
    ChunkCollector chunks;
    chunks.create(1000);
    const auto fail = [](double, std::size_t) { ADD_FAILURE(); };
    const Signal signal = countingFrames(500);
    chunks.putSample(nullptr, 500, fail);
    chunks.putSample(signal.data(), 0, fail);
    chunks.putSample(signal.data(), -500, fail);
    for (const int length : {0, -1, std::numeric_limits<int>::min()}) {
        chunks.create(length);
        chunks.putSample(signal.data(), 500, fail);
        EXPECT_EQ(ChunkCollector::valueCount(length), 0U);
    }
}

// (2^31 − 1 + 127) / 128 = 2^24 + 0.98.
TEST_F(ChunkCollectorTest, CountsTheValuesOfTheLongestTrack) {
    EXPECT_EQ(ChunkCollector::valueCount(std::numeric_limits<int>::max()), 16777216U);
}

}  // namespace
}  // namespace beatatlas::test
