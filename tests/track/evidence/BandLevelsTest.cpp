// SPDX-License-Identifier: MIT
#include "track/evidence/BandLevels.h"

#include <vector>

#include <gtest/gtest.h>

#include "support/signals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

BandLevels levelsOf(int rate, const std::vector<float>& samples, std::size_t block = 4096) {
    BandLevels levels(rate);
    for (std::size_t i = 0; i < samples.size(); i += block)
        levels.put(samples.data() + i,
                   static_cast<std::int64_t>(std::min(block, samples.size() - i)));
    levels.finish();
    return levels;
}

std::vector<LevelCode> codesOf(BandLevels levels) {
    const auto count = static_cast<std::size_t>(levels.frames()) * levels.bands();
    const auto chunk = levels.takeChunk();
    EXPECT_EQ(levels.takeChunk(), nullptr);
    return {chunk.get(), chunk.get() + count};
}

// One frame more than the whole hops: the first is centred on the first sample.
TEST(BandLevels, AreThereAHundredAndFiftyTimesASecond) {
    EXPECT_EQ(levelsOf(44100, silence(44100)).frames(), 151);
    EXPECT_EQ(levelsOf(48000, silence(48000)).frames(), 151);
    EXPECT_EQ(levelsOf(44100, silence(1)).frames(), 1);
    EXPECT_EQ(levelsOf(44100, silence(0)).frames(), 1);
    EXPECT_EQ(levelsOf(44100, silence(294 * 5000)).frames(), 5001);
}

// Bins of 43 Hz: 1 … 7 one by one, then a fifth of an octave each up to 15.5 kHz. Groups begin at
// bins 1, 4, 12, 46 and 116 or the next band behind.
TEST(BandLevels, CoverTheBandsOfFiveGroups) {
    const BandLevels levels(44100);
    EXPECT_EQ(levels.bands(), 35U);
    EXPECT_EQ(levels.groupStarts(), (std::array<std::size_t, 6>{0, 3, 10, 20, 27, 35}));
    EXPECT_EQ(BandLevels(48000).bands(), 34U);
}

// A sine of amplitude 1 in the middle of bin 100 (band of bins 97 … 110): half the sum of the
// window, 256, in its bin and half of that in the two beside it: √(256² + 2 · 128²) = 313.5, that
// is 8.292 octaves above 1.
TEST(BandLevels, TellTheLevelOfASine) {
    const double hz = 100.0 * 44100.0 / 1024.0;
    const std::vector<LevelCode> codes = codesOf(levelsOf(44100, sine(44100, hz, 44100, 1.0)));
    const std::vector<float> levels = levelsOfCodes();
    const LevelCode* frame = codes.data() + std::size_t{75} * 35;
    const auto loudest = std::max_element(frame, frame + 35) - frame;
    EXPECT_EQ(loudest, 25);
    EXPECT_NEAR(levels[frame[25]], 313.5F, 0.5F);
}

TEST(BandLevels, DoNotCareForTheSizeOfBlocks) {
    const std::vector<float> noise = whiteNoise(50000, 0.5, 11);
    const std::vector<LevelCode> expected = codesOf(levelsOf(44100, noise, noise.size()));
    for (const std::size_t block : {1U, 588U, 5000U})
        EXPECT_EQ(codesOf(levelsOf(44100, noise, block)), expected) << block;
}

// Noise in the last tenth and a little more of a silent track: nine tenths of the frames are
// silent, and the level that is passed by one in ten is not.
TEST(BandLevels, JudgeByTheLoudPassages) {
    const std::vector<float> levelOfCode = levelsOfCodes();
    EXPECT_EQ(levelsOf(44100, silence(441000)).loudLevel(levelOfCode), 0.0);
    std::vector<float> track = silence(441000);
    mixInto(track, whiteNoise(60000, 0.5, 11), 381000);
    EXPECT_GT(levelsOf(44100, track).loudLevel(levelOfCode), 1.0);
    std::vector<float> quieter = silence(441000);
    mixInto(quieter, whiteNoise(30000, 0.5, 11), 411000);
    EXPECT_EQ(levelsOf(44100, quieter).loudLevel(levelOfCode), 0.0);
}

}  // namespace
