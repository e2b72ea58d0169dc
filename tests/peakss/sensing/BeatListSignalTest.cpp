// SPDX-License-Identifier: MIT
#include "peakss/sensing/BeatListSignal.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "peakss/sensing/PeakTrain.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::PeakTrain;
using peakss::BeatInfo;
using peakss::BeatList;
using peakss::BeatListSignal;
using ::testing::ElementsAre;

constexpr int kSecond = PeakTrain::kRate;

class BeatListSignalTest : public beatatlas::test::RoundTowardZero {
protected:
    void SetUp() override {
        RoundTowardZero::SetUp();
        signal_.create(&list_);
    }

    // Reports the beat of a train, as a sensor does.
    void report(PeakTrain& train) {
        signal_.changeStat(train.buffer.interval(), train.buffer.beatPos(),
                           train.buffer.beatLevel(), &train.buffer);
    }

    // A band whose peaks come every so many ms, the first at 1 s.
    static PeakTrain& feed(PeakTrain& train, const std::vector<int>& distances) {
        train.peakAt(kSecond);
        EXPECT_TRUE(train.peaksAfterMs(distances));
        return train;
    }

    // An entry that stands in the list already.
    void enter(int pos, float interval, int group) {
        BeatInfo entry;
        entry.pos = pos;
        entry.interval = interval;
        entry.group = group;
        entry.band = 9;
        list_.push_back(entry);
    }

    std::vector<int> positions() const {
        std::vector<int> all;
        for (const BeatInfo& entry : list_) all.push_back(entry.pos);
        return all;
    }

    std::vector<int> bands() const {
        std::vector<int> all;
        for (const BeatInfo& entry : list_) all.push_back(entry.band);
        return all;
    }

    BeatList list_;
    BeatListSignal signal_;
};

// Five peaks 500 ms apart: three intervals agree (the first peak has none), so the weight is 5 and
// all five peaks enter.
TEST_F(BeatListSignalTest, WritesEveryAgreeingPeakOldestFirst) {
    PeakTrain train(2);
    report(feed(train, {500, 500, 500, 500}));
    EXPECT_THAT(positions(), ElementsAre(kSecond, kSecond + 24000, kSecond + 48000, kSecond + 72000,
                                         kSecond + 96000));
    for (const BeatInfo& entry : list_) {
        EXPECT_EQ(entry.interval, 500.0F);
        EXPECT_EQ(entry.group, 5);
        EXPECT_EQ(entry.band, 2);
        EXPECT_FALSE(entry.segHead);
    }
    EXPECT_EQ(list_[0].phase, 0.0F);
    EXPECT_EQ(list_[4].phase, 1.0F);
}

// 750, 750, 500 at 120 BPM, whose first peak has no interval; four intervals agree behind the
// newest.
TEST_F(BeatListSignalTest, PhaseIsTheDistanceToThePreviousPeakInQuarterBeats) {
    PeakTrain train;
    report(feed(train, {750, 750, 500, 750, 750, 500}));
    std::vector<float> phases;
    for (const BeatInfo& entry : list_) phases.push_back(entry.phase);
    EXPECT_THAT(phases, ElementsAre(0.0F, 1.5F, 1.5F, 1.0F, 1.5F, 1.5F, 1.0F));
}

// 440 ms are nearer to one beat of 500 than to three quarters or five, and 60 ms off.
TEST_F(BeatListSignalTest, PeaksThatDisagreeStayOut) {
    PeakTrain train;
    report(feed(train, {440, 440, 500, 500, 500, 500}));
    EXPECT_EQ(list_.size(), 5U);
    EXPECT_EQ(list_.front().pos, kSecond + 880 * 48);
}

