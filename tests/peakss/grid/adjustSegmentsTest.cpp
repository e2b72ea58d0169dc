// SPDX-License-Identifier: MIT
#include "peakss/grid/adjustSegments.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatAt;
using beatatlas::test::beatsAt;
using beatatlas::test::evenBeats;
using beatatlas::test::joined;
using beatatlas::test::kHighest;
using beatatlas::test::kLowest;
using beatatlas::test::kRate;
using beatatlas::test::segmentAt;
using beatatlas::test::yieldCount;
using peakss::BeatInfo;
using peakss::BeatList;

class AdjustSegmentsTest : public beatatlas::test::RoundTowardZero {
protected:
    static BeatList adjusted(BeatList segments, const BeatList& raw, int length) {
        peakss::adjustSegments(segments, raw, length, kRate);
        return segments;
    }
    static void expectSegment(const BeatInfo& segment, int pos, float interval, int spacing,
                              int skipped) {
        EXPECT_EQ(segment.pos, pos);
        EXPECT_EQ(segment.interval, interval);
        EXPECT_EQ(anchorSpacing(segment), spacing);
        EXPECT_EQ(skippedBeats(segment), skipped);
    }
};

// 44 beats of 24000 samples. Origin 0, every 4 beats: 11 beats met with a distance of 0, 11 × 3000
// points. That is more than half of what 44 beats could give (3000 × 44 × 0.5 < 4 × 33000): nothing
// else is tried.
TEST_F(AdjustSegmentsTest, IdealListIsTiedEveryFourBeatsFromItsStart) {
    const BeatList segments = adjusted({segmentAt(0)}, evenBeats(0, 24000, 44), 1056000);
    expectSegment(segments[0], 0, 500.0F, 16, 0);
}

// Of the multiples of 96 near 8000 (8000 = 200000 − 8 × 24000), 7968 is the nearest, 32 away. The
// walk from there first meets the beat at 200000, eight whole beats behind the lower bound: skip 8,
// start 8000.
TEST_F(AdjustSegmentsTest, LateListIsExtendedBackByWholeBeats) {
    const BeatList segments = adjusted({segmentAt(200000)}, evenBeats(200000, 24000, 35), 1056000);
    expectSegment(segments[0], 8000, 500.0F, 16, 8);
}

TEST_F(AdjustSegmentsTest, ListWithAGapIsFoundAllTheSame) {
    const BeatList raw = joined(evenBeats(0, 24000, 10), evenBeats(15 * 24000, 24000, 29));
    expectSegment(adjusted({segmentAt(0)}, raw, 1056000)[0], 0, 500.0F, 16, 0);
}

// 120 BPM up to 768000, then 150 (19200 samples, tolerance 2400). The second segment may reach back
// to 744000 + 2400, an eighth of its beat behind the raw beat before it. From 746400 in steps of
// 96, 748800 is the first origin whose walk (748800 + 76800 n) meets ten beats exactly; 768000
// itself would, too, but comes later. The first beat met is 825600: (825600 − 746400) / 19200 =
// 4.125, skip 4, start 825600 − 4 × 19200.
TEST_F(AdjustSegmentsTest, SegmentBehindATempoChangeReachesBackToThePreviousBeat) {
    const BeatList raw = joined(evenBeats(0, 24000, 32), evenBeats(768000, 19200, 40, 400.0F));
    const BeatList segments = adjusted({segmentAt(0), segmentAt(768000, 400.0F)}, raw, 1536000);
    expectSegment(segments[0], 0, 500.0F, 16, 0);
    expectSegment(segments[1], 748800, 400.0F, 16, 4);
}

// 501 ms are 24048 samples. The pulse of 500 ms snaps to every fourth beat 192 samples late, 2808
// points each; that of 501 meets each exactly, but only a search that is not over after the first
// interval gets there. A sparse first half keeps the score below the limit: 10 of 80 beats.
TEST_F(AdjustSegmentsTest, NeighbouringIntervalIsTakenWhenItMeetsTheBeatsMoreClosely) {
    const BeatList raw = evenBeats(70 * 24048, 24048, 10);
    const BeatList segments = adjusted({segmentAt(70 * 24048)}, raw, 80 * 24048);
    EXPECT_EQ(segments[0].interval, 501.0F);
}

// The same beats twice as dense end the search at 500 ms.
TEST_F(AdjustSegmentsTest, ClearHitAtTheMeasuredIntervalEndsTheSearch) {
    const BeatList segments = adjusted({segmentAt(0)}, evenBeats(0, 24048, 44), 44 * 24048);
    EXPECT_EQ(segments[0].interval, 500.0F);
}

// Beats of 502 ms (24096 samples) in 40 of some 78 places. At 500 ms every beat is met, 96 samples
// off, for 3000 + 39 × 2904 = 116256 points; half of what the range could give is 117618, so the
// search goes on. At 501 ms 3006 + 39 × 2958 = 118368 points pass 117619, which ends nothing any
// more: 502 ms meet each beat exactly, 10 × 3012 × 4 = 120480.
TEST_F(AdjustSegmentsTest, ClearHitAtAnotherIntervalEndsNothing) {
    const BeatList segments = adjusted({segmentAt(0)}, evenBeats(0, 24096, 40), 1881898);
    expectSegment(segments[0], 0, 502.0F, 16, 0);
}

