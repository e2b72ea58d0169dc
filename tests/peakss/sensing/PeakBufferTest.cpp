// SPDX-License-Identifier: MIT
#include "peakss/sensing/PeakBuffer.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "peakss/sensing/PeakTrain.h"
#include "peakss/sensing/PlainBeatSearch.h"
#include "peakss/sensing/beatReadings.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::BeatSearchResult;
using beatatlas::test::PeakTrain;
using beatatlas::test::plainBeatSearch;
using peakss::PeakBuffer;
using peakss::PeakInfo;
using peakss::RingStack;

constexpr float kBar = 4.0F;

// A ring that holds these intervals, given newest first.
RingStack<PeakInfo> ringOf(const std::vector<float>& newestFirst, int capacity = 32) {
    RingStack<PeakInfo> ring;
    ring.create(capacity);
    for (auto x = newestFirst.rbegin(); x != newestFirst.rend(); ++x) ring.push({0, 1.0F, *x});
    return ring;
}

BeatSearchResult search(float newest, const RingStack<PeakInfo>& ring, int row = 0,
                        float bar = kBar) {
    BeatSearchResult result;
    result.row =
        PeakBuffer::calcBeat_s(newest, ring, bar, row, &result.avg, &result.dev, &result.count);
    return result;
}

BeatSearchResult search(float newest, const std::vector<float>& older, int row = 0) {
    return search(newest, ringOf(older), row);
}

class PeakBufferTest : public beatatlas::test::RoundTowardZero {
protected:
    PeakTrain train_;
    const PeakBuffer& buffer_ = train_.buffer;
};

TEST_F(PeakBufferTest, FreshBufferHasNoBeat) {
    PeakBuffer fresh;
    EXPECT_EQ(fresh.band(), -1);
    EXPECT_FALSE(fresh.beatFound());
    EXPECT_EQ(fresh.dev(), FLT_MAX);
    fresh.create(3);
    EXPECT_EQ(fresh.band(), 3);
    EXPECT_EQ(fresh.ring().capacity(), 32);
}

TEST_F(PeakBufferTest, FirstPeakHasNoIntervalAndNoBeat) {
    EXPECT_FALSE(train_.peakAt(24000, 0.5F));
    ASSERT_EQ(buffer_.ring().count(), 1);
    EXPECT_EQ(buffer_.ring().back(0).pos, 24000);
    EXPECT_EQ(buffer_.ring().back(0).level, 0.5F);
    EXPECT_EQ(buffer_.ring().back(0).interval, 0.0F);
}

TEST_F(PeakBufferTest, PeakAtPositionZeroCountsAsNoneYet) {
    train_.peakAt(0);
    train_.peakAt(24000);
    EXPECT_EQ(buffer_.ring().back(0).interval, 0.0F);
}

TEST_F(PeakBufferTest, IntervalIsTheDistanceToThePreviousPeakInMs) {
    train_.peakAt(24000);
    train_.peakAt(24000 + 22500);
    EXPECT_EQ(buffer_.ring().back(0).interval, 468.75F);
    EXPECT_EQ(buffer_.interval(), 468.75F);
}

// 500 ms as one beat: the newest and three stored intervals fill the bar, and there must be a
// fourth stored peak to spare. As 1.25 beats the bar overflows (1.25, 2.5, 3.75, 5), as 0.75 beats
// too (…, 3.75, 4.5).
TEST_F(PeakBufferTest, FifthPeakOfASteadyPulseClosesTheFirstBeat) {
    train_.peakAt(24000);
    for (int peak = 2; peak <= 4; ++peak) EXPECT_FALSE(train_.peakAfterMs(500)) << peak;
    EXPECT_TRUE(train_.peakAfterMs(500));
    EXPECT_EQ(buffer_.interval(), 500.0F);
    EXPECT_EQ(buffer_.dev(), 0.0F);
    EXPECT_EQ(buffer_.beatPos(), 24000 * 5);
    EXPECT_EQ(buffer_.beatLevel(), 1.0F);
    // The entry after the bar is the first peak, which has no interval to agree with: three
    // intervals back.
    EXPECT_EQ(buffer_.count(), 3);
}

