// SPDX-License-Identifier: MIT
#include "catalogue/folded.h"

#include <gtest/gtest.h>

namespace catalogue {
namespace {

TEST(Folded, DropsCapitalsAndAccents) {
    EXPECT_EQ(folded("Ångström MÜSIK"), "angstrom musik");
    EXPECT_EQ(folded("Straße"), "strasse");
    EXPECT_EQ(folded(""), "");
}

// File names of some systems have the accent behind its letter.
TEST(Folded, MakesOneOfBothWaysToWriteAnAccent) {
    EXPECT_EQ(folded("caf\xC3\xA9"), folded("cafe\xCC\x81"));
}

TEST(Folded, ShowsBytesThatAreNoText) {
    EXPECT_EQ(folded("a\xFF.MP3"), "a\\xff.mp3");
}

TEST(Folded, PutsPathArtistAndTitleOnLinesOfTheirOwn) {
    EXPECT_EQ(searchText("/M/A.mp3", "Ö", "T"), "/m/a.mp3\no\nt");
}

}  // namespace
}  // namespace catalogue
