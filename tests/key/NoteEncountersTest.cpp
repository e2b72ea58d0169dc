// SPDX-License-Identifier: MIT
#include "key/NoteEncounters.h"

#include <numeric>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using beatatlas::encounterNotes;
using beatatlas::NoteEncounters;
using ::testing::Each;
using ::testing::ElementsAre;

class NoteEncountersTest : public beatatlas::test::RoundTowardZero {};

// Only bands 3 and 15 (C3 and C4) and 7 (E3) sound: 4 + 2 and 2 of 8.
TEST_F(NoteEncountersTest, CountTheStrongestBandsByPitchClassAndShareTheirEnergy) {
    std::vector<double> totals(91, 0.0);
    totals[3] = 4.0;
    totals[15] = 2.0;
    totals[7] = 2.0;
    const NoteEncounters notes = encounterNotes(totals);
    EXPECT_THAT(notes.counts, ElementsAre(1, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0, 0))
        << "band 0 is listed from the start";
    EXPECT_THAT(notes.values,
                ElementsAre(0.0, 0.0, 0.0, 0.75, 0.0, 0.0, 0.0, 0.25, 0.0, 0.0, 0.0, 0.0));
}

// Rising totals 1 … 91: the last twelve bands win, bands 79 to 90, one of each pitch class; 79 mod
// 12 = 7 is the weakest with 80, 78 mod 12 = 6 is not among them but 90 mod 12 = 6 is, with 91. Sum
// of 80 … 91 = 1026.
TEST_F(NoteEncountersTest, ListsTwelveBandsAtMost) {
    std::vector<double> totals(91);
    std::iota(totals.begin(), totals.end(), 1.0);
    const NoteEncounters notes = encounterNotes(totals);
    EXPECT_THAT(notes.counts, Each(1));
    EXPECT_EQ(notes.values[7], 80.0 / 1026.0);
    EXPECT_EQ(notes.values[6], 91.0 / 1026.0);
}

// Falling totals 20, 19, 18 …: band 1 meets band 0 only, does not exceed it, and is dropped though
// it is the second strongest; every later band finds an empty place among those it meets. Bands 0
// and 2 … 12 are listed.
TEST_F(NoteEncountersTest, NeverAppendABandBehindThePlacesItMeets) {
    std::vector<double> totals;
    for (int b = 0; b < 14; ++b) totals.push_back(20.0 - b);
    const NoteEncounters notes = encounterNotes(totals);
    EXPECT_THAT(notes.counts, ElementsAre(2, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1));
    EXPECT_EQ(notes.values[1], 0.0);
}

// An equal total is not above: the earlier band keeps its place. With 13 equal bands, band 1 is
// dropped at once, bands 2 … 12 take the empty places.
TEST_F(NoteEncountersTest, EqualTotalsKeepTheEarlierBand) {
    const NoteEncounters notes = encounterNotes(std::vector<double>(40, 2.0));
    EXPECT_THAT(notes.counts, ElementsAre(2, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1));
}

// Band 0 is listed with nothing; empty places count for nothing.
TEST_F(NoteEncountersTest, OfSilenceAreBandZeroAloneWithNoEnergy) {
    const NoteEncounters notes = encounterNotes(std::vector<double>(91, 0.0));
    EXPECT_THAT(notes.counts, ElementsAre(1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(notes.values, Each(0.0));
}

TEST_F(NoteEncountersTest, OfNoBandsAreNone) {
    const NoteEncounters notes = encounterNotes({});
    EXPECT_THAT(notes.counts, Each(0));
    EXPECT_THAT(notes.values, Each(0.0));
}

}  // namespace
