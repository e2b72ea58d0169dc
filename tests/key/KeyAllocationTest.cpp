// SPDX-License-Identifier: MIT
// What happens when there is no memory, and that feeding asks for none.
#include <new>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "beatatlas/utilities.h"
#include "key/CachedFft.h"
#include "key/KeyRankMaker.h"
#include "key/Progressions.h"
#include "support/Allocations.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::KeyRankMaker;
using beatatlas::test::AllocationsFailAfter;
using beatatlas::test::CallocFailsAfter;
using beatatlas::test::KeyTrack;

constexpr int kRate = 44100;

class KeyAllocationTest : public beatatlas::test::RoundTowardZero {
protected:
    static KeyTrack track() {
        return beatatlas::test::keyTrack(beatatlas::test::stereoProgression(9, kRate, 3), kRate);
    }
    static void begin(KeyRankMaker& maker, const KeyTrack& track) {
        maker.create(kRate, track.frames());
        maker.setPreCheckData(track.frames(), track.sum, track.peak, 0, 0.0, 0.0);
    }
};

TEST_F(KeyAllocationTest, EveryRefusalDuringCreateTravelsAndLeavesAnInertMaker) {
    const KeyTrack music = track();
    bool created = false;
    for (long granted = 0; !created && granted < 100; ++granted) {
        KeyRankMaker maker;
        try {
            const AllocationsFailAfter shortage(granted);
            begin(maker, music);
            created = true;
        } catch (const std::bad_alloc&) {
            maker.putSample(music.samples.data(), music.frames());
            EXPECT_EQ(maker.getMainKey(), 0);
            begin(maker, music);
            maker.putSample(music.samples.data(), music.frames());
            EXPECT_EQ(maker.getMainKey(), 9) << "created again with memory";
        }
    }
    EXPECT_TRUE(created);
}

TEST_F(KeyAllocationTest, FeedingAllocatesTheTransformsTablesAndNothingElse) {
    const KeyTrack music = track();
    KeyRankMaker maker;
    begin(maker, music);
    const std::size_t before = beatatlas::test::allocationCount();
    maker.putSample(music.samples.data(), kRate);
    {
        const CallocFailsAfter tablesAreThere(0);
        maker.putSample(music.samples.data() + 2 * kRate, kRate);
    }
    EXPECT_EQ(beatatlas::test::allocationCount(), before);
}

TEST_F(KeyAllocationTest, ATransformWithoutMemorySaysSoAndLeavesTheArrays) {
    for (int granted : {0, 1}) {
        beatatlas::CachedFft fft;
        std::vector<double> re{1.0, 2.0, 3.0, 4.0};
        std::vector<double> im(4, 0.0);
        ::testing::internal::CaptureStderr();
        int result = 0;
        {
            const CallocFailsAfter shortage(granted);
            result = fft.fft(4, re.data(), im.data());
        }
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "記憶領域不足\n");
        EXPECT_EQ(result, 1);
        EXPECT_THAT(re, ::testing::ElementsAre(1.0, 2.0, 3.0, 4.0));
        EXPECT_EQ(fft.fft(4, re.data(), im.data()), 0) << "with memory again";
        EXPECT_EQ(re[0], 2.5);
    }
}

// Two tables of the transform, and four more for real values.
TEST_F(KeyAllocationTest, APowerSpectrumNeedsAllItsTables) {
    for (int granted : {0, 1, 2, 3, 4, 5}) {
        beatatlas::CachedFft fft;
        std::vector<double> values(256, 3.0);
        std::vector<double> power(129, 2.0);
        ::testing::internal::CaptureStderr();
        int result = 0;
        {
            const CallocFailsAfter shortage(granted);
            result = fft.power(256, values.data(), power.data());
        }
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "記憶領域不足\n");
        EXPECT_EQ(result, 1);
        EXPECT_THAT(values, ::testing::Each(3.0));
        EXPECT_THAT(power, ::testing::Each(2.0));
        EXPECT_EQ(fft.power(256, values.data(), power.data()), 0) << "with memory again";
        EXPECT_EQ(power[0], 9.0);
    }
}

// A frame without a transform is silent, which the maker remembers until the next track.
TEST_F(KeyAllocationTest, FramesWithoutATransformAreSilent) {
    const KeyTrack music = track();
    KeyRankMaker maker;
    begin(maker, music);
    ::testing::internal::CaptureStderr();
    {
        const CallocFailsAfter shortage(0);
        maker.putSample(music.samples.data(), music.frames());
    }
    EXPECT_THAT(::testing::internal::GetCapturedStderr(), ::testing::StartsWith("記憶領域不足\n"));
    std::vector<double> points(24, -1.0);
    maker.getKeyPoint(points.data());
    EXPECT_THAT(points, ::testing::Each(0.0));
    EXPECT_TRUE(maker.hasMissedFrames());
    begin(maker, music);
    maker.putSample(music.samples.data(), music.frames());
    EXPECT_FALSE(maker.hasMissedFrames());
}

TEST_F(KeyAllocationTest, TheKeyOfABufferThrowsWithoutMemory) {
    std::vector<float> samples(20000, 0.5F);
    const auto key = [&samples] {
        return KeyCodeScale(nullptr, samples.data(), 20000, 4000.0F, 440.0F, 1, 0, nullptr);
    };
    const int expected = key();
    int refusals = 0;
    for (long granted = 0; granted < 100; ++granted) {
        const AllocationsFailAfter shortage(granted);
        try {
            EXPECT_EQ(key(), expected);
            break;
        } catch (const std::bad_alloc&) {
            ++refusals;
        }
    }
    EXPECT_GT(refusals, 2);
}

}  // namespace
