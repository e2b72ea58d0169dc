// SPDX-License-Identifier: MIT
#include "key/TransientSuppressor.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

using beatatlas::TransientSuppressor;

using Frames = std::vector<std::int16_t>;

/** Count frames of one level in both channels. */
Frames steady(std::size_t count, std::int16_t level) {
    return Frames(2 * count, level);
}

void setFrame(Frames& frames, std::size_t at, std::int16_t left, std::int16_t right) {
    frames[2 * at] = left;
    frames[2 * at + 1] = right;
}

// At 700 frames per second the windows are 7 and 28 frames: the gain moves by exactly 1/8 and 1/32.
class TransientSuppressorTest : public beatatlas::test::RoundTowardZero {
protected:
    void SetUp() override {
        RoundTowardZero::SetUp();
        suppressor.create(700);
        suppressor.setLevels(0.0, 20000.0);  // threshold 15000
    }
    void suppress(Frames& frames) const {
        suppressor.suppress(frames.data(), static_cast<int>(frames.size() / 2));
    }
    TransientSuppressor suppressor;
};

TEST_F(TransientSuppressorTest, WindowsAreTenAndFortyMilliseconds) {
    for (int rate : {4000, 44100, 48000, 192000}) {
        suppressor.create(rate);
        EXPECT_EQ(suppressor.preWindow(), rate / 100);
        EXPECT_EQ(suppressor.postWindow(), rate / 25);
    }
}

TEST_F(TransientSuppressorTest, SamplesPassUnchangedUpToTheThreshold) {
    Frames frames = steady(100, 8000);
    setFrame(frames, 50, 15000, -15000);
    const Frames before = frames;
    suppress(frames);
    EXPECT_EQ(frames, before);
}

// (20000 − 4000) · 0.75 + 4000 = 16000.
TEST_F(TransientSuppressorTest, ThresholdLiesThreeQuartersOfTheWayFromAverageToPeak) {
    suppressor.setLevels(4000.0, 20000.0);
    Frames frames = steady(100, 8000);
    setFrame(frames, 50, 16000, 0);
    const Frames before = frames;
    suppress(frames);
    EXPECT_EQ(frames, before);
    setFrame(frames, 50, 16001, 0);
    suppress(frames);
    EXPECT_NE(frames[100], 16001);
}

// 8000 · (1, 7/8, 6/8 … 2/8) before; at the loud frame 1/8; then 1/8 + 1/32, 1/8 + 2/32 … up to
// 31/32.
TEST_F(TransientSuppressorTest, GainFallsToAnEighthAtTheLoudFrameAndRecovers) {
    Frames frames = steady(100, 8000);
    setFrame(frames, 50, 16000, -16000);
    suppress(frames);
    for (std::size_t i = 0; i < 100; ++i) {
        int expected = 8000;
        if (i >= 43 && i < 50) expected = 8000 - 1000 * static_cast<int>(i - 43);
        if (i > 50 && i < 78) expected = 1000 + 250 * static_cast<int>(i - 50);
        if (i == 50) expected = 2000;
        EXPECT_EQ(frames[2 * i], expected) << i;
        EXPECT_EQ(frames[2 * i + 1], i == 50 ? -2000 : expected) << i;
    }
}

// 10 ms at 44,100 are 441 steps of 0.875 / 441, each cut toward zero: the floor is met within one
// frame.
TEST_F(TransientSuppressorTest, ReachesTheFloorTenMillisecondsAfterTheStartAtARealRate) {
    suppressor.create(44100);
    suppressor.setLevels(0.0, 20000.0);
    Frames frames = steady(4000, 8000);
    setFrame(frames, 1000, 20000, 0);
    suppress(frames);
    EXPECT_EQ(frames[2 * 559], 8000);
    EXPECT_EQ(frames[2 * 560], 7984) << "8000 (1 − 0.875 / 441) = 7984.1";
    EXPECT_NEAR(frames[2 * 1000], 2500, 40);
    EXPECT_NEAR(frames[2 * 1001], 1000, 8);
    EXPECT_NEAR(frames[2 * 1882], 1000 + 3500, 8) << "half way back";
    EXPECT_NEAR(frames[2 * 2763], 8000, 10);
    EXPECT_EQ(frames[2 * 2764], 8000);
}

TEST_F(TransientSuppressorTest, TheLouderChannelCounts) {
    for (int loudChannel : {0, 1}) {
        Frames frames = steady(100, 0);
        setFrame(frames, 50, loudChannel == 0 ? 16000 : 10, loudChannel == 1 ? 16000 : 10);
        suppress(frames);
        EXPECT_EQ(frames[100 + static_cast<std::size_t>(loudChannel)], 2000);
        EXPECT_EQ(frames[100 + static_cast<std::size_t>(1 - loudChannel)], 1) << "10 / 8, cut";
    }
}

// 32767.5 lies between the magnitudes of the two extremes.
TEST_F(TransientSuppressorTest, TheMostNegativeSampleHasItsTrueMagnitude) {
    suppressor.setLevels(32767.5, 32767.5);
    Frames frames = steady(100, 0);
    setFrame(frames, 40, 32767, 32767);
    setFrame(frames, 60, 0, -32768);
    suppress(frames);
    EXPECT_EQ(frames[2 * 40], 32767);
    EXPECT_EQ(frames[2 * 60 + 1], -4096);
}

