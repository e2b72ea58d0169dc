// SPDX-License-Identifier: MIT
#include "io/columns.h"

#include <clocale>

#include <gtest/gtest.h>

namespace app {
namespace {

TEST(Columns, AreTwoForWideCharactersAndNoneForCombiningOnes) {
    EXPECT_EQ(columnsOf(""), 0U);
    EXPECT_EQ(columnsOf("song"), 4U);
    EXPECT_EQ(columnsOf("\u97F3\u697D"), 4U) << "ideographs";
    EXPECT_EQ(columnsOf("\uFF71"), 1U) << "katakana of half the width";
    EXPECT_EQ(columnsOf("caf\u00E9"), 4U);
    EXPECT_EQ(columnsOf("cafe\u0301"), 4U) << "the accent a character of its own";
    EXPECT_EQ(columnsOf("\u266A\u2013\u201Cx\u201D"), 5U) << "three bytes each, not wide";
    EXPECT_EQ(columnsOf("\U0001F3B5"), 2U) << "a picture";
}

TEST(Columns, DoNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"C", "C.UTF-8"}) {
        std::setlocale(LC_ALL, locale);
        EXPECT_EQ(columnsOf("\u97F3\u00E9"), 3U) << locale;
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(Columns, CountBytesThatAreNoCharacter) {
    EXPECT_EQ(columnsOf("a\xFF\xE9z"), 4U);
    EXPECT_EQ(columnsOf("\xE9\x9F"), 2U) << "cut short";
}

TEST(Columns, CutTextBetweenCharacters) {
    EXPECT_EQ(fitted("\u97F3\u697D", 3), "\u97F3");
    EXPECT_EQ(fitted("e\u0301x", 1), "e\u0301");
    EXPECT_EQ(fitted("song", 9), "song");
    EXPECT_EQ(fitted("song", 0), "");
}

}  // namespace
}  // namespace app
