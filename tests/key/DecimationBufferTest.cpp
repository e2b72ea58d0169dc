// SPDX-License-Identifier: MIT
#include "key/DecimationBuffer.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using beatatlas::DecimationBuffer;

std::int16_t sampleOf(int i) {
    return static_cast<std::int16_t>((i * 31) & 0x7FFF);
}

class DecimationBufferTest : public beatatlas::test::RoundTowardZero {
protected:
    /** Puts samples until a frame is complete; returns how many it took. */
    int fill() {
        const int before = fed;
        for (; buffer.missing() > 0; buffer.add(1)) {
            EXPECT_GT(buffer.room(), 0);
            *buffer.end() = sampleOf(fed++);
        }
        return fed - before;
    }
    void expectFrameFrom(int firstSample) const {
        for (int i = 0; i < DecimationBuffer::kFrameSamples; ++i)
            ASSERT_EQ(buffer.frame()[4 * i], sampleOf(firstSample + 4 * i)) << i;
    }
    DecimationBuffer buffer;
    int fed = 0;
};

TEST_F(DecimationBufferTest, AFrameIsEveryFourthOfSixteenThousandSamples) {
    buffer.create(48000);
    EXPECT_EQ(fill(), 16384);
    expectFrameFrom(0);
}

// 48000 · 0.3 is cut to 14399 and 44100 · 0.3 to 13229: 0.3 is a little short in double.
TEST_F(DecimationBufferTest, TheNextFrameStartsThreeTenthsOfASecondLater) {
    for (const auto& [rate, hop] :
         {std::pair{48000, 14399}, std::pair{44100, 13229}, std::pair{4000, 1199}}) {
        buffer.create(rate);
        fed = 0;
        fill();
        for (int frame = 1; frame < 5; ++frame) {
            buffer.hop();
            EXPECT_EQ(fill(), hop) << rate;
            expectFrameFrom(frame * hop);
        }
    }
}

// 0.3 s of 192,000 are 57,599 samples, more than a frame needs: those between two frames are passed
// over.
TEST_F(DecimationBufferTest, AtHighRatesSamplesBetweenTheFramesArePassedOver) {
    for (const auto& [rate, hop] :
         {std::pair{192000, 57599}, std::pair{96000, 28799}, std::pair{54617, 16385}}) {
        buffer.create(rate);
        fed = 0;
        fill();
        buffer.hop();
        EXPECT_EQ(fill(), hop) << rate;
        expectFrameFrom(hop);
    }
}

// The second frame of the high rate starts in the middle of a block that is passed over in part.
TEST_F(DecimationBufferTest, BlocksOfAnyLengthGiveTheSameFrames) {
    for (int rate : {48000, 192000}) {
        for (int length : {1, 3, 1000, 100000}) {
            buffer.create(rate);
            fed = 0;
            for (int frame = 0; frame < 3; ++frame) {
                while (buffer.missing() > 0) {
                    const int n = std::min(length, buffer.room());
                    for (int i = 0; i < n; ++i) buffer.end()[i] = sampleOf(fed++);
                    buffer.add(n);
                }
                expectFrameFrom(fed - DecimationBuffer::kSamples);
                buffer.hop();
            }
        }
    }
}

TEST_F(DecimationBufferTest, ResetStartsOver) {
    buffer.create(44100);
    fill();
    buffer.hop();
    buffer.reset();
    fed = 0;
    EXPECT_EQ(fill(), 16384);
    expectFrameFrom(0);
}

}  // namespace