TEST_F(PeakBufferTest, SixthPeakOfASteadyPulseAgreesOneFurtherBack) {
    train_.peakAt(24000);
    EXPECT_TRUE(train_.peaksAfterMs({500, 500, 500, 500, 500}));
    EXPECT_EQ(buffer_.count(), 4);
}

// The count stops where 31 peaks behind the newest have been looked at, however long the pulse goes
// on.
TEST_F(PeakBufferTest, AgreementIsCountedThirtyIntervalsBackAtMost) {
    train_.peakAt(24000);
    train_.peaksAfterMs(std::vector<int>(30, 500));
    EXPECT_EQ(buffer_.count(), 29);
    train_.peakAfterMs(500);
    EXPECT_EQ(buffer_.count(), 30);
    train_.peaksAfterMs(std::vector<int>(40, 500));
    EXPECT_EQ(buffer_.count(), 30);
}

TEST_F(PeakBufferTest, RingKeepsTheLatestThirtyTwoPeaks) {
    train_.peakAt(24000);
    train_.peaksAfterMs(std::vector<int>(40, 500));
    ASSERT_EQ(buffer_.ring().count(), 32);
    EXPECT_EQ(buffer_.ring().back(0).pos, 24000 * 41);
    EXPECT_EQ(buffer_.ring().back(31).pos, 24000 * 10);
}

TEST_F(PeakBufferTest, RawIntervalIsStoredWithThePeakNotTheAveragedOne) {
    train_.peakAt(24000);
    EXPECT_TRUE(train_.peaksAfterMs({500, 500, 500, 500, 508}));
    EXPECT_EQ(buffer_.interval(), 502.0F);
    EXPECT_EQ(buffer_.dev(), 6.0F);
    EXPECT_EQ(buffer_.ring().back(0).interval, 508.0F);
}

TEST_F(PeakBufferTest, StrayPeakHasNoBeatAndKeepsTheStateOfTheLast) {
    train_.peakAt(24000);
    train_.peaksAfterMs({500, 500, 500, 500, 500});
    EXPECT_FALSE(train_.peakAfterMs(440));
    EXPECT_EQ(buffer_.interval(), 440.0F);
    EXPECT_EQ(buffer_.count(), 4);
    EXPECT_EQ(buffer_.beatPos(), 24000 * 6);
}

// 325 ms as one beat is confirmed from the fifth peak on but faster than 180 BPM; as half a beat it
// takes seven stored intervals and one to spare, so the ninth peak.
TEST_F(PeakBufferTest, BeatFasterThan180BpmIsPassedOverForASlowerReading) {
    train_.peakAt(24000);
    for (int peak = 2; peak <= 8; ++peak) EXPECT_FALSE(train_.peakAfterMs(325)) << peak;
    EXPECT_TRUE(train_.peakAfterMs(325));
    EXPECT_EQ(buffer_.interval(), 650.0F);
}

// 15984 samples are exactly 333 ms.
TEST_F(PeakBufferTest, BeatOfExactly333MsIsReported) {
    train_.peakAt(24000);
    EXPECT_TRUE(train_.peaksAfterMs({333, 333, 333, 333}));
    EXPECT_EQ(buffer_.interval(), 333.0F);
}

// 3 + 3 + 2 eighths at 120 BPM: dotted quarters of 750 ms and a quarter of 500 fill a bar.
TEST_F(PeakBufferTest, SyncopatedBarTellsItsBeat) {
    train_.peakAt(24000);
    EXPECT_TRUE(train_.peaksAfterMs({750, 750, 500, 750, 750, 500}));
    EXPECT_EQ(buffer_.interval(), 500.0F);
}

// The same bar heard from a dotted quarter: 750 ms are 1.5 beats of 500, and 750 (3) and 500 (4)
// fill the bar. As two beats of 375, 750 and 750 fill it too, but 500 does not agree with that.
TEST_F(PeakBufferTest, NewestIntervalMayBeADottedQuarter) {
    train_.peakAt(24000);
    EXPECT_TRUE(train_.peaksAfterMs({750, 750, 500, 750, 750}));
    EXPECT_EQ(buffer_.interval(), 500.0F);
}