TEST_F(BeatListSignalTest, EachReportIsAGroupOfItsOwn) {
    PeakTrain train;
    feed(train, {500, 500, 500, 500});
    report(train);
    train.peakAfterMs(500);
    report(train);
    // One interval more agrees: weight 6, group 1. It displaces all entries of weight 5.
    ASSERT_EQ(list_.size(), 6U);
    for (const BeatInfo& entry : list_) EXPECT_EQ(entry.group, 256 + 6);
}

TEST_F(BeatListSignalTest, EqualWeightKeepsTheOlderRecord) {
    PeakTrain first(0);
    PeakTrain second(1);
    report(feed(first, {500, 500, 500, 500}));
    report(feed(second, {500, 500, 500, 500}));
    ASSERT_EQ(list_.size(), 5U);
    for (const BeatInfo& entry : list_) {
        EXPECT_EQ(entry.group, 5);
        EXPECT_EQ(entry.band, 0);
    }
}

TEST_F(BeatListSignalTest, SmallerWeightYieldsToTheLarger) {
    enter(kSecond, 500.0F, 4);
    enter(kSecond + 24000, 500.0F, 6);
    PeakTrain train(1);
    report(feed(train, {500, 500, 500, 500}));
    EXPECT_THAT(bands(), ElementsAre(1, 9, 1, 1, 1));
}

// The report's weight counts, not its number: 4 of a late group yields to the 5 of an early one;
// 255 stays.
TEST_F(BeatListSignalTest, WeightIsTheLowByteOfTheGroup) {
    enter(kSecond, 500.0F, 0x700 | 4);
    enter(kSecond + 24000, 500.0F, 5);
    enter(kSecond + 48000, 500.0F, std::numeric_limits<int>::min() | 0xFF);
    PeakTrain train(1);
    report(feed(train, {500, 500, 500, 500}));
    EXPECT_THAT(bands(), ElementsAre(1, 9, 9, 1, 1));
}

TEST_F(BeatListSignalTest, DoubleAndHalfTempoAreTheSameTempo) {
    for (const float interval : {500.0F, 1000.0F, 250.0F}) {
        list_.clear();
        signal_.create(&list_);
        enter(kSecond, interval, 1);
        PeakTrain train(1);
        report(feed(train, {500, 500, 500, 500}));
        EXPECT_THAT(bands(), ElementsAre(1, 1, 1, 1, 1)) << interval;
    }
}

TEST_F(BeatListSignalTest, ClashingTempiExcludeEachOther) {
    enter(kSecond, 700.0F, 1);
    enter(kSecond + 24000, 700.0F, 99);
    PeakTrain train(1);
    report(feed(train, {500, 500, 500, 500}));
    EXPECT_THAT(bands(), ElementsAre(1, 9, 1, 1, 1));
}

// 505 ms are 118.8 BPM: within the tolerance of 500, but another tenth of a BPM.
TEST_F(BeatListSignalTest, NearlyEqualTempiStandSideBySide) {
    enter(kSecond, 505.0F, 99);
    PeakTrain train(1);
    report(feed(train, {500, 500, 500, 500}));
    EXPECT_THAT(bands(), ElementsAre(9, 1, 1, 1, 1, 1));
    EXPECT_EQ(list_[1].pos, kSecond);
}

// 520 ms lie exactly at the tolerance, 20 ms, of 500; the next float is a clash.
TEST_F(BeatListSignalTest, TempoExactlyAtTheToleranceIsNoClash) {
    enter(kSecond, 520.0F, 1);
    enter(kSecond + 24000, std::nextafter(520.0F, 600.0F), 1);
    PeakTrain train(1);
    report(feed(train, {500, 500, 500, 500}));
    EXPECT_THAT(bands(), ElementsAre(9, 1, 1, 1, 1, 1));
}

// The search goes from the last entry of the position backward, past what may stand beside the new
// one.
TEST_F(BeatListSignalTest, EntriesOfOnePositionAreComparedFromTheLastBackward) {
    enter(kSecond, 500.0F, 99);
    enter(kSecond, 505.0F, 99);
    PeakTrain train(1);
    report(feed(train, {500, 500, 500, 500}));
    EXPECT_THAT(bands(), ElementsAre(9, 9, 1, 1, 1, 1));
}

