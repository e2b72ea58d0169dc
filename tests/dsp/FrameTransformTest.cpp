// SPDX-License-Identifier: MIT
// Oracle: the plain transform of each frame on its own.
#include "dsp/FrameTransform.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "beatatlas/dsp.h"
#include "dsp/TestNoise.h"
#include "support/RoundTowardZero.h"
#include "support/TrackSynth.h"
#include "support/VectorForms.h"

namespace {

using beatatlas::FrameTransform;
using beatatlas::test::FormScope;
using beatatlas::test::formsOfThisMachine;
using beatatlas::test::nameOf;
using beatatlas::test::whiteNoise;

struct Frames {
    std::vector<float> re;
    std::vector<float> im;
};

/** Bits, with which zeros differ by their sign; one NaN is as good as another. */
std::vector<std::uint32_t> bitsOf(const Frames& frames) {
    std::vector<std::uint32_t> bits;
    for (const auto* part : {&frames.re, &frames.im})
        for (float v : *part) bits.push_back(std::isnan(v) ? 1U : std::bit_cast<std::uint32_t>(v));
    return bits;
}

class FrameTransformTest : public beatatlas::test::RoundTowardZero {
protected:
    /** Frames stand a little apart, and nothing between them may change. */
    void expectPlainBits(int length, int count, const Frames& frames) {
        const int stride = static_cast<int>(frames.re.size()) / count;
        const FrameTransform transform(length);
        for (bool inverse : {false, true}) {
            Frames expected = frames;
            for (int f = 0; f < count; ++f)
                fft_less_normalize(inverse ? -length : length, expected.re.data() + f * stride,
                                   expected.im.data() + f * stride);
            for (auto form : formsOfThisMachine()) {
                const FormScope scope(form);
                Frames got = frames;
                transform.run(inverse, got.re.data(), got.im.data(), stride, count);
                ASSERT_EQ(bitsOf(got), bitsOf(expected))
                    << length << " × " << count << (inverse ? " inverse " : " forward ")
                    << nameOf(form);
            }
        }
    }
};

Frames noiseFrames(int length, int count) {
    const auto size = static_cast<std::size_t>((length + 3) * count);
    return {whiteNoise(size, 11), whiteNoise(size, 12)};
}

TEST_F(FrameTransformTest, GivesThePlainBitsForEveryPowerOfTwo) {
    for (int length = 1; length <= 8192; length *= 2)
        expectPlainBits(length, 16, noiseFrames(length, 16));
}

TEST_F(FrameTransformTest, GivesThePlainBitsForAnyNumberOfFrames) {
    for (int count : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 33})
        for (int length : {2, 8, 64, 128})
            expectPlainBits(length, count, noiseFrames(length, count));
}

TEST_F(FrameTransformTest, GivesThePlainBitsOfMusic) {
    beatatlas::test::TrackPlan plan;
    plan.lengthFrames = 70000;
    const auto music = beatatlas::test::TrackSynth(plan).renderAll();
    expectPlainBits(4096, 17, {music.left, music.right});
}

TEST_F(FrameTransformTest, GivesThePlainBitsOfValuesThatAreNoMusic) {
    for (float odd : {std::numeric_limits<float>::quiet_NaN(),
                      std::numeric_limits<float>::infinity(), 3e38F, 1e-45F, -0.0F, 0.0F}) {
        Frames frames = noiseFrames(64, 5);
        frames.re[70] = frames.im[200] = odd;  // of two frames of five
        expectPlainBits(64, 5, frames);
        for (float& v : frames.im) v = odd;
        expectPlainBits(64, 5, frames);
    }
    Frames denormal = noiseFrames(64, 5);
    for (float& v : denormal.re) v *= 1e-40F;
    for (float& v : denormal.im) v *= 1e-40F;
    expectPlainBits(64, 5, denormal);
}

}  // namespace