// 700 ms fill the bar as four single beats and as two double ones of 350. A steady pulse agrees
// with both to its very beginning.
TEST_F(PeakBufferTest, EarlierReadingStaysWhenALaterOneIsEquallyConfirmed) {
    train_.peakAt(24000);
    train_.peaksAfterMs(std::vector<int>(8, 700));
    const std::vector<float> older = {700, 700, 700, 700, 700, 700, 700, 0};
    EXPECT_EQ(search(700.0F, older, 4).count, 7);
    EXPECT_EQ(search(700.0F, older, 5).count, 7);
    EXPECT_EQ(buffer_.interval(), 700.0F);
    EXPECT_EQ(buffer_.count(), 7);
}

// Before the four of 700 ms lie five of 438: 1.25 beats of 350, but no number of quarters of 700.
// The single beat is confirmed by the three intervals of its bar, the double one by all stored but
// the oldest.
TEST_F(PeakBufferTest, LaterReadingWithMoreAgreeingPeaksReplacesTheEarlier) {
    train_.peakAt(24000);
    train_.peaksAfterMs({438, 438, 438, 438, 438});
    EXPECT_TRUE(train_.peaksAfterMs({700, 700, 700, 700}));
    const std::vector<float> older = {700, 700, 700, 438, 438, 438, 438, 438, 0};
    EXPECT_EQ(search(700.0F, older, 4).count, 3);
    EXPECT_EQ(search(700.0F, older, 5).count, 8);
    EXPECT_EQ(buffer_.interval(), 350.0F);
    EXPECT_EQ(buffer_.count(), 8);
}

TEST_F(PeakBufferTest, ResetForgetsPeaksAndBeat) {
    train_.peakAt(24000);
    train_.peaksAfterMs({500, 500, 500, 500});
    train_.buffer.reset();
    EXPECT_FALSE(buffer_.beatFound());
    EXPECT_EQ(buffer_.ring().count(), 0);
    EXPECT_EQ(buffer_.dev(), FLT_MAX);
    EXPECT_EQ(buffer_.count(), 0);
    EXPECT_EQ(buffer_.interval(), 0.0F);
    train_.peakAfterMs(500);
    EXPECT_EQ(buffer_.ring().back(0).interval, 0.0F);
}

TEST_F(PeakBufferTest, DistanceAcrossTheWrapOfPositionsIsKept) {
    const int nearMax = std::numeric_limits<int>::max() - 12000;
    train_.peakAt(nearMax);
    train_.peakAt(static_cast<int>(static_cast<unsigned>(nearMax) + 24000U));
    EXPECT_EQ(buffer_.ring().back(0).interval, 500.0F);
}

// Every bound is outside its row: an interval of 500 ms is neither 1.5 beats (500 … 1276) nor
// anything that begins or ends there.
TEST_F(PeakBufferTest, BoundsOfTheReadingsAreStrict) {
    for (const peakss::BeatReadings& table : {peakss::kFirstReadings, peakss::kOlderReadings}) {
        for (const peakss::BeatReading& reading : table) {
            EXPECT_FALSE(reading.holds(reading.aboveMs));
            EXPECT_FALSE(reading.holds(reading.belowMs));
            EXPECT_TRUE(reading.holds(std::nextafter(reading.aboveMs, 4000.0F)));
            EXPECT_TRUE(reading.holds(std::nextafter(reading.belowMs, 0.0F)));
        }
    }
    EXPECT_FALSE(peakss::kFirstReadings[0].holds(500.0F));
}

TEST_F(PeakBufferTest, BothTablesHoldTheSameReadings) {
    for (const peakss::BeatReading& first : peakss::kFirstReadings) {
        int same = 0;
        for (const peakss::BeatReading& older : peakss::kOlderReadings)
            same += first.aboveMs == older.aboveMs && first.belowMs == older.belowMs &&
                            first.beats == older.beats
                        ? 1
                        : 0;
        EXPECT_EQ(same, 1) << first.beats;
    }
}

TEST_F(PeakBufferTest, IntervalThatNoReadingHoldsFindsNothing) {
    EXPECT_EQ(search(290.0F, {580, 580, 580, 580, 580}).row, -1);
    EXPECT_EQ(search(3333.0F, {580, 580, 580, 580, 580}).row, -1);
    EXPECT_EQ(search(0.0F, {580, 580, 580, 580, 580}).row, -1);
    EXPECT_EQ(search(-500.0F, {580, 580, 580, 580, 580}).row, -1);
    EXPECT_EQ(search(std::numeric_limits<float>::infinity(), {580, 580, 580}).row, -1);
    EXPECT_EQ(search(std::numeric_limits<float>::quiet_NaN(), {580, 580, 580}).row, -1);
}