// The list of the clear hit above, then a second segment of 156 beats without a candidate: the
// first is judged by its own beats alone.
TEST_F(AdjustSegmentsTest, SegmentIsJudgedUpToTheStartOfTheNext) {
    const BeatList segments =
        adjusted({segmentAt(0), segmentAt(44 * 24048)}, evenBeats(0, 24048, 45), 200 * 24048);
    EXPECT_EQ(segments[0].interval, 500.0F);
}

// The lower bound lies an eighth of the segment's beat behind the raw beat before it, 744000 +
// 2400. From 746304 on the walk would meet ten beats as well, and an earlier origin would win, but
// that lies before the bound.
TEST_F(AdjustSegmentsTest, SegmentStaysAnEighthBehindThePreviousBeat) {
    const BeatList raw = joined(evenBeats(0, 24000, 32), evenBeats(765500, 19200, 40, 400.0F));
    const BeatList segments = adjusted({segmentAt(0), segmentAt(765500, 400.0F)}, raw, 1533500);
    expectSegment(segments[1], 765500, 400.0F, 16, 0);
}

// No raw beat before the boundary: the bound lies an eighth before the first one, 100000 − 3000,
// and the beat is found.
TEST_F(AdjustSegmentsTest, SegmentAtTheFirstBeatReachesAnEighthBeforeIt) {
    const BeatList segments = adjusted({segmentAt(0), segmentAt(110000)},
                                       evenBeats(100000, 24000, 40), 100000 + 40 * 24000);
    EXPECT_EQ(segments[1].pos, 100000);
    EXPECT_EQ(skippedBeats(segments[1]), 0);
}

// Two beats, 2 beats apart. Every 4 beats a walk meets one of them, for 3000 points; every 2 beats
// both, 6000 against the doubled 3000, no strict gain; every beat both, 6000 against 12000. So the
// widest spacing stays.
TEST_F(AdjustSegmentsTest, NarrowerSpacingMustMoreThanDoubleTheScore) {
    const BeatList segments = adjusted({segmentAt(0)}, beatsAt({48000, 96000}), 4000000);
    EXPECT_EQ(anchorSpacing(segments[0]), 16);
}

// Beats 26000 apart where 24000 are measured: one beat on, the walk finds the next 2000 away and
// snaps to it. Two or four beats on it is 4000 or 8000 away, out of reach, and meets a beat only by
// chance.
TEST_F(AdjustSegmentsTest, WanderingBeatsAreTiedMoreNarrowly) {
    const BeatList segments = adjusted({segmentAt(0)}, evenBeats(0, 26000, 60), 60 * 26000);
    EXPECT_EQ(anchorSpacing(segments[0]), 4);
    EXPECT_EQ(segments[0].interval, 502.0F);  // the slowest on trial is the nearest
}

// One beat far from the start. At 500 ms the walk from 12000 (125 × 96) meets it exactly for 3000
// points, no clear hit; the tolerance of 502 ms, 24096 / 8, gives 3012. (300000 − 0) / 24096 =
// 12.45: twelve whole beats.
TEST_F(AdjustSegmentsTest, StartIsCountedBackFromTheFirstBeatMet) {
    const BeatList segments = adjusted({segmentAt(300000)}, beatsAt({300000}), 400000);
    expectSegment(segments[0], 300000 - 12 * 24096, 502.0F, 16, 12);
}

TEST_F(AdjustSegmentsTest, SegmentThatMeetsNothingStaysAsItIs) {
    expectSegment(adjusted({segmentAt(0)}, beatsAt({500000}), 100000)[0], 0, 500.0F, 4, 0);
    expectSegment(adjusted({segmentAt(0)}, {}, 100000)[0], 0, 500.0F, 4, 0);
    EXPECT_TRUE(adjusted({}, beatsAt({0}), 100000).empty());
}

// A beat met only at the very edge of the tolerance scores 0, which is not above 0.
TEST_F(AdjustSegmentsTest, ScoreOfZeroWinsNothing) {
    const BeatList segments = adjusted({segmentAt(0)}, beatsAt({100}), 0);
    expectSegment(segments[0], 0, 500.0F, 4, 0);
}

TEST_F(AdjustSegmentsTest, AbsurdSegmentsEndAndAreSafe) {
    constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    const BeatList raw{beatAt(kLowest), beatAt(0), beatAt(24000), beatAt(kHighest)};
    for (const float interval : {0.0F, -500.0F, 1e-30F, 1.0F, 49.0F, 1e30F, kInfinite, kNoNumber}) {
        for (const int length : {kLowest, 0, 100000}) {
            const BeatList segments =
                adjusted({segmentAt(kLowest, interval), segmentAt(0, interval),
                          segmentAt(kHighest, interval)},
                         raw, length);
            EXPECT_EQ(segments.size(), 3U);
        }
    }
}

TEST_F(AdjustSegmentsTest, BeatAtTheFarEndOfTheNumberRangeIsMet) {
    const int last = kHighest - 1000;
    const BeatInfo segment = adjusted({segmentAt(last)}, beatsAt({last}), kHighest)[0];
    const int beat = static_cast<int>(segment.interval) * 48;
    EXPECT_EQ(skippedBeats(segment), last / beat);
    EXPECT_EQ(segment.pos, last % beat);
}

TEST_F(AdjustSegmentsTest, YieldsOncePerSegment) {
    const BeatList raw = evenBeats(0, 24000, 44);
    const long before = yieldCount();
    adjusted({segmentAt(0), segmentAt(480000)}, raw, 1056000);
    EXPECT_EQ(yieldCount() - before, 2);
}

}  // namespace
