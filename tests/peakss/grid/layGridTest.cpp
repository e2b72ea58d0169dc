// SPDX-License-Identifier: MIT
// Worked examples at 48 kHz with candidates of band 2, whose offset of −3 ms is −144 samples. A
// beat of 500 ms is L = 24000 samples; with a candidate every L, the origin is 0 − 144, and a
// phrase of P beats measures ((P × 24000 − (−144)) × 4 + (−144) × 4) / (P × 4) = 24000 exactly,
// whatever P.
#include "peakss/grid/layGrid.h"

#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::bandsOf;
using beatatlas::test::beatAt;
using beatatlas::test::beatsAt;
using beatatlas::test::evenBeats;
using beatatlas::test::joined;
using beatatlas::test::kHighest;
using beatatlas::test::kLowest;
using beatatlas::test::kRate;
using beatatlas::test::positionsOf;
using beatatlas::test::segmentAt;
using beatatlas::test::yieldCount;
using peakss::BandOffsets;
using peakss::BeatInfo;
using peakss::BeatList;
using peakss::GridPhrase;
using peakss::LaidGrid;
using Positions = std::vector<int>;
using Bands = std::vector<int>;

constexpr GridPhrase kPhraseOf32{4, 16, 12};
constexpr GridPhrase kPhraseOf16{4, 8, 4};
constexpr GridPhrase kPhraseOf4{4, 0, 0};