TEST_F(PeakBufferTest, EmptyRingFindsNothing) {
    EXPECT_EQ(search(500.0F, std::vector<float>{}).row, -1);
    EXPECT_EQ(search(500.0F, ringOf({}, 0)).row, -1);
}

TEST_F(PeakBufferTest, SearchGoesOnAfterTheRowThatMatched) {
    const std::vector<float> older(20, 700.0F);
    const BeatSearchResult oneBeat = search(700.0F, older);
    EXPECT_EQ(oneBeat.row, 5);
    EXPECT_EQ(oneBeat.avg, 700.0F);
    const BeatSearchResult twoBeats = search(700.0F, older, oneBeat.row);
    EXPECT_EQ(twoBeats.row, 7);
    EXPECT_EQ(twoBeats.avg, 350.0F);
    EXPECT_EQ(search(700.0F, older, twoBeats.row).row, -1);
    EXPECT_EQ(search(700.0F, older, 9).row, -1);
    EXPECT_EQ(search(700.0F, older, 1000).row, -1);
    EXPECT_EQ(search(700.0F, older, -1).row, 5);
}

TEST_F(PeakBufferTest, OldestStoredIntervalNeverFillsTheBar) {
    EXPECT_EQ(search(700.0F, {700, 700, 700}, 4).avg, 350.0F);
    EXPECT_EQ(search(700.0F, {700, 700, 700, 700}, 4).avg, 700.0F);
}

// 2000 ms are four beats of 500, so the bar to fill is the double one. 1500 (3) makes 7; 1000 (2)
// makes 9, too many, and the target becomes 16; three more of 1000 make 15, and 500 fills it. (As
// 2.5 beats of 800 nothing fits 1500.)
TEST_F(PeakBufferTest, OverfullDoubleBarBecomesAFourfoldOne) {
    const BeatSearchResult found = search(2000.0F, {1500, 1000, 1000, 1000, 1000, 500, 3000, 0});
    EXPECT_EQ(found.row, 8);
    EXPECT_EQ(found.avg, 500.0F);
    EXPECT_EQ(found.count, 6);
}

TEST_F(PeakBufferTest, OverfullDoubleBarWithoutAFurtherPeakFails) {
    EXPECT_EQ(search(2000.0F, {1500, 1000, 1000}, 7).row, -1);
    EXPECT_EQ(search(2000.0F, {1500, 1000}, 7).row, -1);
}

// A bar of one beat. 1000 ms are two beats of 500, so the bar to fill is the double one; 500 more
// make 3, and a fourth beat would fill a fourfold bar. The one that follows in memory was dropped.
TEST_F(PeakBufferTest, DroppedPeaksFillNoBar) {
    RingStack<PeakInfo> ring = ringOf(std::vector<float>(32, 500.0F));
    ASSERT_EQ(search(1000.0F, ring, 0, 1.0F).avg, 500.0F);
    ring.clear();
    ring.push({0, 1.0F, 500.0F});
    EXPECT_EQ(search(1000.0F, ring, 0, 1.0F).row, -1);
}

// 4 + 3 + 2 = 9 beats, then 4 + 4 = 17: beyond the fourfold bar there is nothing more to fill.
TEST_F(PeakBufferTest, OverfullFourfoldBarFails) {
    EXPECT_EQ(search(2000.0F, {1500, 1000, 2000, 2000, 500, 500, 500, 500}, 7).row, -1);
}

// 510 (1), 510 (2), 510 (3), 1020 (5): a single bar has no larger one to go on with, though 16 is
// within reach.
TEST_F(PeakBufferTest, OverfullSingleBarFails) {
    EXPECT_EQ(search(510.0F, {510, 510, 1020, 510, 510, 510, 510, 510, 510, 510}, 4).row, -1);
}

// 520 / 1 differs from 500 by exactly the tolerance of 500, 20 ms.
TEST_F(PeakBufferTest, OlderIntervalExactlyAtTheToleranceDoesNotFit) {
    EXPECT_EQ(search(500.0F, {520, 500, 500, 500, 500}, 4).row, -1);
    EXPECT_EQ(search(500.0F, {519.5F, 500, 500, 500, 500}, 4).row, 5);
}

