// SPDX-License-Identifier: MIT
#include "envelope/ChunkCollector.h"

#include <algorithm>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/lanes/sampleLanes.h"
#include "envelope/kickTrack.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using ChunkCollectorTest = RoundTowardZero;

struct Chunk {
    std::vector<double> mono;
    std::size_t index;
    bool operator==(const Chunk&) const = default;
};

std::vector<Chunk> collect(ChunkCollector& chunks, const Stereo& audio, int blockFrames) {
    std::vector<Chunk> found;
    for (int at = 0; at < framesOf(audio); at += blockFrames) {
        chunks.putSample(audio.data() + 2 * static_cast<std::size_t>(at),
                         std::min(blockFrames, framesOf(audio) - at),
                         [&](const double* mono, int frames, std::size_t index) {
                             found.push_back({{mono, mono + frames}, index});
                         });
    }
    return found;
}

std::vector<Chunk> collect(const Stereo& audio, int length, int blockFrames) {
    ChunkCollector chunks;
    chunks.create(length);
    return collect(chunks, audio, blockFrames);
}

TEST_F(ChunkCollectorTest, MonoIsHalfTheSumOfTheChannels) {
    Stereo audio(2 * 128);
    audio[0] = 3;
    audio[1] = 4;
    audio[2] = -32768;
    audio[3] = -32768;
    const std::vector<Chunk> found = collect(audio, 128, 128);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].mono[0], 3.5);
    EXPECT_EQ(found[0].mono[1], -32768.0);
}

// 300 frames: two full chunks and one of 44.
TEST_F(ChunkCollectorTest, ClosesTheLastChunkShortAtTheDeclaredLength) {
    const std::vector<Chunk> found = collect(stereoNoise(300), 300, 300);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[1].mono.size(), 128U);
    EXPECT_EQ(found[2].mono.size(), 44U);
    EXPECT_EQ(found[2].index, 2U);
    EXPECT_EQ(ChunkCollector::valueCount(300), 3U);
}

TEST_F(ChunkCollectorTest, HoldsAPartialChunkBackBeforeTheDeclaredLength) {
    EXPECT_EQ(collect(stereoNoise(300), 301, 300).size(), 2U);
}

TEST_F(ChunkCollectorTest, LastChunkTakesWhatTheCompletingBlockHoldsForIt) {
    const std::vector<Chunk> found = collect(stereoNoise(1000), 300, 1000);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[2].mono.size(), 128U);
}

TEST_F(ChunkCollectorTest, IgnoresEverythingAfterTheDeclaredLength) {
    ChunkCollector chunks;
    chunks.create(256);
    EXPECT_EQ(collect(chunks, stereoNoise(1000), 100).size(), 2U);
    EXPECT_TRUE(collect(chunks, stereoNoise(1000), 100).empty());
}

TEST_F(ChunkCollectorTest, RewindStartsAtTheFirstChunkAgain) {
    ChunkCollector chunks;
    chunks.create(1000);
    const Stereo audio = stereoNoise(1000);
    const std::vector<Chunk> first = collect(chunks, audio, 333);
    chunks.rewind();
    EXPECT_EQ(collect(chunks, audio, 333), first);
}

TEST_F(ChunkCollectorTest, BlocksOfAnySizeGiveTheSameChunks) {
    const Stereo audio = stereoNoise(9000);
    const std::vector<Chunk> whole = collect(audio, 9000, 9000);
    EXPECT_EQ(whole.size(), 71U);  // 9000 / 128 = 70.3
    for (const int block : {1, 2, 3, 127, 128, 129, 587, 588, 589, 640, 4096}) {
        EXPECT_EQ(collect(audio, 9000, block), whole) << "blocks of " << block;
    }
}

TEST_F(ChunkCollectorTest, TakesNothingOfBadBlocksAndLengths) {
    ChunkCollector chunks;
    chunks.create(1000);
    const auto fail = [](const double*, int, std::size_t) { ADD_FAILURE(); };
    const Stereo audio = stereoNoise(500);
    chunks.putSample(nullptr, 500, fail);
    chunks.putSample(audio.data(), 0, fail);
    chunks.putSample(audio.data(), -500, fail);
    for (const int length : {0, -1, std::numeric_limits<int>::min()}) {
        chunks.create(length);
        chunks.putSample(audio.data(), 500, fail);
        EXPECT_EQ(ChunkCollector::valueCount(length), 0U);
    }
}

// (2^31 − 1 + 127) / 128 = 2^24 + 0.98.
TEST_F(ChunkCollectorTest, CountsTheValuesOfTheLongestTrack) {
    EXPECT_EQ(ChunkCollector::valueCount(std::numeric_limits<int>::max()), 16777216U);
}

TEST_F(ChunkCollectorTest, FilteredValuesCloseTheSameChunksByTheirFirstValue) {
    const Stereo audio = stereoNoise(1000);
    std::vector<double> mono;
    for (std::size_t i = 0; i < 1000; ++i) mono.push_back(monoOfFrame(audio.data() + 2 * i));
    for (const int length : {700, 768, 1000}) {
        const std::vector<Chunk> expected = collect(audio, length, 1000);
        for (const int block : {1, 127, 128, 129, 588, 1000}) {
            ChunkCollector chunks;
            chunks.create(length);
            std::size_t count = 0;
            for (int at = 0; at < 1000; at += block)
                chunks.putFiltered(mono.data() + at, std::min(block, 1000 - at),
                                   [&](double first, std::size_t index) {
                                       ASSERT_LT(count, expected.size());
                                       EXPECT_EQ(index, expected[count].index);
                                       EXPECT_EQ(first, expected[count].mono[0]);
                                       ++count;
                                   });
            EXPECT_EQ(count, expected.size()) << length << ", " << block;
        }
    }
    ChunkCollector chunks;
    chunks.create(1000);
    chunks.putFiltered(nullptr, 10, [](double, std::size_t) { FAIL(); });
}

}  // namespace
}  // namespace beatatlas::test