TEST_F(BeatListSignalTest, TheNewestOfOnePositionDecides) {
    enter(kSecond, 500.0F, 99);
    enter(kSecond, 700.0F, 1);
    PeakTrain train(1);
    report(feed(train, {500, 500, 500, 500}));
    // The clashing entry, being weak, is displaced; the heavier one before it is never asked.
    EXPECT_THAT(bands(), ElementsAre(9, 1, 1, 1, 1, 1));
}

TEST_F(BeatListSignalTest, DisplacedEntryGivesItsPlaceToTheEndOfThePosition) {
    enter(kSecond, 500.0F, 1);
    enter(kSecond, 505.0F, 1);
    enter(kSecond, 495.0F, 1);
    PeakTrain train(1);
    report(feed(train, {500, 500, 500, 500}));
    ASSERT_EQ(list_.size(), 7U);
    EXPECT_EQ(list_[0].interval, 505.0F);
    EXPECT_EQ(list_[1].interval, 495.0F);
    EXPECT_EQ(list_[2].interval, 500.0F);
    EXPECT_EQ(list_[2].band, 1);
}

TEST_F(BeatListSignalTest, EntriesOfNeighbouringPositionsAreLeftAlone) {
    enter(kSecond - 1, 500.0F, 1);
    enter(kSecond + 1, 500.0F, 1);
    PeakTrain train(1);
    report(feed(train, {500, 500, 500, 500}));
    EXPECT_THAT(bands(), ElementsAre(9, 1, 9, 1, 1, 1, 1));
}

// The agreement is counted 30 intervals back, which is 32 peaks: the whole ring, and the greatest
// weight.
TEST_F(BeatListSignalTest, LongSteadyPulseReachesBackThroughTheRing) {
    PeakTrain train;
    report(feed(train, std::vector<int>(50, 500)));
    ASSERT_EQ(list_.size(), 32U);
    EXPECT_EQ(list_.front().pos, kSecond + 19 * 24000);
    EXPECT_EQ(list_.front().group, 32);
}

// A steady pulse of two peaks a second: whatever has been reported before is on the list once.
TEST_F(BeatListSignalTest, EveryPeakOfASteadyPulseIsOnTheListOnce) {
    PeakTrain train;
    train.peakAt(kSecond);
    for (int peak = 1; peak < 200; ++peak)
        if (train.peakAfterMs(500)) report(train);
    ASSERT_EQ(list_.size(), 200U);
    for (int i = 0; i < 200; ++i)
        EXPECT_EQ(list_[static_cast<std::size_t>(i)].pos, kSecond + i * 24000);
}

// A buffer after a reset says that no peak agrees, and holds none: nothing may be made of its empty
// slots.
TEST_F(BeatListSignalTest, EmptyRingGivesNoCandidate) {
    PeakTrain train;
    report(train);
    EXPECT_TRUE(list_.empty());
    train.peakAt(kSecond);
    signal_.changeStat(500.0F, kSecond, 1.0F, &train.buffer);
    EXPECT_EQ(list_.size(), 1U);
}

TEST_F(BeatListSignalTest, AbsurdIntervalsDoNoHarm) {
    PeakTrain train;
    feed(train, {500, 500, 500, 500});
    for (const float interval : {0.0F, -1.0F, 1e-38F, 1e38F, std::numeric_limits<float>::infinity(),
                                 std::numeric_limits<float>::quiet_NaN(), 500.0F})
        signal_.changeStat(interval, 0, 0.0F, &train.buffer);
    EXPECT_TRUE(std::is_sorted(list_.begin(), list_.end(),
                               [](const BeatInfo& a, const BeatInfo& b) { return a.pos < b.pos; }));
}

