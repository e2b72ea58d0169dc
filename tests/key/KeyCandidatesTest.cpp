// SPDX-License-Identifier: MIT
#include "key/KeyCandidates.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using beatatlas::keyOfStrengths;
using beatatlas::LengthClass;
using beatatlas::PitchClassStrengths;

constexpr LengthClass kLong = LengthClass::isLong;
constexpr LengthClass kShort = LengthClass::isShort;

/** Strengths that rank the twelve notes in this order. */
PitchClassStrengths ranked(const std::vector<int>& notes) {
    PitchClassStrengths strengths{};
    for (std::size_t rank = 0; rank < notes.size(); ++rank)
        strengths[static_cast<std::size_t>(notes[rank])] = 12.0F - static_cast<float>(rank);
    return strengths;
}

std::vector<int> transposed(std::vector<int> notes, int semitones) {
    for (int& note : notes) note = (note + semitones) % 12;
    return notes;
}

class KeyCandidatesTest : public beatatlas::test::RoundTowardZero {};

// Tonic, fifth and third first, then the rest of the scale: 3.2 + 2.0 + 1.6 and more for the major
// tonic, which no other note of its scale reaches; of the parallel key the third is missing from
// the first seven.
TEST_F(KeyCandidatesTest, AScaleWithAStrongTriadNamesItsKeyInEveryTransposition) {
    const std::vector<int> major{0, 7, 4, 9, 11, 2, 5, 1, 3, 6, 8, 10};
    const std::vector<int> minor{0, 7, 3, 8, 10, 2, 5, 1, 4, 6, 9, 11};
    for (int tonic = 0; tonic < 12; ++tonic)
        for (int mode = 0; mode < 5; ++mode)
            for (LengthClass lengthClass : {kLong, kShort}) {
                EXPECT_EQ(keyOfStrengths(ranked(transposed(major, tonic)), mode, lengthClass),
                          tonic);
                EXPECT_EQ(keyOfStrengths(ranked(transposed(minor, tonic)), mode, lengthClass),
                          tonic + 12);
            }
}

// All equal: the notes rank in their own order, A first. Weights of mode 0, ranks as numbers from
// A:
//   A (rank 0): major 3.2 + third C♯ (4) 0.8 + fourth D (5) 0.03 = 4.03; minor 3.67 + third C (3)
//   1.2 + 0.03 = 4.9; the fifth E is rank 7, beyond the table. B♭ (1): minor 2.7 + C♯ (4) 0.8 + D♯
//   (6) 0 = 3.5; and lower from there.
TEST_F(KeyCandidatesTest, TwelveEqualStrengthsAreAMinor) {
    EXPECT_EQ(keyOfStrengths({}, 0, kLong), 12);
}

// Candidates of a short silence: A minor 4.9 and A major 4.03 lead, so the parallel rule runs:
// third C♯ at 4, plus 2, is not before C at 3.
TEST_F(KeyCandidatesTest, TwelveEqualStrengthsAreAMinorInAShortTrackToo) {
    EXPECT_EQ(keyOfStrengths({}, 0, kShort), 12);
}

// Ranks: A 0, E 1, C♯ 2, C 3 … The two best are A major (3.2 + 1.6 + 2.0 = 6.8) and A minor (3.67 +
// 1.2 + 2.0 = 6.87). Long: the higher score, A minor. Short: P3 + 2 = 4 is not below p3 = 3: minor
// at once.
TEST_F(KeyCandidatesTest, ParallelRuleGivesMinorWhenTheMajorThirdIsNotClearlyAhead) {
    const auto strengths = ranked({0, 7, 4, 3, 9, 11, 2, 5, 1, 6, 8, 10});
    EXPECT_EQ(keyOfStrengths(strengths, 0, kLong), 12);
    EXPECT_EQ(keyOfStrengths(strengths, 0, kShort), 12);
}

