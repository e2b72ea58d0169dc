// SPDX-License-Identifier: MIT
#include "track/evidence/ChromaStream.h"

#include <vector>

#include <gtest/gtest.h>

#include "support/signals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

std::vector<Chroma> chromaOf(int rate, const std::vector<float>& samples,
                             std::size_t block = 4096) {
    ChromaStream stream(rate);
    for (std::size_t i = 0; i < samples.size(); i += block)
        stream.put(samples.data() + i,
                   static_cast<std::int64_t>(std::min(block, samples.size() - i)));
    return stream.finish();
}

std::ptrdiff_t loudestOf(const Chroma& frame) {
    return std::max_element(frame.begin(), frame.end()) - frame.begin();
}

// 5512.5 (6000) decimated samples a second, 551.25 (600) a frame.
TEST(ChromaStream, HasTenFramesASecond) {
    EXPECT_EQ(chromaOf(44100, silence(441000)).size(), 100U);
    EXPECT_EQ(chromaOf(48000, silence(480000)).size(), 100U);
    EXPECT_EQ(chromaOf(44100, silence(100)).size(), 0U);
}

TEST(ChromaStream, HearsThePitchClass) {
    for (const int rate : {44100, 48000}) {
        EXPECT_EQ(loudestOf(chromaOf(rate, sine(100000, 440.0, rate, 0.5))[10]), 0);
        EXPECT_EQ(loudestOf(chromaOf(rate, sine(100000, 220.0, rate, 0.5))[10]), 0);
        EXPECT_EQ(loudestOf(chromaOf(rate, sine(100000, 523.25, rate, 0.5))[10]), 3);
        EXPECT_EQ(loudestOf(chromaOf(rate, sine(100000, 1661.22, rate, 0.5))[10]), 11);
    }
}

TEST(ChromaStream, DoesNotHearTheDrumsBelowAndAbove) {
    std::vector<float> sound = sine(100000, 440.0, 44100, 0.01);
    mixInto(sound, sine(100000, 55.0, 44100, 0.5));
    mixInto(sound, sine(100000, 6000.0, 44100, 0.2));
    EXPECT_EQ(loudestOf(chromaOf(44100, sound)[10]), 0);
}

TEST(ChromaStream, IsZeroInSilence) {
    for (const Chroma& frame : chromaOf(44100, silence(44100)))
        for (const float value : frame) ASSERT_EQ(value, 0.0F);
}

// Twice as loud is the same music: the unit grows with it.
TEST(ChromaStream, DoesNotCareForLoudnessNorForTheSizeOfBlocks) {
    const std::vector<float> noise = whiteNoise(60000, 0.2, 5);
    std::vector<float> louder = noise;
    for (float& sample : louder) sample *= 2.0F;
    const std::vector<Chroma> expected = chromaOf(44100, noise);
    EXPECT_EQ(chromaOf(44100, noise, 13), expected);
    const std::vector<Chroma> other = chromaOf(44100, louder);
    for (std::size_t i = 0; i < expected.size(); ++i)
        for (std::size_t p = 0; p < 12; ++p) ASSERT_NEAR(other[i][p], expected[i][p], 1e-5);
}

}  // namespace
