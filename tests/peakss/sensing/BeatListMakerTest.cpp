// SPDX-License-Identifier: MIT
#include "peakss/sensing/BeatListMaker.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "peakss/sensing/BeatSignals.h"
#include "support/PlainBands.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::drumLoop;
using peakss::BeatInfo;
using peakss::BeatListMaker;

using Bits =
    std::tuple<std::int32_t, std::uint32_t, std::uint32_t, std::int32_t, std::int32_t, bool>;

std::vector<Bits> bitsOf(const peakss::BeatList& list) {
    std::vector<Bits> bits;
    for (const BeatInfo& beat : list)
        bits.emplace_back(beat.pos, std::bit_cast<std::uint32_t>(beat.phase),
                          std::bit_cast<std::uint32_t>(beat.interval), beat.group, beat.band,
                          beat.segHead);
    return bits;
}

class BeatListMakerTest : public beatatlas::test::RoundTowardZero {
protected:
    /** Feeds a whole track, in blocks of at most 1/75 s. */
    static void feed(BeatListMaker& maker, int rate, const std::vector<float>& signal, int block) {
        beatatlas::test::PlainBands filters(rate, 6);
        const int size = static_cast<int>(signal.size());
        for (int done = 0; done < size; done += block) {
            const int count = std::min(block, size - done);
            const float* mono = signal.data() + done;
            maker.put(mono, filters.operate(mono, count), count, nullptr);
        }
    }

    BeatListMaker maker_;
};

TEST_F(BeatListMakerTest, ListIsEmptyBeforeAnythingIsFed) {
    EXPECT_TRUE(maker_.list().empty());
    const std::vector<float> signal(100, 0.5F);
    feed(maker_, 48000, signal, 100);
    EXPECT_TRUE(maker_.list().empty());
    maker_.release();
}

TEST_F(BeatListMakerTest, CandidatesAreOrderedByPosition) {
    maker_.create(48000, 0, 20 * 48000);
    feed(maker_, 48000, drumLoop(48000, 20, 128.0), 640);
    ASSERT_GT(maker_.list().size(), 60U);
    EXPECT_TRUE(std::is_sorted(maker_.list().begin(), maker_.list().end(),
                               [](const BeatInfo& a, const BeatInfo& b) { return a.pos < b.pos; }));
}

// 128 BPM at 48 kHz: a bass drum every 22500 samples from there on. The lowest band follows the
// drum with the delay of its filter and the place of the drum's loudest moment, both the same every
// time.
TEST_F(BeatListMakerTest, CandidatesOfADrumLoopLieABeatApart) {
    maker_.create(48000, 0, 20 * 48000);
    feed(maker_, 48000, drumLoop(48000, 20, 128.0), 640);
    std::vector<int> lows;
    for (const BeatInfo& beat : maker_.list()) {
        if (beat.band != 0) continue;
        lows.push_back(beat.pos);
        EXPECT_NEAR(beat.interval, 468.75F, 1.0F);
    }
    ASSERT_GT(lows.size(), 10U);
    for (const int pos : lows) {
        const int delay = pos % 22500;
        EXPECT_LT(delay, 960) << pos;
    }
}

TEST_F(BeatListMakerTest, BlockLengthDoesNotChangeTheList) {
    const std::vector<float> signal = drumLoop(44100, 10, 110.0);
    const int size = static_cast<int>(signal.size());
    maker_.create(44100, 0, size);
    feed(maker_, 44100, signal, 588);
    const std::vector<Bits> whole = bitsOf(maker_.list());
    ASSERT_GT(whole.size(), 20U);
    for (const int block : {1, 2, 3, 100, 587}) {
        BeatListMaker other;
        other.create(44100, 0, size);
        feed(other, 44100, signal, block);
        EXPECT_EQ(bitsOf(other.list()), whole) << block;
    }
}

TEST_F(BeatListMakerTest, CreateAgainStartsWithAnEmptyListAndEqualsANewMaker) {
    const std::vector<float> signal = drumLoop(48000, 8, 120.0);
    maker_.create(48000, 0, 8 * 48000);
    feed(maker_, 48000, signal, 640);
    const std::vector<Bits> first = bitsOf(maker_.list());
    maker_.create(48000, 0, 8 * 48000);
    EXPECT_TRUE(maker_.list().empty());
    feed(maker_, 48000, signal, 640);
    EXPECT_EQ(bitsOf(maker_.list()), first);
    EXPECT_FALSE(first.empty());
}

TEST_F(BeatListMakerTest, OnlyTheRangeIsSensed) {
    maker_.create(48000, 4 * 48000, 12 * 48000);
    feed(maker_, 48000, drumLoop(48000, 20, 120.0), 640);
    ASSERT_FALSE(maker_.list().empty());
    EXPECT_GE(maker_.list().front().pos, 4 * 48000);
    EXPECT_LT(maker_.list().back().pos, 12 * 48000);
}

TEST_F(BeatListMakerTest, ReleaseEmptiesTheListAndStopsSensing) {
    maker_.create(48000, 0, std::numeric_limits<int>::max());
    feed(maker_, 48000, drumLoop(48000, 8, 120.0), 640);
    EXPECT_FALSE(maker_.list().empty());
    maker_.release();
    maker_.release();
    EXPECT_TRUE(maker_.list().empty());
    feed(maker_, 48000, drumLoop(48000, 8, 120.0), 640);
    EXPECT_TRUE(maker_.list().empty());
}

}  // namespace