// A 0, E 1, C♯ 2, then C at 5: P3 + 2 = 4 < p3 = 5. Sixths and sevenths decide: F♯ 3 and G♯ 4 make
// 4 + 3 + 4 = 11 for major, against F 6, C 5 and G 7 = 18.
TEST_F(KeyCandidatesTest, ParallelRuleGivesMajorWhenItsSixthAndSeventhAreStronger) {
    const auto strengths = ranked({0, 7, 4, 9, 11, 3, 8, 10, 1, 2, 5, 6});
    EXPECT_EQ(keyOfStrengths(strengths, 0, kShort), 0);
}

// As before with F 3 and G 4 instead, F♯ 6 and G♯ 7: 4 + 6 + 7 = 17 against 3 + 5 + 4 = 12. The
// scores alone say major: 3.2 + 1.6 + 2.0 = 6.8 against 3.67 + 0.4 + 2.0 = 6.07, and so does the
// long track.
TEST_F(KeyCandidatesTest, ParallelRuleGivesMinorAgainstTheScoresWhenItsSixthAndSeventhAreStronger) {
    const auto strengths = ranked({0, 7, 4, 8, 10, 3, 9, 11, 1, 2, 5, 6});
    EXPECT_EQ(keyOfStrengths(strengths, 0, kLong), 0);
    EXPECT_EQ(keyOfStrengths(strengths, 0, kShort), 12);
}

// P3 + 2 = 4, F♯ 6, G♯ 5 = 15; F 3, C 8 … let C be 5: ranks A 0, E 1, C♯ 2, F 3, F♯ 4, C 5, G 6, G♯
// 7 … give 4 + 4 + 7 = 15 against 3 + 5 + 6 = 14 (minor). With G 7 and G♯ 6: 14 against 15 (major).
// With F at 4, F♯ at 3, G♯ 8, G 6: 4 + 3 + 8 = 15 against 4 + 5 + 6 = 15: equal, so minor.
TEST_F(KeyCandidatesTest, ParallelRuleGivesMinorOnEqualSums) {
    EXPECT_EQ(keyOfStrengths(ranked({0, 7, 4, 8, 9, 3, 10, 11, 1, 2, 5, 6}), 0, kShort), 12);
    EXPECT_EQ(keyOfStrengths(ranked({0, 7, 4, 8, 9, 3, 11, 10, 1, 2, 5, 6}), 0, kShort), 0);
    EXPECT_EQ(keyOfStrengths(ranked({0, 7, 4, 9, 8, 3, 10, 1, 11, 2, 5, 6}), 0, kShort), 12);
}

TEST_F(KeyCandidatesTest, ModesOutsideTheTablesUseTheFirstRow) {
    std::mt19937 random(4);
    for (int trial = 0; trial < 200; ++trial) {
        std::vector<int> notes{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
        std::shuffle(notes.begin(), notes.end(), random);
        const auto strengths = ranked(notes);
        for (LengthClass lengthClass : {kLong, kShort})
            for (int mode :
                 {-1, 5, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
                ASSERT_EQ(keyOfStrengths(strengths, mode, lengthClass),
                          keyOfStrengths(strengths, 0, lengthClass));
    }
}

TEST_F(KeyCandidatesTest, TransposingTheStrengthsTransposesTheKey) {
    std::mt19937 random(5);
    std::vector<int> notes{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    for (int trial = 0; trial < 200; ++trial) {
        std::shuffle(notes.begin(), notes.end(), random);
        const std::vector<int> higher = transposed(notes, 1);
        const int key = keyOfStrengths(ranked(notes), 2, kShort);
        ASSERT_EQ(keyOfStrengths(ranked(higher), 2, kShort), key / 12 * 12 + (key % 12 + 1) % 12);
    }
}

TEST_F(KeyCandidatesTest, AnyStrengthsGiveSomeKey) {
    const float infinity = std::numeric_limits<float>::infinity();
    for (float bad : {std::numeric_limits<float>::quiet_NaN(), infinity, -infinity, 1e38F}) {
        PitchClassStrengths strengths{};
        for (std::size_t i = 0; i < strengths.size(); i += 2) strengths[i] = bad;
        for (LengthClass lengthClass : {kLong, kShort}) {
            const int key = keyOfStrengths(strengths, 1, lengthClass);
            EXPECT_GE(key, 0);
            EXPECT_LT(key, 24);
        }
    }
}

}  // namespace