// The average of 500, 500, 500, 500 has a tolerance of 20 ms: 520 disagrees, 519 is one interval
// more.
TEST_F(PeakBufferTest, AgreementExactlyAtTheToleranceEnds) {
    EXPECT_EQ(search(500.0F, {500, 500, 500, 520, 500, 500, 500}, 4).count, 3);
    EXPECT_EQ(search(500.0F, {500, 500, 500, 519, 400, 500, 500}, 4).count, 4);
}

// Beyond 2.5 beats only whole ones are known: 2.75 × 500 = 1375 becomes 3 beats of 458.3 and
// disagrees; 5 beats become 4 of 625. 1250 is 2.5 beats, 2000 four.
TEST_F(PeakBufferTest, AgreementKnowsQuarterBeatsUpToTwoAndAHalfAndWholeOnesToFour) {
    const auto countBehindBar = [](float interval) {
        return search(500.0F, {500, 500, 500, interval, 100, 100}, 4).count;
    };
    EXPECT_EQ(countBehindBar(1250.0F), 4);
    EXPECT_EQ(countBehindBar(1375.0F), 3);
    EXPECT_EQ(countBehindBar(1500.0F), 4);
    EXPECT_EQ(countBehindBar(2000.0F), 4);
    EXPECT_EQ(countBehindBar(2500.0F), 3);
    EXPECT_EQ(countBehindBar(125.0F), 4);
    // Less than an eighth of a beat is none: the quotient is endless.
    EXPECT_EQ(countBehindBar(50.0F), 3);
}

// With a bar of 16 beats and a ring that is large enough: one beat and 30 halves fill it with the
// last entry that may be walked; one beat more is out of reach.
TEST_F(PeakBufferTest, NoMoreThanThirtyEntriesAreWalked) {
    const RingStack<PeakInfo> ring = ringOf(std::vector<float>(40, 300.0F), 40);
    EXPECT_EQ(search(600.0F, ring, 4, 16.0F).row, 5);
    EXPECT_EQ(search(600.0F, ring, 4, 16.0F).count, 31);
    EXPECT_EQ(search(600.0F, ring, 4, 16.5F).row, -1);
}

// Intervals of a band that now and then misses or invents a peak, around beats of 300 to 900 ms.
TEST_F(PeakBufferTest, AgreesWithThePlainSearchOnTenThousandBands) {
    std::uint32_t state = 12345;
    const auto draw = [&state](int below) {
        state = state * 1664525U + 1013904223U;
        return static_cast<int>((state >> 8U) % static_cast<std::uint32_t>(below));
    };
    const float shares[] = {0.5F, 0.75F, 1.0F, 1.0F, 1.0F, 1.25F, 1.5F, 2.0F, 2.5F, 3.0F, 4.0F};
    int found = 0;
    for (int band = 0; band < 10000; ++band) {
        const auto beat = static_cast<float>(300 + draw(600));
        const int spread = 1 + draw(30);
        const int variety = 1 + draw(11);
        const auto interval = [&] {
            const float share = shares[(2 + draw(variety)) % 11];
            return beat * share + static_cast<float>(draw(2 * spread) - spread) * 0.5F;
        };
        std::vector<float> older;
        const int stored = draw(33);
        for (int i = 0; i < stored; ++i) older.push_back(interval());
        if (stored != 0 && draw(2) == 0) older.back() = 0.0F;
        const float newest = interval();
        const RingStack<PeakInfo> ring = ringOf(older);
        int row = 0;
        while (row >= 0) {
            const BeatSearchResult expected = plainBeatSearch(newest, older, kBar, row);
            const BeatSearchResult actual = search(newest, ring, row);
            ASSERT_EQ(actual.row, expected.row) << "band " << band;
            ASSERT_EQ(actual.avg, expected.avg) << "band " << band;
            ASSERT_EQ(actual.dev, expected.dev) << "band " << band;
            ASSERT_EQ(actual.count, expected.count) << "band " << band;
            row = actual.row;
            found += row >= 0 ? 1 : 0;
        }
    }
    EXPECT_GT(found, 1000);
}

}  // namespace
