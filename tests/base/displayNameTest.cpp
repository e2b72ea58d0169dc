// SPDX-License-Identifier: MIT
#include "base/displayName.h"

#include <gtest/gtest.h>

namespace base {
namespace {

TEST(displayName, LeavesPlainAndAccentedNamesAsTheyAre) {
    EXPECT_EQ(displayName("Ænima – 02.flac"), "Ænima – 02.flac");
    EXPECT_EQ(displayName("曲 🎵.mp3"), "曲 🎵.mp3");
}

TEST(displayName, EscapesWhatCouldSteerATerminalOrBreakALine) {
    EXPECT_EQ(displayName("a\nb\tc"), "a\\nb\\tc");
    EXPECT_EQ(displayName("\x1B[31mred"), "\\x1B[31mred");
    EXPECT_EQ(displayName("\x7F"), "\\x7F");
    EXPECT_EQ(displayName("\xC2\x9B"
                          "31m"),
              "\\xC2\\x9B31m");  // U+009B, a one-character escape sequence
}

TEST(displayName, MakesAnEmptyNameVisible) {
    EXPECT_EQ(displayName(""), "''");
}

TEST(displayName, EscapesBytesThatAreNotUtf8) {
    EXPECT_EQ(displayName("caf\xE9.mp3"), "caf\\xE9.mp3");
    EXPECT_EQ(displayName("\xFF\xFE"), "\\xFF\\xFE");
}

TEST(isUtf8, RefusesOverlongFormsSurrogatesAndValuesTooLarge) {
    EXPECT_TRUE(isUtf8("\xF4\x8F\xBF\xBF"));   // U+10FFFF, the last one
    EXPECT_FALSE(isUtf8("\xF4\x90\x80\x80"));  // U+110000
    EXPECT_FALSE(isUtf8("\xC0\xAF"));          // '/' in two bytes
    EXPECT_FALSE(isUtf8("\xE0\x80\xAF"));      // '/' in three
    EXPECT_FALSE(isUtf8("\xF0\x80\x80\xAF"));  // '/' in four
    EXPECT_FALSE(isUtf8("\xED\xA0\x80"));      // U+D800
    EXPECT_TRUE(isUtf8("\xED\x9F\xBF"));       // U+D7FF
}

TEST(isUtf8, RefusesCharactersCutShort) {
    EXPECT_FALSE(isUtf8("\xE2\x82"));
    EXPECT_FALSE(isUtf8("\xC3"));
    EXPECT_FALSE(isUtf8("\x80"));
}

}  // namespace
}  // namespace base
