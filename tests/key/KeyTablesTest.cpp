// SPDX-License-Identifier: MIT
#include <cmath>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "beatatlas/key_tables.h"

extern "C" const char* keyNameSeenFromC(int key);

namespace {

std::string bytes(const char* begin, std::size_t size) {
    return std::string(begin, size);
}

using namespace std::string_literals;

TEST(KeyTablesTest, KeyNamesHaveTheShiftJisFlatSign) {
    EXPECT_EQ(bytes(_key_table[1], 5), "B\x81\xF3 \0"s);
    EXPECT_EQ(bytes(_key_table[4], 5), "D\x81\xF3 \0"s);
    EXPECT_EQ(bytes(_key_table[13], 5), "B\x81\xF3m\0"s);
    EXPECT_EQ(bytes(_key_table[23], 5), "A\x81\xF3m\0"s);
}

TEST(KeyTablesTest, KeyNamesArePaddedWithBlanksExceptThreeMinorOnes) {
    EXPECT_EQ(bytes(_key_table[0], 5), "A  \0\0"s);
    EXPECT_EQ(bytes(_key_table[12], 5), "Am \0\0"s);
    for (int key : {19, 20, 22}) {
        const std::string name{"EF?G"[key - 19], 'm', '\0', '\0', '\0'};
        EXPECT_EQ(bytes(_key_table[key], 5), name);
        EXPECT_EQ(bytes(_key_table2[key], 5), name);
    }
}

// The letters by the circle of semitones; the second table differs from the first in the flat sign
// alone.
TEST(KeyTablesTest, BothKeyTablesNameTheTwelveTonicsInBothModes) {
    const char* tonics[] = {"A", "Bb", "B", "C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab"};
    for (int key = 0; key < 24; ++key) {
        std::string plain = std::string(tonics[key % 12]) + (key < 12 ? "" : "m");
        const bool padded = key != 19 && key != 20 && key != 22;
        while (padded && plain.size() < 3) plain += ' ';
        EXPECT_STREQ(_key_table2[key], plain.c_str());
        const std::size_t flat = plain.find('b');
        if (flat != std::string::npos) plain.replace(flat, 1, "\x81\xF3");
        EXPECT_STREQ(_key_table[key], plain.c_str());
        plain.resize(5, '\0');
        EXPECT_EQ(bytes(_key_table[key], 5), plain);
    }
}

TEST(KeyTablesTest, LieInMemoryAsHostsReadThem) {
    EXPECT_EQ(sizeof _key_table, 24U * 5U);
    EXPECT_EQ(sizeof _key_table2, 24U * 5U);
    EXPECT_EQ(sizeof _chordname_table, 16U * 6U);
    EXPECT_EQ(sizeof _chord_name_list, 16U * 4U * 4U);
    EXPECT_EQ(sizeof _scalename_table, 31U * 4U);
    EXPECT_EQ(sizeof _scale_name_list, 31U * 8U * 4U);
    EXPECT_EQ(sizeof _table_1st_maj, 5U * 2U * 5U * 4U);
    EXPECT_EQ(sizeof _table_3rd, 5U * 2U * 7U * 4U);
}

TEST(KeyTablesTest, AreTheSameTablesFromC) {
    for (int key = 0; key < 24; ++key) EXPECT_EQ(keyNameSeenFromC(key), _key_table[key]);
}

TEST(KeyTablesTest, ChordNamesFillFiveCharacters) {
    for (const auto& name : _chordname_table) EXPECT_EQ(std::strlen(name), 5U);
    EXPECT_STREQ(_chordname_table[0], "     ");
    EXPECT_STREQ(_chordname_table[8], "m7-5 ");
    EXPECT_STREQ(_chordname_table[13], "7sus4");
    for (const auto& name : _scalename_table) EXPECT_EQ(std::strlen(name), 3U);
    EXPECT_STREQ(_scalename_table[0], "ION");
    EXPECT_STREQ(_scalename_table[30], "HMN");
}

/** Notes rise from the root and stay within the octave; zeros only at the end. */
template <std::size_t kNotes>
void expectRisingNotes(const int32_t (&notes)[kNotes]) {
    EXPECT_EQ(notes[0], 1);
    for (std::size_t i = 1; i < kNotes; ++i) {
        if (notes[i] == 0) continue;
        EXPECT_GT(notes[i], notes[i - 1]);
        EXPECT_LE(notes[i], 12);
    }
}

TEST(KeyTablesTest, EveryChordAndScaleRisesFromItsRoot) {
    for (const auto& chord : _chord_name_list) expectRisingNotes(chord);
    for (const auto& scale : _scale_name_list) expectRisingNotes(scale);
}

// The modes of the major scale are rotations of it: an independent way to the first seven rows.
TEST(KeyTablesTest, TheChurchModesAreRotationsOfTheMajorScale) {
    for (int degree = 0; degree < 7; ++degree)
        for (int i = 0; i < 7; ++i) {
            const int start = _scale_name_list[0][degree];
            const int note = _scale_name_list[0][(degree + i) % 7] - start;
            EXPECT_EQ(_scale_name_list[degree][i], (note + 12) % 12 + 1) << degree << " " << i;
        }
}

TEST(KeyTablesTest, WeightsRunModeThenLengthClassThenRank) {
    const float* majorTonic = &_table_1st_maj[0][0][0];
    EXPECT_EQ(majorTonic[2 * 10 + 5 + 3], 1.85F) << "mode 2, short, rank 3";
    EXPECT_EQ(majorTonic[2 * 10 + 3], 1.6F) << "mode 2, long, rank 3";
    const float* minorTonic = &_table_1st_min[0][0][0];
    EXPECT_EQ(minorTonic[0], 3.67F);
    EXPECT_EQ(minorTonic[10], 3.781F) << "mode 1, long";
    EXPECT_EQ(minorTonic[15], 3.67F) << "mode 1, short";
    EXPECT_EQ(minorTonic[3 * 10 + 5 + 2], 2.25F) << "mode 3, short, rank 2";
    const float* third = &_table_3rd[0][0][0];
    EXPECT_EQ(third[14 + 2], 1.42F) << "mode 1, long, rank 2";
    EXPECT_EQ(third[2 * 14 + 7 + 5], 0.57F) << "mode 2, short, rank 5";
    const float* fourth = &_table_4th[0][0][0];
    EXPECT_EQ(fourth[4 * 14 + 5], 0.043F) << "mode 4, long, rank 5";
    EXPECT_EQ(fourth[4 * 14 + 7 + 5], 0.03F) << "mode 4, short, rank 5";
    const float* fifth = &_table_5th[0][0][0];
    EXPECT_EQ(fifth[2 * 14 + 7], 2.35F) << "mode 2, short, rank 0";
    EXPECT_EQ(fifth[3 * 14 + 5], 0.48F) << "mode 3, long, rank 5";
}

/** The sum of a table in hundredths of a thousandth: any mistyped figure shows. */
template <std::size_t kRanks>
long sumOf(const float (&table)[5][2][kRanks]) {
    double sum = 0.0;
    for (const auto& mode : table)
        for (const auto& lengthClass : mode)
            for (float weight : lengthClass) sum += static_cast<double>(weight);
    return std::lround(sum * 1000.0);
}

// By hand, in thousandths. Tonic, major: 10 rows of 10700 and two rows 250 higher. Minor: 3.67 or
// 3.781 and 7500 a row: 4 × 3670 + 6 × 3781 + 75000 + 2 × 150. Third: plain rows of 8400 in 0 long,
// 0 short, 1 short, 4 short; 8209 in the four long rows; 8605 in two. Fourth: plain 700 in the same
// four rows, 705 in the other six. Fifth: plain 8400 in four rows, 8365 in the four long rows, 8265
// in two.
TEST(KeyTablesTest, SumToWhatTheirRowsSumTo) {
    EXPECT_EQ(sumOf(_table_1st_maj), 10 * 10700 + 2 * 250);
    EXPECT_EQ(sumOf(_table_1st_min), 4 * 3670 + 6 * 3781 + 75000 + 2 * 150);
    EXPECT_EQ(sumOf(_table_3rd), 4 * 8400 + 4 * 8209 + 2 * 8605);
    EXPECT_EQ(sumOf(_table_4th), 4 * 700 + 6 * 705);
    EXPECT_EQ(sumOf(_table_5th), 4 * 8400 + 4 * 8365 + 2 * 8265);
}

}  // namespace
