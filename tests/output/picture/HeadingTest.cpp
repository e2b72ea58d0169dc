// SPDX-License-Identifier: MIT
#include "output/picture/Heading.h"

#include <gtest/gtest.h>

#include "base/displayName.h"
#include "support/Reports.h"

namespace output {
namespace {

std::string titleFor(const std::string& artist, const std::string& title) {
    TrackReport report = test::exampleReport();
    report.format.tags = {artist, title};
    return pictureTitle(report);
}

TEST(Heading, TakesTheTitleFromTheTags) {
    EXPECT_EQ(titleFor("Ella", "Night Song"), "Ella – Night Song");
    EXPECT_EQ(titleFor("", "Night Song"), "Night Song");
    EXPECT_EQ(titleFor(" Ella\n", "  Night Song "), "Ella – Night Song");
}

// An artist alone does not tell which track it is.
TEST(Heading, TakesTheFilesNameWhereTheTagsNameNoTrack) {
    for (const char* title : {"", "  ", "\n\t"}) EXPECT_EQ(titleFor("Ella", title), "track.flac");
}

TEST(Heading, PassesOverTagsThatAreNoText) {
    EXPECT_EQ(titleFor("Ella", "caf\xE9"), "track.flac");
    EXPECT_EQ(titleFor("\xFF\xFE", "Night Song"), "Night Song");
}

TEST(Heading, KeepsTagsOnOneLineOfBearableLength) {
    EXPECT_EQ(titleFor("", "a\nb"), "a\\nb");
    std::string endless;
    for (int i = 0; i < 100000; ++i) endless += "音";  // three bytes each
    const std::string title = titleFor("", endless);
    EXPECT_EQ(title.size(), 600U);
    EXPECT_TRUE(base::isUtf8(title));
    EXPECT_TRUE(base::isUtf8(titleFor("", "a" + endless)));
}

}  // namespace
}  // namespace output
