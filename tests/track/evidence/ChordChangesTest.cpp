// SPDX-License-Identifier: MIT
#include "track/evidence/ChordChanges.h"

#include <numbers>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace beatatlas::track::inner;

/** One note for five seconds, another one for five more. */
std::vector<Chroma> twoNotes() {
    std::vector<Chroma> chroma(100, Chroma{});
    for (std::size_t i = 0; i < 100; ++i) chroma[i][i < 50 ? 3 : 7] = 2.0F;
    return chroma;
}

// Directions at a right angle are √2 apart, whatever the level. Half a second after the change, two
// seconds before hold 5 frames of the new note and 15 of the old one: the direction (15, 5) / √250
// is √(2 − 2 · 5 / √250) = 1.169 from it.
TEST(ChordChanges, AreGreatestWhereNotesChange) {
    const ChordChanges changes = findChordChanges(twoNotes());
    EXPECT_NEAR(changes.at(ChordChanges::kHalf, 5.0), std::numbers::sqrt2, 1e-5);
    EXPECT_NEAR(changes.at(ChordChanges::kTwo, 5.0), std::numbers::sqrt2, 1e-5);
    EXPECT_NEAR(changes.at(ChordChanges::kTwo, 5.5), 1.169, 1e-3);
    EXPECT_EQ(changes.at(ChordChanges::kHalf, 2.0), 0.0);
    EXPECT_NEAR(changes.at(ChordChanges::kHalf, 5.6), 0.0, 1e-6);
}

TEST(ChordChanges, AreNoneAtTheEndsAndBeyond) {
    const ChordChanges changes = findChordChanges(twoNotes());
    ASSERT_EQ(changes.curves[ChordChanges::kOne].size(), 101U);
    EXPECT_EQ(changes.at(ChordChanges::kOne, -1.0), 0.0);
    EXPECT_EQ(changes.at(ChordChanges::kOne, 99.0), 0.0);
    EXPECT_EQ(findChordChanges({}).at(ChordChanges::kOne, 0.0), 0.0);
}

TEST(ChordChanges, KnowTheirMean) {
    const ChordChanges changes = findChordChanges(twoNotes());
    double sum = 0.0;
    for (const float value : changes.curves[ChordChanges::kOne]) sum += value;
    EXPECT_NEAR(changes.means[ChordChanges::kOne], sum / 101.0, 1e-12);
}

}  // namespace
