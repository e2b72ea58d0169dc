// SPDX-License-Identifier: MIT
#include "envelope/BarPhaseScores.h"

#include <array>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using Indices = std::vector<int>;
using Scores = std::array<double, 4>;

constexpr int kLead = 10;

/** A grid of forty beats of 100 values from index 100 on: place p mod 4 is at 100 + 100 p. */
class BarPhaseScoresTest : public RoundTowardZero {
protected:
    BarPhaseScoresTest() : levels_(5000) {
        for (int i = 0; i < 40; ++i) grid_.beatIndex.push_back(100 + 100 * i);
        grid_.beatLength.assign(40, 100.0);
    }

    /** Pulses that follow the given places by the lead. */
    void setPulses(const std::vector<double>& places, std::int16_t level) {
        for (const double place : places) addPulse(place, level);
    }

    void addPulse(double place, std::int16_t level) {
        peaks_.push_back(static_cast<int>(100.0 + 100.0 * place) + kLead);
        levels_[static_cast<std::size_t>(peaks_.back())] = level;
    }

    BarPhaseScores scores() const { return {grid_, peaks_, levels_, kLead}; }

    Scores firstPulse() const {
        BarPhaseScores votes = scores();
        votes.setFirstPulse();
        return votes.scores();
    }

    Scores sectionStarts() const {
        BarPhaseScores votes = scores();
        votes.addSectionStarts();
        return votes.scores();
    }

    EnvelopeGrid grid_;
    Indices peaks_;
    std::vector<std::int16_t> levels_;
};

TEST_F(BarPhaseScoresTest, FirstPulseBeforeAOneBeatGapSetsTwiceItsLevel) {
    setPulses({2, 3, 7}, 500);
    EXPECT_EQ(firstPulse(), (Scores{0, 0, 1000, 0}));
}

TEST_F(BarPhaseScoresTest, FirstPulseBeforeATwoBeatGapSetsItToo) {
    setPulses({1, 3, 7}, 500);
    EXPECT_EQ(firstPulse(), (Scores{0, 1000, 0, 0}));
}

TEST_F(BarPhaseScoresTest, FirstPulseOneBeatBeforeTheThirdSetsItToo) {
    setPulses({1, 1.5, 2}, 500);
    EXPECT_EQ(firstPulse(), (Scores{0, 1000, 0, 0}));
}

// "Two beats" is not asked of the third pulse.
TEST_F(BarPhaseScoresTest, FirstPulseTwoBeatsBeforeTheThirdSetsNothing) {
    setPulses({1, 2.5, 3}, 500);
    EXPECT_EQ(firstPulse(), Scores{});
}

// The score is set, not added, however many of the conditions hold.
TEST_F(BarPhaseScoresTest, FirstPulseIsSetOnceWhenSeveralConditionsHold) {
    setPulses({1, 1.95, 2}, 500);
    BarPhaseScores votes = scores();
    votes.setFirstPulse();
    votes.setFirstPulse();
    EXPECT_EQ(votes.scores(), (Scores{0, 1000, 0, 0}));
}

// One beat: 100 × 0.9 + 0.5 and × 1.1 + 0.5, cut: 90..110, both included.
TEST_F(BarPhaseScoresTest, FirstPulseBoundsAreIncluded) {
    for (const auto& [gap, isSet] : std::vector<std::pair<int, bool>>{
             {89, false}, {90, true}, {110, true}, {111, false}, {180, true}, {179, false}}) {
        peaks_ = {110, 110 + gap};
        levels_[110] = 7;
        EXPECT_EQ(firstPulse()[0], isSet ? 14.0 : 0.0) << gap;
    }
}

TEST_F(BarPhaseScoresTest, APulseEarlierThanTheLeadCountsAsOneAtTheStart) {
    grid_.beatIndex.front() = 1;
    peaks_ = {4, 104};
    levels_[4] = 9;
    EXPECT_EQ(firstPulse(), (Scores{18, 0, 0, 0}));
}

