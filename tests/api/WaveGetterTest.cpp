// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>

#include <gtest/gtest.h>

#include "support/HostSession.h"

namespace {

using namespace beatatlas::test;

constexpr int kRate = 48000;

// A kick-like burst four times a second over three seconds, loud enough to move every wave.
StereoTrack pulses() {
    StereoTrack track;
    for (int i = 0; i < 3 * kRate; ++i) {
        const int sincePulse = i % 12000;
        const float level = sincePulse < 4000 ? 20000.0F : 100.0F;
        track.left.push_back(i / 160 % 2 == 0 ? level : -level);
    }
    track.right = track.left;
    return track;
}

class WaveGetterTest : public ::testing::Test {
protected:
    WaveGetterTest() : session_({.rate = kRate}, track_.frames()) {}

    StereoTrack track_ = pulses();
    HostSession session_;
};

bool operator==(const BA_WaveInfo& a, const BA_WaveInfo& b) {
    return a.level == b.level && a.color == b.color;
}

constexpr BA_WaveInfo kUntouched{-1.0F, -1};

TEST_F(WaveGetterTest, LoudAndDotsWavesEndWithTheirFixedCounts) {
    session_.feed(track_, 0, track_.frames());
    std::array<BA_WaveInfo, 400> loud{};
    EXPECT_EQ(BA_GetLoudWave(session_.handle(), loud.data(), 0), 400);
    EXPECT_EQ(BA_GetDotsWave(session_.handle(), loud.data(), 0), 100);
    EXPECT_EQ(BA_GetZoomWave(session_.handle(), nullptr), 450);
}

TEST_F(WaveGetterTest, HoldingAllPointsCopiesNothing) {
    session_.feed(track_, 0, track_.frames());
    std::array<BA_WaveInfo, 400> out{};
    out.fill(kUntouched);
    EXPECT_EQ(BA_GetLoudWave(session_.handle(), out.data(), 400), 400);
    EXPECT_EQ(BA_GetLoudWave(session_.handle(), out.data(), 1000), 400);
    EXPECT_EQ(BA_GetLoudWave(session_.handle(), nullptr, 400), 400);
    EXPECT_EQ(BA_GetDotsWave(session_.handle(), out.data(), 100), 100);
    EXPECT_TRUE(std::ranges::all_of(out, [](const BA_WaveInfo& p) { return p == kUntouched; }));
}

TEST_F(WaveGetterTest, HoldingSomePointsCopiesTheRestToTheirOwnPlaces) {
    session_.feed(track_, 0, track_.frames());
    std::array<BA_WaveInfo, 400> whole{};
    std::array<BA_WaveInfo, 400> rest{};
    rest.fill(kUntouched);
    BA_GetLoudWave(session_.handle(), whole.data(), 0);
    EXPECT_EQ(BA_GetLoudWave(session_.handle(), rest.data(), 398), 400);
    EXPECT_TRUE(std::all_of(rest.begin(), rest.begin() + 398,
                            [](const BA_WaveInfo& p) { return p == kUntouched; }));
    EXPECT_TRUE(rest[398] == whole[398]);
    EXPECT_TRUE(rest[399] == whole[399]);
}

TEST_F(WaveGetterTest, NegativeHaveCountsAsNone) {
    session_.feed(track_, 0, track_.frames());
    std::array<BA_WaveInfo, 400> none{};
    std::array<BA_WaveInfo, 400> negative{};
    BA_GetLoudWave(session_.handle(), none.data(), 0);
    EXPECT_EQ(BA_GetLoudWave(session_.handle(), negative.data(), -5), 400);
    EXPECT_TRUE(
        std::ranges::equal(none, negative, [](const auto& a, const auto& b) { return a == b; }));
}

// A player that reads while it feeds ends with the same wave as one that reads once.
TEST_F(WaveGetterTest, ReadingWhileFeedingGivesTheSameWave) {
    std::array<BA_WaveInfo, 400> grown{};
    int have = 0;
    for (int first = 0; first < track_.frames(); first += 4800) {
        session_.feed(track_, first, 4800);
        const int count = BA_GetLoudWave(session_.handle(), grown.data(), have);
        EXPECT_GE(count, have);
        have = count;
    }
    EXPECT_EQ(have, 400);
    HostSession once({.rate = kRate}, track_.frames());
    once.feed(track_, 0, track_.frames());
    std::array<BA_WaveInfo, 400> whole{};
    BA_GetLoudWave(once.handle(), whole.data(), 0);
    EXPECT_TRUE(
        std::ranges::equal(grown, whole, [](const auto& a, const auto& b) { return a == b; }));
}

TEST_F(WaveGetterTest, ZoomCountsWithoutCopyingWhenOutIsNull) {
    session_.feed(track_, 0, kRate);
    EXPECT_EQ(BA_GetZoomWave(session_.handle(), nullptr), 150);
}

TEST_F(WaveGetterTest, ZoomGrowsWithRawPeaksAndEndsScaled) {
    session_.feed(track_, 0, kRate);
    std::array<BA_WaveInfo, 450> zoom{};
    ASSERT_EQ(BA_GetZoomWave(session_.handle(), zoom.data()), 150);
    EXPECT_EQ(zoom[0].level, 20000.0F);
    session_.feed(track_, kRate, 2 * kRate);
    ASSERT_EQ(BA_GetZoomWave(session_.handle(), zoom.data()), 450);
    EXPECT_EQ(zoom[0].level, 31.0F);  // the first frame holds the track's peak
}

TEST_F(WaveGetterTest, KeyGettersCountWithoutCopyingWhenOutIsNull) {
    EXPECT_EQ(BA_GetKeyPoint(session_.handle(), nullptr), 24);
    EXPECT_EQ(BA_GetKeyRank(session_.handle(), nullptr), 24);
    EXPECT_EQ(BA_GetNoteEncount(session_.handle(), nullptr), 12);
    EXPECT_EQ(BA_GetNoteEncountVal(session_.handle(), nullptr), 12);
}

TEST_F(WaveGetterTest, SwitchedOffWavesStayEmpty) {
    HostSession off({.rate = kRate, .loud = false, .zoom = false}, track_.frames());
    off.feed(track_, 0, track_.frames());
    EXPECT_TRUE(BA_Analyzed(off.handle()));
    EXPECT_EQ(BA_GetLoudWave(off.handle(), nullptr, 0), 0);
    EXPECT_EQ(BA_GetDotsWave(off.handle(), nullptr, 0), 0);
    EXPECT_EQ(BA_GetZoomWave(off.handle(), nullptr), 0);
}

}  // namespace