Positions operator+(Positions a, const Positions& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Positions evenPositions(int first, int distance, int count) {
    return positionsOf(evenBeats(first, distance, count));
}

BeatInfo fitted(int pos, float interval, int spacing, int skip) {
    BeatInfo segment = segmentAt(pos, interval);
    peakss::setAnchorSpacing(segment, spacing);
    peakss::setSkippedBeats(segment, skip);
    return segment;
}

// Band 2 at every count-th beat from one on, up to a beat, none elsewhere.
Bands bandsEvery(int count, int first, int last, std::size_t size) {
    Bands bands(size, -1);
    for (int i = first; i <= last; i += count) bands[static_cast<std::size_t>(i)] = 2;
    return bands;
}

std::vector<int> headsOf(const BeatList& beats) {
    std::vector<int> heads;
    for (std::size_t i = 0; i < beats.size(); ++i)
        if (beats[i].segHead) heads.push_back(static_cast<int>(i));
    return heads;
}

LaidGrid laid(const BeatList& segments, const BeatList& raw, const GridPhrase& phrase, int length) {
    const std::vector<BandOffsets> offsetsMs(segments.size(), peakss::kDetectorOffsetsMs);
    return peakss::layGrid(segments, offsetsMs, raw, phrase, length, kRate);
}

class LayGridTest : public beatatlas::test::RoundTowardZero {};

/** The examples that come out the same for every phrase length. */
class LayGridInAnyPhraseTest : public beatatlas::test::RoundTowardZero,
                               public ::testing::WithParamInterface<GridPhrase> {};

INSTANTIATE_TEST_SUITE_P(, LayGridInAnyPhraseTest,
                         ::testing::Values(kPhraseOf32, kPhraseOf16, kPhraseOf4),
                         [](const auto& test) {
                             const GridPhrase& phrase = test.param;
                             return std::to_string(phrase.barBeats + phrase.frontBeats +
                                                   phrase.backBeats);
                         });

// Candidates at beats 0 to 43, the track ends at beat 44. The last grid beat, −144 + 44 × 24000,
// lies before that. Back-fill would begin at −24144, before the track.
TEST_P(LayGridInAnyPhraseTest, IdealListGivesTheIdealGrid) {
    const LaidGrid grid =
        laid({fitted(0, 500.0F, 16, 0)}, evenBeats(0, 24000, 44), GetParam(), 44 * 24000);
    EXPECT_EQ(positionsOf(grid.beats), evenPositions(-144, 24000, 45));
    EXPECT_EQ(bandsOf(grid.beats), bandsEvery(4, 0, 40, 45));
    EXPECT_EQ(headsOf(grid.beats), (std::vector<int>{0}));
    EXPECT_EQ(grid.firstAnchor, 0);
    EXPECT_EQ(grid.lastAnchor, 40);
    EXPECT_EQ(grid.firstOrigin, -144);
    for (const BeatInfo& beat : grid.beats) {
        EXPECT_EQ(beat.interval, 500.0F);
        EXPECT_EQ(beat.group, 0);
        EXPECT_EQ(beat.phase, 0.0F);
    }
}

// Beats 10 to 14 are missing: the walk goes on at its own pace and meets beat 16 where it expects
// it.
TEST_P(LayGridInAnyPhraseTest, GapIsCrossedAtTheSegmentsTempo) {
    const BeatList raw = joined(evenBeats(0, 24000, 10), evenBeats(15 * 24000, 24000, 29));
    const LaidGrid grid = laid({fitted(0, 500.0F, 16, 0)}, raw, GetParam(), 44 * 24000);
    EXPECT_EQ(positionsOf(grid.beats), evenPositions(-144, 24000, 45));
    Bands bands = bandsEvery(4, 0, 40, 45);
    bands[12] = -1;
    EXPECT_EQ(bandsOf(grid.beats), bands);
}

// The list begins at 200000; the fit has found the start 8000, eight whole beats before. The walk
// skips them, the origin is 199856, and nine beats are filled in before it, of which the first, at
// −16144, lies before the track.
TEST_P(LayGridInAnyPhraseTest, LateListIsFilledBackToTheStart) {
    const LaidGrid grid =
        laid({fitted(8000, 500.0F, 16, 8)}, evenBeats(200000, 24000, 35), GetParam(), 44 * 24000);
    EXPECT_EQ(positionsOf(grid.beats), evenPositions(7856, 24000, 44));
    EXPECT_EQ(bandsOf(grid.beats), bandsEvery(4, 8, 40, 44));
    EXPECT_EQ(headsOf(grid.beats), (std::vector<int>{8}));
    EXPECT_EQ(grid.firstAnchor, 8);
    EXPECT_EQ(grid.lastAnchor, 40);
    EXPECT_EQ(grid.firstOrigin, 199856);
}

// 120 BPM, then 150 (L = 19200) from 768000 on; the second segment is fitted to 748800 with skip 4.
// The first one's beats stop before 748800, at 743856. The second's origin is 825600 − 144; five
// beats back from it would begin at 729456, before the grid's last beat, so four are filled in,
// from 748656 on.
TEST_P(LayGridInAnyPhraseTest, TempoChangeJoinsTwoGrids) {
    const BeatList raw = joined(evenBeats(0, 24000, 32), evenBeats(768000, 19200, 40, 400.0F));
    const LaidGrid grid =
        laid({fitted(0, 500.0F, 16, 0), fitted(748800, 400.0F, 16, 4)}, raw, GetParam(), 1536000);
    EXPECT_EQ(positionsOf(grid.beats),
              evenPositions(-144, 24000, 32) + evenPositions(748656, 19200, 42));
    EXPECT_EQ(headsOf(grid.beats), (std::vector<int>{0, 36}));
    EXPECT_EQ(grid.firstAnchor, 0);
    EXPECT_EQ(grid.lastAnchor, 72);
    for (std::size_t i = 0; i < grid.beats.size(); ++i)
        EXPECT_EQ(grid.beats[i].interval, i < 32 ? 500.0F : 400.0F);
}

// Behind the gap of beats 10 to 14 the candidates come 2000 samples late. Phrases of 4 beats: up to
// beat 12 all is as before (no candidate there); from 287856 to the late beat 16 there are ((386000
// − 287856) × 4 − 576) / 16 = 24500 a beat, told by the beat before the bar. Behind that all is
// even again.
TEST_F(LayGridTest, LateReturnBehindAGapIsMeasuredInItsBar) {
    const BeatList raw = joined(evenBeats(0, 24000, 10), evenBeats(15 * 24000 + 2000, 24000, 29));
    const LaidGrid grid = laid({fitted(0, 500.0F, 16, 0)}, raw, kPhraseOf4, 44 * 24000);
    EXPECT_EQ(positionsOf(grid.beats), evenPositions(-144, 24000, 13) +
                                           evenPositions(312356, 24500, 3) +
                                           evenPositions(385856, 24000, 28));
    EXPECT_EQ(grid.beats[12].interval, static_cast<float>(24500.0 / 48.0));
    EXPECT_EQ(grid.beats[16].interval, 500.0F);
    EXPECT_EQ(grid.lastAnchor, 40);
}

// Phrases of a single beat measure each beat by itself: 24000 up to the candidate at 24000, then
// ((49000 − 23856) × 4 − 576) / 4 = 25000 up to the one that comes 1000 samples late, then 24000.
TEST_F(LayGridTest, PhraseOfOneBeatMeasuresEveryBeat) {
    const BeatList raw = beatsAt({0, 24000, 49000, 73000, 97000});
    const LaidGrid grid = laid({fitted(0, 500.0F, 4, 0)}, raw, {1, 0, 0}, 97000);
    EXPECT_EQ(positionsOf(grid.beats), (Positions{-144, 23856, 48856, 72856, 96856}));
}

// The same list in phrases of 32. The first ends at beat 32, 770000: ((770000 + 144) × 4 − 576) /
// 128 = 24062.5 for beats 0 to 20. The window slides to beat 4 (96106) and ends at 866000:
// 24054.6875 for beats 21 to 24, and so on:
//   from 192356 to 962000: ((962000 − 192356) × 4 − 576) / 128 = 24046.875     beats 25 to 28
//   from 288606 to 1058000: ((1058000 − 288606) × 4 − 576) / 128 = 24039.0625   beats 29 to 32
// The walk has then reached the end, 1056000, and the phrase from 384856 (beat 16) is measured over
// 28 beats:
//   ((1058000 − 384856) × 4 − 576) / 112 = 24035.714…
// for the beats behind 32, the first at 769667 + 24035.71 = 793702.7.
TEST_F(LayGridTest, LateReturnBehindAGapIsSpreadOverAPhraseOf32) {
    const BeatList raw = joined(evenBeats(0, 24000, 10), evenBeats(15 * 24000 + 2000, 24000, 29));
    const LaidGrid grid = laid({fitted(0, 500.0F, 16, 0)}, raw, kPhraseOf32, 44 * 24000);
    EXPECT_EQ(positionsOf(grid.beats),
              (Positions{-144,   23918,  47981,  72043,  96106,  120168, 144231,  168293, 192356,
                         216418, 240481, 264543, 288606, 312668, 336731, 360793,  384856, 408918,
                         432981, 457043, 481106, 505160, 529215, 553270, 577324,  601370, 625417,
                         649464, 673511, 697550, 721589, 745628, 769667, 793702,  817738, 841774,
                         865809, 889845, 913881, 937916, 961952, 985988, 1010024, 1034059}));
    const auto ms = [](double samples) { return static_cast<float>(samples / 48.0); };
    EXPECT_EQ(grid.beats[15].interval, 500.0F);  // the segment's own
    EXPECT_EQ(grid.beats[16].interval, ms(24062.5));
    EXPECT_EQ(grid.beats[20].interval, ms(24054.6875));
    EXPECT_EQ(grid.beats[24].interval, ms(24046.875));
    EXPECT_EQ(grid.beats[28].interval, ms(24039.0625));
    EXPECT_EQ(grid.beats[32].interval, ms((673144.0 * 4.0 - 576.0) / 112.0));
    EXPECT_EQ(grid.beats[43].interval, ms((673144.0 * 4.0 - 576.0) / 112.0));
}

// And in phrases of 16: 8 beats of front, then bars. Beats 0 to 12 at ((386000 + 144) × 4 − 576) /
// 64 = 24125, the first phrase ending at the late beat 16; then from 96356 to 482000: 24093.75 for
// beats 13 to 16; from 192856 to 578000: 24062.5; from 289356 to 674000: 24031.25; from 385731 to
// 770000: 24007.8125.
TEST_F(LayGridTest, LateReturnBehindAGapIsSpreadOverAPhraseOf16) {
    const BeatList raw = joined(evenBeats(0, 24000, 10), evenBeats(15 * 24000 + 2000, 24000, 29));
    const LaidGrid grid = laid({fitted(0, 500.0F, 16, 0)}, raw, kPhraseOf16, 44 * 24000);
    const Positions positions = positionsOf(grid.beats);
    const Positions head(positions.begin(), positions.begin() + 29);
    EXPECT_EQ(head, (Positions{-144,   23981,  48106,  72231,  96356,  120481, 144606, 168731,
                               192856, 216981, 241106, 265231, 289356, 313449, 337543, 361637,
                               385731, 409793, 433856, 457918, 481981, 506012, 530043, 554074,
                               578106, 602113, 626121, 650129, 674137}));
    const auto ms = [](double samples) { return static_cast<float>(samples / 48.0); };
    EXPECT_EQ(grid.beats[8].interval, ms(24125.0));
    EXPECT_EQ(grid.beats[12].interval, ms(24093.75));
    EXPECT_EQ(grid.beats[16].interval, ms(24062.5));
    EXPECT_EQ(grid.beats[20].interval, ms(24031.25));
    EXPECT_EQ(grid.beats[24].interval, ms(24007.8125));
}

// Ten beats in a phrase of 32: one part phrase, front beats only, measured over ten.
TEST_F(LayGridTest, SegmentShorterThanAPhraseIsMeasuredAsFarAsItGoes) {
    const LaidGrid grid =
        laid({fitted(0, 500.0F, 4, 0)}, evenBeats(0, 24000, 11), kPhraseOf32, 240000);
    EXPECT_EQ(positionsOf(grid.beats), evenPositions(-144, 24000, 11));
    EXPECT_EQ(bandsOf(grid.beats), Bands(11, 2));
    EXPECT_EQ(grid.lastAnchor, 10);
}

// Beats 0 to 44 are heard, the last of them where the track ends, and each is an anchor. Its grid
// beat lies 144 samples before the end and is tied to it, in whatever part of a phrase the walk has
// ended.
TEST_P(LayGridInAnyPhraseTest, BeatsBehindTheLastPhraseTakeAnchorsUpToTheWalksEnd) {
    const LaidGrid grid =
        laid({fitted(0, 500.0F, 4, 0)}, evenBeats(0, 24000, 45), GetParam(), 44 * 24000);
    EXPECT_EQ(bandsOf(grid.beats), Bands(45, 2));
    EXPECT_EQ(grid.lastAnchor, 44);
}

// The end lies exactly where beat 20, or beat 10, would be laid.
TEST_P(LayGridInAnyPhraseTest, NoBeatStandsAtTheEnd) {
    for (const int beats : {20, 10}) {
        const LaidGrid grid = laid({fitted(0, 500.0F, 4, 0)}, evenBeats(0, 24000, 45), GetParam(),
                                   beats * 24000 - 144);
        EXPECT_EQ(positionsOf(grid.beats), evenPositions(-144, 24000, beats));
    }
}

// A band-0 candidate is heard 30 ms late (1440 samples), the one of band 2 four beats on 3 ms
// (144): between the beats themselves lie 4 × 24000. The walk expects 1440 + 96000 and finds 96144.
TEST_F(LayGridTest, MeasurementAllowsForTheBandsOfBothAnchors) {
    const BeatList raw{beatAt(1440, 500.0F, 0, 20, 0), beatAt(96144, 500.0F, 1, 20, 2)};
    const LaidGrid grid = laid({fitted(0, 500.0F, 16, 0)}, raw, kPhraseOf4, 90000);
    EXPECT_EQ(positionsOf(grid.beats), (Positions{0, 24000, 48000, 72000}));
    EXPECT_EQ(bandsOf(grid.beats), (Bands{0, -1, -1, -1}));
}

// The beat filled in before the origin, 24143 − 24143.5, truncates to 0, which is not before the
// track.
TEST_F(LayGridTest, FilledInBeatIsJudgedByItsTruncatedPosition) {
    // ((120861 − 24143) × 4 − 576) / 16 = 24143.5
    const LaidGrid grid =
        laid({fitted(24287, 503.0F, 16, 0)}, beatsAt({24287, 120861}), kPhraseOf4, 100000);
    EXPECT_EQ(positionsOf(grid.beats), (Positions{0, 24143, 48286, 72430, 96573}));
    EXPECT_EQ(headsOf(grid.beats), (std::vector<int>{1}));
}

// Nothing near: the origin lies −3 ms, the largest of the six offsets, from the start.
TEST_F(LayGridTest, OriginWithoutACandidateTakesTheLargestOffset) {
    const LaidGrid grid = laid({fitted(0, 500.0F, 4, 0)}, {}, kPhraseOf4, 100000);
    EXPECT_EQ(positionsOf(grid.beats), evenPositions(-144, 24000, 5));
    EXPECT_EQ(bandsOf(grid.beats), Bands(5, -1));
    EXPECT_EQ(headsOf(grid.beats), (std::vector<int>{0}));  // head of a phrase all the same
    EXPECT_EQ(grid.firstAnchor, -1);
    EXPECT_EQ(grid.lastAnchor, -1);
}

// The first segment ends inside a phrase of 32 on a candidate of band 0 at 264000. The second has
// none near, and its origin takes that band's −30 ms instead of −3.
TEST_F(LayGridTest, OffsetOfAPartPhrasesEndIsCarriedToLaterSegments) {
    BeatList raw = evenBeats(0, 24000, 12);
    for (BeatInfo& beat : raw) beat.band = 0;
    const LaidGrid grid =
        laid({fitted(0, 500.0F, 4, 0), fitted(250000, 500.0F, 4, 0)}, raw, kPhraseOf32, 300000);
    EXPECT_EQ(positionsOf(grid.beats),
              evenPositions(-1440, 24000, 11) + evenPositions(250000 - 1440, 24000, 3));
}

// The walk ends on a whole phrase: nothing is carried.
TEST_F(LayGridTest, OffsetOfAWholePhrasesEndIsNotCarried) {
    BeatList raw = evenBeats(0, 24000, 9);
    for (BeatInfo& beat : raw) beat.band = 0;
    const LaidGrid grid =
        laid({fitted(0, 500.0F, 4, 0), fitted(185000, 500.0F, 4, 0)}, raw, kPhraseOf4, 200000);
    EXPECT_EQ(positionsOf(grid.beats), evenPositions(-1440, 24000, 8) + Positions{185000 - 144});
}

// The candidate at 126100 draws the second segment's walk past its end, 126000: no head, no front.
// The grid goes on from the first segment's last beat, 119856, at the second's own 4800 samples.
TEST_F(LayGridTest, SegmentWalkedPastItsEndOnlyContinuesTheGrid) {
    const BeatList raw = joined(evenBeats(0, 24000, 5), beatsAt({126100}));
    const LaidGrid grid =
        laid({fitted(0, 500.0F, 4, 0), fitted(124000, 100.0F, 4, 0), fitted(126000, 500.0F, 4, 0)},
             raw, kPhraseOf4, 126001);
    Positions expected = evenPositions(-144, 24000, 6) + Positions{119856 + 4800};
    // The third finds the same candidate and is past its end as well.
    EXPECT_EQ(positionsOf(grid.beats), expected);
    EXPECT_EQ(grid.beats.back().interval, 500.0F);  // the last beat tells the last length
    EXPECT_EQ(headsOf(grid.beats), (std::vector<int>{0}));
}

TEST_F(LayGridTest, FirstSegmentWalkedPastItsEndLeavesAnEmptyGridAndAReference) {
    const LaidGrid grid = laid({fitted(1000, 500.0F, 4, 0)}, beatsAt({3000}), kPhraseOf4, 2000);
    EXPECT_TRUE(grid.beats.empty());
    EXPECT_EQ(grid.firstOrigin, 3000 - 144);
}

// Skipping stops before a step that would reach the end: from 0 by 24000 to 72000, not to 96000.
TEST_F(LayGridTest, SkippingStopsBeforeTheEnd) {
    const LaidGrid grid = laid({fitted(0, 500.0F, 4, 9)}, {}, kPhraseOf4, 96000);
    EXPECT_EQ(grid.firstOrigin, 72000 - 144);
    // Ten beats are due before it; three fit behind −144.
    EXPECT_EQ(positionsOf(grid.beats), (Positions{23856, 47856, 71856, 95856}));
}

TEST_F(LayGridTest, NegativeSkipFillsNothingIn) {
    const LaidGrid grid = laid({fitted(48000, 500.0F, 4, -1)}, {}, kPhraseOf4, 96000);
    EXPECT_EQ(positionsOf(grid.beats), (Positions{47856, 71856, 95856}));
}

// Spacing 8: every other beat. Spacing 0 counts as 4: every beat.
TEST_F(LayGridTest, AnchorsStandAtMultiplesOfTheSpacing) {
    const BeatList raw = evenBeats(0, 24000, 9);
    EXPECT_EQ(bandsOf(laid({fitted(0, 500.0F, 8, 0)}, raw, kPhraseOf4, 190000).beats),
              (Bands{2, -1, 2, -1, 2, -1, 2, -1}));
    EXPECT_EQ(bandsOf(laid({fitted(0, 500.0F, 0, 0)}, raw, kPhraseOf4, 190000).beats), Bands(8, 2));
}

// A band beyond the detectors' six is written as it is, but has no offset and ties no anchor.
TEST_F(LayGridTest, CandidatesOfUnknownBandsAreNoAnchors) {
    BeatList raw = evenBeats(0, 24000, 9);
    for (BeatInfo& beat : raw) beat.band = 6;
    raw[4].band = kLowest;
    const LaidGrid grid = laid({fitted(0, 500.0F, 4, 0)}, raw, kPhraseOf4, 190000);
    EXPECT_EQ(positionsOf(grid.beats), evenPositions(-144, 24000, 8));
    EXPECT_EQ(bandsOf(grid.beats)[0], 6);
    EXPECT_EQ(grid.firstAnchor, -1);
    EXPECT_EQ(grid.lastAnchor, -1);
}

TEST_F(LayGridTest, SingleAnchorIsFirstAndNotLast) {
    const LaidGrid grid = laid({fitted(0, 500.0F, 4, 0)}, beatsAt({48000}), kPhraseOf4, 100000);
    EXPECT_EQ(grid.firstAnchor, 2);
    EXPECT_EQ(grid.lastAnchor, -1);
}

TEST_F(LayGridTest, PhraseThatIsNoneCountsAsBarsOfFour) {
    const BeatList raw = evenBeats(0, 24000, 20);
    const Positions expected = evenPositions(-144, 24000, 20);
    for (const GridPhrase& phrase :
         {GridPhrase{0, 0, 0}, GridPhrase{-4, 8, 4}, GridPhrase{4, -1, 0},
          GridPhrase{4, 0, kLowest}, GridPhrase{kHighest, kHighest, kHighest}})
        EXPECT_EQ(positionsOf(laid({fitted(0, 500.0F, 4, 0)}, raw, phrase, 470000).beats),
                  expected);
}

// Tempi that no table can hold would walk for ever, or lay a beat on every sample.
TEST_F(LayGridTest, SegmentsWhoseBeatIsNoTempoLayNothing) {
    const BeatList raw = evenBeats(0, 24000, 5);
    for (const float interval :
         {0.0F, -500.0F, 1e-30F, 1.0F, 50.0F, std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN()}) {
        const LaidGrid grid = laid({fitted(0, interval, 4, kHighest)}, raw, kPhraseOf32, kHighest);
        EXPECT_TRUE(grid.beats.empty()) << interval;
    }
    EXPECT_TRUE(laid({}, raw, kPhraseOf32, kHighest).beats.empty());
}

// 51 ms are 2448 samples, hardly more than the tolerance of 2400: with a candidate on every 100th
// sample each snap may hold the walk back. It ends, and no measured beat falls below the 50 ms
// bound.
TEST_F(LayGridTest, CrowdedCandidatesDoNotHoldTheWalkBackForEver) {
    const BeatList raw = evenBeats(0, 100, 500);
    const LaidGrid grid = laid({fitted(0, 51.0F, 4, 0)}, raw, kPhraseOf4, 50000);
    ASSERT_FALSE(grid.beats.empty());
    EXPECT_LE(grid.beats.size(), 50000U / 2400U + 3U);
}

// From 0 the walk expects 2448 and is held back to 60, behind the end: one beat of 60 samples, or
// of less than nothing when that candidate is heard 30 ms late. Neither is a beat; the segment's
// own length is laid, of which no further beat lies before the end.
TEST_F(LayGridTest, MeasuredLengthThatIsNoBeatGivesWayToTheSegments) {
    for (const int band : {2, 0}) {
        const BeatList raw{beatAt(0), beatAt(60, 500.0F, 1, 20, band)};
        const LaidGrid grid = laid({fitted(0, 51.0F, 4, 0)}, raw, kPhraseOf32, 50);
        EXPECT_EQ(positionsOf(grid.beats), (Positions{-144}));
        EXPECT_EQ(grid.beats[0].interval, 51.0F);
    }
}

TEST_F(LayGridTest, SegmentsAcrossTheWholeNumberRangeAreSafe) {
    const BeatList raw{beatAt(kLowest), beatAt(0), beatAt(kHighest)};
    const LaidGrid grid =
        laid({fitted(kLowest, 20000.0F, 4, kHighest), fitted(kHighest, 500.0F, 4, kLowest)}, raw,
             kPhraseOf32, kHighest);
    EXPECT_LT(grid.beats.size(), 10000U);
    EXPECT_LT(laid({fitted(kHighest, 500.0F, 4, 0)}, raw, kPhraseOf32, kLowest).beats.size(), 10U);
}

TEST_F(LayGridTest, YieldsOncePerBeatWalked) {
    const BeatList raw = evenBeats(0, 24000, 20);
    const long before = yieldCount();
    laid({fitted(0, 500.0F, 16, 0)}, raw, kPhraseOf4, 20 * 24000);
    EXPECT_EQ(yieldCount() - before, 20);
}

}  // namespace
