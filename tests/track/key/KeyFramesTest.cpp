// SPDX-License-Identifier: MIT
#include "track/key/KeyFrames.h"

#include <algorithm>
#include <numeric>

#include <gtest/gtest.h>

namespace {

using namespace beatatlas::track::inner;

const std::vector<SpectralPeak> kCMajorTriad = {{60.0F, 1.0F}, {64.0F, 0.9F}, {67.0F, 0.8F}};

TEST(KeyFrames, LeaveOutWhatIsSilentBesideTheLoudestPlace) {
    PeakStore store;
    store.add(100.0F, kCMajorTriad);
    store.add(0.09F, kCMajorTriad);  // less than a thousandth
    store.add(0.11F, kCMajorTriad);
    store.add(50.0F, {});
    const KeyFrames frames = foldFrames(store, 0.0, 0.5);
    ASSERT_EQ(frames.size(), 2U);
    EXPECT_EQ(frames.seconds[0], 0.5);
    EXPECT_EQ(frames.seconds[1], 1.5);
    EXPECT_EQ(frames.triads.size(), 2U);
}

// 1,024 is a sine of full scale; 100 dB below that is a hundredth.
TEST(KeyFrames, LeaveOutWhatNobodyHears) {
    PeakStore store;
    store.add(0.01F, kCMajorTriad);
    EXPECT_EQ(foldFrames(store, 0.0, 0.5).size(), 0U);
    store.add(0.011F, kCMajorTriad);
    EXPECT_EQ(foldFrames(store, 0.0, 0.5).size(), 1U);
}

TEST(KeyFrames, TellWhichTriadSounds) {
    PeakStore store;
    for (int i = 0; i < 5; ++i) store.add(1.0F, kCMajorTriad);
    const KeyFrames frames = foldFrames(store, 0.0, 0.5);
    for (const KeyFrames::Triads& triads : frames.triads) {
        EXPECT_NEAR(std::accumulate(triads.begin(), triads.end(), 0.0F), 1.0F, 1e-5F);
        EXPECT_EQ(std::max_element(triads.begin(), triads.end()) - triads.begin(), 3);  // C major
        EXPECT_GT(triads[3], 0.9F);
    }
}

// Of a chord that is gone after one frame the next one still hears a third.
TEST(KeyFrames, HearTriadsOverThreeFrames) {
    PeakStore store;
    store.add(1.0F, kCMajorTriad);
    store.add(1.0F, {{60.0F, 1.0F}});
    store.add(1.0F, {{60.0F, 1.0F}});
    const KeyFrames frames = foldFrames(store, 0.0, 0.5);
    EXPECT_GT(frames.triads[1][3], 1.2F * frames.triads[1][15]);    // major heard before
    EXPECT_NEAR(frames.triads[2][3], frames.triads[2][15], 1e-6F);  // a lone C
}

}  // namespace