TEST_F(BarPhaseScoresTest, AFirstPulseAloneSetsNothing) {
    setPulses({1}, 500);
    EXPECT_EQ(firstPulse(), Scores{});
}

// Place 12 comes nine beats after place 3 and two before place 14.
TEST_F(BarPhaseScoresTest, APulseAfterALongGapAndBeforeATwoBeatGapVotesWithItsLevel) {
    setPulses({1, 3}, 10000);
    setPulses({12}, 50);
    setPulses({14, 15}, 10000);
    EXPECT_EQ(sectionStarts(), (Scores{50, 0, 0, 0}));
}

// Before any other gap it must exceed 0.6 of the loudest. The double 0.6 is a little less than six
// tenths and its product is cut to just below 6000: 6000 itself still votes.
TEST_F(BarPhaseScoresTest, APulseAfterALongGapVotesWhenItIsLoud) {
    setPulses({1, 3}, 10000);
    setPulses({12, 13}, 6000);
    EXPECT_EQ(sectionStarts(), (Scores{6000, 0, 0, 0}));
    levels_[static_cast<std::size_t>(peaks_[2])] = 5999;
    EXPECT_EQ(sectionStarts(), Scores{});
}

TEST_F(BarPhaseScoresTest, AGapOfExactlySevenBeatsIsNotLong) {
    setPulses({1, 2, 9, 10}, 100);
    EXPECT_EQ(sectionStarts(), Scores{});
    for (std::size_t i = 2; i < 4; ++i) {
        ++peaks_[i];
        levels_[static_cast<std::size_t>(peaks_[i])] = 100;
    }
    EXPECT_EQ(sectionStarts(), (Scores{0, 100, 0, 0}));
}

TEST_F(BarPhaseScoresTest, FirstAndLastPulseStartNoSection) {
    setPulses({10, 30}, 100);
    EXPECT_EQ(sectionStarts(), Scores{});
}

TEST_F(BarPhaseScoresTest, EachFigureVotesWithAConstant) {
    BarPhaseScores votes = scores();
    votes.addFigures({100 + kLead, 500 + kLead, 200 + kLead});
    EXPECT_EQ(votes.scores(), (Scores{983.04 + 983.04, 983.04, 0, 0}));
    EXPECT_EQ(votes.firstOfBar(), 0);
}

TEST_F(BarPhaseScoresTest, OfEqualScoresTheFirstPlaceWins) {
    BarPhaseScores votes = scores();
    votes.addFigures({400 + kLead, 200 + kLead});
    EXPECT_EQ(votes.firstOfBar(), 1);
}

// 145 lies nearest to the beat at 100 less the lead (135), yet as it stands as near to 100 as 155
// is to 200: the fallback takes the pulse where it is.
TEST_F(BarPhaseScoresTest, WithoutVotesTheFirstPulseDecidesWithoutItsLead) {
    peaks_ = {155};
    EXPECT_EQ(scores().firstOfBar(), 1);
    peaks_ = {149};
    EXPECT_EQ(scores().firstOfBar(), 0);
}

TEST_F(BarPhaseScoresTest, WithoutPulsesTheFirstBeatOfTheGridOpensTheBar) {
    BarPhaseScores votes = scores();
    votes.setFirstPulse();
    votes.addSectionStarts();
    EXPECT_EQ(votes.scores(), Scores{});
    EXPECT_EQ(votes.firstOfBar(), 0);
}

TEST_F(BarPhaseScoresTest, AnEmptyGridTakesNoVotes) {
    grid_ = {};
    setPulses({1, 2, 12, 14, 15}, 100);
    BarPhaseScores votes = scores();
    votes.setFirstPulse();
    votes.addSectionStarts();
    votes.addFigures(peaks_);
    EXPECT_EQ(votes.scores(), Scores{});
    EXPECT_EQ(votes.firstOfBar(), 0);
}

}  // namespace
}  // namespace beatatlas::test