// Frame 63 stands 13 frames after the first loud one: 32000 · (4 + 13) / 32 = 17000, still loud.
// Its own window starts with frame 56, where the first window's gain is 10/32, and at 57 multiplies
// 11/32 by 7/8.
TEST_F(TransientSuppressorTest, OverlappingWindowsMultiply) {
    Frames frames = steady(120, 3200);
    setFrame(frames, 50, 16000, 0);
    setFrame(frames, 63, 32000, 0);
    suppress(frames);
    EXPECT_EQ(frames[2 * 56], 1000);
    EXPECT_EQ(frames[2 * 57], 962) << "3200 · 11/32 = 1100; 1100 · 7/8 = 962.5";
    EXPECT_EQ(frames[2 * 63], 17000 / 8);
}

// 16000 / 8 is below the threshold: the neighbour of a loud frame is not loud any more.
TEST_F(TransientSuppressorTest, ALoudFrameIsExaminedAsItsPredecessorsLeftIt) {
    Frames frames = steady(100, 0);
    setFrame(frames, 50, 16000, 0);
    setFrame(frames, 51, 16000, 0);
    suppress(frames);
    EXPECT_EQ(frames[2 * 50], 2000);
    EXPECT_EQ(frames[2 * 51], 2500) << "16000 · 5/32, once";
}

TEST_F(TransientSuppressorTest, TheEndsAreNotExamined) {
    Frames frames = steady(100, 0);
    setFrame(frames, 6, 16000, 0);
    setFrame(frames, 72, 16000, 0);
    const Frames before = frames;
    suppress(frames);
    EXPECT_EQ(frames, before);
    setFrame(frames, 7, 16000, 0);
    setFrame(frames, 71, 16000, 0);
    suppress(frames);
    EXPECT_EQ(frames[2 * 7], 2000);
    EXPECT_EQ(frames[2 * 71], 2000);
}

TEST_F(TransientSuppressorTest, ShortStretchesAreLeftAlone) {
    for (std::size_t count : {0U, 1U, 7U, 34U}) {
        Frames frames = steady(count, 20000);
        const Frames before = frames;
        suppress(frames);
        EXPECT_EQ(frames, before);
    }
    Frames frames = steady(36, 20000);
    suppress(frames);
    EXPECT_EQ(frames[2 * 7], 2500);
}

TEST_F(TransientSuppressorTest, ARateWithoutWindowsDoesNoHarm) {
    for (int rate : {24, 99, 1, 0, -44100}) {
        suppressor.create(rate);
        Frames frames = steady(50, 100);
        suppress(frames);
        EXPECT_EQ(frames.size(), 100U);
    }
}

/** Frame by frame, with the gain as the other tests of this file spell it out. */
void suppressPlainly(Frames& frames, std::ptrdiff_t pre, std::ptrdiff_t post, double threshold) {
    const auto count = static_cast<std::ptrdiff_t>(frames.size() / 2);
    for (std::ptrdiff_t p = pre; p < count - post; ++p) {
        const std::int16_t* frame = frames.data() + 2 * p;
        const int magnitude = std::max(std::abs(int{frame[0]}), std::abs(int{frame[1]}));
        if (!(magnitude > threshold)) continue;
        for (std::ptrdiff_t i = 0; i < pre + post; ++i) {
            const double fallen = 1.0 - 0.875 / static_cast<double>(pre) * static_cast<double>(i);
            const double risen =
                0.125 + 0.875 / static_cast<double>(post) * static_cast<double>(i - pre);
            const double gain = i < pre ? fallen : risen;
            for (std::ptrdiff_t c = 0; c < 2; ++c) {
                std::int16_t& sample = frames[static_cast<std::size_t>(2 * (p - pre + i) + c)];
                sample = static_cast<std::int16_t>(sample * gain);
            }
        }
    }
}

// Whole stretches are passed over where nothing in them is loud: wherever a loud frame stands and
// wherever the threshold lies between the levels, nothing is passed over that a look at each frame
// would find.
TEST_F(TransientSuppressorTest, FindsWhatALookAtEachFrameFinds) {
    std::mt19937 random(11);
    for (double threshold : {-1e300, -1.0, -0.5, 0.0, 0.5, 5999.0, 5999.5, 6000.0, 32766.5, 32767.0,
                             32767.5, 32768.0, 1e300, std::nan("")}) {
        for (std::size_t at = 0; at < 300; at += 1 + at / 40) {
            Frames frames(600);
            for (std::int16_t& sample : frames)
                sample = static_cast<std::int16_t>(random() % 3U) - 1;
            frames[2 * at + at % 2] = 6000;
            frames[2 * ((at * 7) % 300)] = -6000;
            frames[2 * ((at * 11) % 300) + 1] = at % 3 == 0 ? -32768 : 32767;
            Frames expected = frames;
            suppressPlainly(expected, 7, 28, threshold);
            suppressor.setLevels(threshold, threshold);
            for (auto form : beatatlas::test::formsOfThisMachine()) {
                const beatatlas::test::FormScope scope(form);
                Frames suppressed = frames;
                suppress(suppressed);
                ASSERT_EQ(suppressed, expected)
                    << threshold << ' ' << at << ' ' << beatatlas::test::nameOf(form);
            }
        }
    }
}

}  // namespace
