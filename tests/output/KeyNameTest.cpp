// SPDX-License-Identifier: MIT
#include "output/KeyName.h"

#include <cctype>
#include <map>
#include <set>

#include <gtest/gtest.h>

namespace output {
namespace {

struct KeyCase {
    int number;
    const char* musical;
    const char* camelot;
    const char* openKey;
};

// The circle of fifths as it hangs in every music school, with the hours of both wheels.
constexpr KeyCase kCircle[] = {
    {3, "C major", "8B", "1d"},    {10, "G major", "9B", "2d"},   {5, "D major", "10B", "3d"},
    {0, "A major", "11B", "4d"},   {7, "E major", "12B", "5d"},   {2, "B major", "1B", "6d"},
    {9, "F# major", "2B", "7d"},   {4, "Db major", "3B", "8d"},   {11, "Ab major", "4B", "9d"},
    {6, "Eb major", "5B", "10d"},  {1, "Bb major", "6B", "11d"},  {8, "F major", "7B", "12d"},
    {12, "A minor", "8A", "1m"},   {19, "E minor", "9A", "2m"},   {14, "B minor", "10A", "3m"},
    {21, "F# minor", "11A", "4m"}, {16, "C# minor", "12A", "5m"}, {23, "G# minor", "1A", "6m"},
    {18, "Eb minor", "2A", "7m"},  {13, "Bb minor", "3A", "8m"},  {20, "F minor", "4A", "9m"},
    {15, "C minor", "5A", "10m"},  {22, "G minor", "6A", "11m"},  {17, "D minor", "7A", "12m"}};

TEST(KeyName, GivesEveryKeyItsThreeNames) {
    for (const KeyCase& key : kCircle) {
        const KeyName name(key.number);
        EXPECT_EQ(name.musical(), key.musical);
        EXPECT_EQ(name.camelot(), key.camelot) << key.musical;
        EXPECT_EQ(name.openKey(), key.openKey) << key.musical;
        EXPECT_EQ(name.isMinor(), std::string(key.camelot).back() == 'A');
    }
}

TEST(KeyName, SpellsWithSharpsOrFlatsAlone) {
    EXPECT_EQ(KeyName(1).withSharps(), "A# major");
    EXPECT_EQ(KeyName(1).withFlats(), "Bb major");
    EXPECT_EQ(KeyName(21).withSharps(), "F# minor");
    EXPECT_EQ(KeyName(21).withFlats(), "Gb minor");
    EXPECT_EQ(KeyName(3).withSharps(), KeyName(3).withFlats());
    for (const KeyCase& key : kCircle) {
        EXPECT_EQ(KeyName(key.number).withSharps().find('b'), std::string::npos);
        EXPECT_EQ(KeyName(key.number).withFlats().find('#'), std::string::npos);
    }
}

TEST(KeyName, IsGivenInEveryNotation) {
    const KeyName key(23);
    EXPECT_EQ(key.in(KeyNotation::standard), "G# minor");
    EXPECT_EQ(key.in(KeyNotation::sharps), "G# minor");
    EXPECT_EQ(key.in(KeyNotation::flats), "Ab minor");
    EXPECT_EQ(key.in(KeyNotation::camelot), "1A");
    EXPECT_EQ(key.in(KeyNotation::openKey), "6m");
    EXPECT_EQ(key.in(KeyNotation::german), "gis-Moll");
    EXPECT_EQ(key.in(KeyNotation::solfege), "Sol# minor");
}

// German calls the note below C H and the one below that B.
TEST(KeyName, TellsTheGermanBFromTheEnglishOne) {
    EXPECT_EQ(KeyName(1).german(), "B-Dur");
    EXPECT_EQ(KeyName(2).german(), "H-Dur");
    EXPECT_EQ(KeyName(13).german(), "b-Moll");
    EXPECT_EQ(KeyName(14).german(), "h-Moll");
}

// Letter by letter: C Do, D Re, E Mi, F Fa, G Sol, A La, B Si; Cis and Des are the sharp C and the
// flat D.
TEST(KeyName, NamesTheSameNoteInEveryLanguage) {
    const std::map<char, std::string> syllables = {
        {'C', "Do"}, {'D', "Re"}, {'E', "Mi"}, {'F', "Fa"}, {'G', "Sol"}, {'A', "La"}, {'B', "Si"}};
    const std::map<std::string, std::string> german = {
        {"A", "a"},    {"Bb", "b"}, {"B", "h"},   {"C", "c"},   {"C#", "cis"},
        {"Db", "des"}, {"D", "d"},  {"Eb", "es"}, {"E", "e"},   {"F", "f"},
        {"F#", "fis"}, {"G", "g"},  {"Ab", "as"}, {"G#", "gis"}};
    for (const KeyCase& key : kCircle) {
        const KeyName name(key.number);
        const std::string note = name.musical().substr(0, name.musical().find(' '));
        EXPECT_EQ(name.solfege(),
                  syllables.at(note[0]) + note.substr(1) + (name.isMinor() ? " minor" : " major"));
        std::string expected = german.at(note);
        if (!name.isMinor())
            expected[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(expected[0])));
        EXPECT_EQ(name.german(), expected + (name.isMinor() ? "-Moll" : "-Dur"));
    }
}

TEST(KeyName, ReadsEveryNameThatItWrites) {
    for (int number = 0; number < 24; ++number) {
        const KeyName key(number);
        for (const std::string& name :
             {key.musical(), key.withSharps(), key.withFlats(), key.camelot(), key.openKey(),
              key.german(), key.solfege()}) {
            const auto read = KeyName::parse(name);
            ASSERT_TRUE(read) << name;
            EXPECT_EQ(read->number(), number) << name;
        }
    }
    EXPECT_FALSE(KeyName::parse("m"));
    EXPECT_FALSE(KeyName::parse("Dur"));
}

TEST(KeyName, CoversAllKeysOnce) {
    std::set<int> numbers;
    std::set<std::string> hours;
    for (const KeyCase& key : kCircle) {
        numbers.insert(key.number);
        hours.insert(KeyName(key.number).camelot());
    }
    EXPECT_EQ(numbers.size(), 24U);
    EXPECT_EQ(hours.size(), 24U);
}

}  // namespace
}  // namespace output