TEST_F(BeatListSignalTest, WithoutListOrBufferNothingHappens) {
    PeakTrain train;
    feed(train, {500, 500, 500, 500});
    signal_.changeStat(500.0F, 0, 0.0F, nullptr);
    EXPECT_TRUE(list_.empty());
    BeatListSignal unused;
    report(train);
    unused.changeStat(500.0F, 0, 0.0F, &train.buffer);
    EXPECT_EQ(list_.size(), 5U);
}

TEST_F(BeatListSignalTest, CreateAgainCountsGroupsFromZero) {
    PeakTrain train;
    report(feed(train, {500, 500, 500, 500}));
    list_.clear();
    signal_.create(&list_);
    report(train);
    EXPECT_EQ(list_.front().group, 5);
}

// The rule written straight down: search from the end, erase, insert.
void placePlainly(BeatList& list, const BeatInfo& fresh) {
    const auto tenths = [](float ms) { return static_cast<long>(60000.0F / ms * 10.0F + 0.5F); };
    const auto farFrom = [](float a, float b) {
        const double share = static_cast<double>(b) * 2400.0 / 60000.0;
        return std::fabs(a - b) > static_cast<float>(std::min(share, 20.0));
    };
    std::size_t index = list.size();
    while (index > 0 && list[index - 1].pos > fresh.pos) --index;
    for (std::size_t i = index; i > 0 && list[i - 1].pos == fresh.pos; --i) {
        const float old = list[i - 1].interval;
        const long a = tenths(old);
        const long b = tenths(fresh.interval);
        const bool same = a == b || 2 * a == b || a == 2 * b;
        const bool other = farFrom(old, fresh.interval) && farFrom(2 * old, fresh.interval) &&
                           farFrom(old / 2, fresh.interval);
        if (!same && !other) continue;
        if ((fresh.group & 255) <= (list[i - 1].group & 255)) return;
        list.erase(list.begin() + static_cast<std::ptrdiff_t>(i) - 1);
        index -= 1;
        break;
    }
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(index), fresh);
}

// Four bands whose peaks often fall on one another, with tempi near and far from each other.
TEST_F(BeatListSignalTest, AgreesWithThePlainRuleOnManyBands) {
    std::minstd_rand random(7);
    const int tempi[] = {500, 500, 505, 495, 520, 700, 1000, 480};
    BeatList plain;
    int group = 0;
    for (int round = 0; round < 300; ++round) {
        PeakTrain train(static_cast<int>(random() % 4));
        train.peakAt(kSecond * (1 + static_cast<int>(random() % 20)));
        const int ms = tempi[random() % 8];
        if (!train.peaksAfterMs(std::vector<int>(5 + random() % 12, ms))) continue;
        report(train);
        group += train.buffer.count() + 2;
        const int oldest = std::min(train.buffer.count() + 1, train.buffer.ring().count() - 1);
        for (int k = oldest; k >= 0; --k) {
            const peakss::PeakInfo& peak = train.buffer.ring().back(k);
            BeatInfo fresh;
            fresh.pos = peak.pos;
            fresh.interval = train.buffer.interval();
            fresh.phase =
                static_cast<float>(static_cast<int>(peak.interval / fresh.interval * 4 + 0.5F)) / 4;
            fresh.group = group;
            fresh.band = train.buffer.band();
            placePlainly(plain, fresh);
        }
        group = (group / 256 + 1) * 256;
    }
    ASSERT_EQ(list_.size(), plain.size());
    ASSERT_GT(plain.size(), 100U);
    for (std::size_t i = 0; i < plain.size(); ++i) {
        EXPECT_EQ(list_[i].pos, plain[i].pos);
        EXPECT_EQ(list_[i].phase, plain[i].phase);
        EXPECT_EQ(list_[i].interval, plain[i].interval);
        EXPECT_EQ(list_[i].group, plain[i].group);
        EXPECT_EQ(list_[i].band, plain[i].band);
    }
}

}  // namespace
