// SPDX-License-Identifier: MIT
#include "output/formats/sections.h"

#include <gtest/gtest.h>

#include "support/Reports.h"

namespace output {
namespace {

TEST(sectionsOf, IsTheWholeTrackWhereNothingChanges) {
    const auto sections = sectionsOf(test::exampleReport());
    ASSERT_EQ(sections.size(), 1U);
    EXPECT_EQ(sections[0].fromSeconds, 0.0);
    EXPECT_EQ(sections[0].toSeconds, 8.0);
    EXPECT_EQ(sectionTitle(sections[0], std::nullopt), "120.00 BPM, A minor");
    EXPECT_EQ(sectionTitle(sectionsOf(test::emptyReport())[0], std::nullopt), "no tempo");
}

// The key changes 0.4 s behind the tempo: that is one change.
TEST(sectionsOf, JoinsChangesThatLieCloseTogether) {
    TrackReport report = test::exampleReport();
    report.analysis.judgement.emplace();
    report.analysis.judgement->stretches = {{0.1, 4.0, 100.0}, {4.0, 7.6, 120.0}};
    report.analysis.key->segments = {{0.0, 4.4, 12, 0.9}, {4.4, 8.0, 3, 0.8}};
    const auto sections = sectionsOf(report);
    ASSERT_EQ(sections.size(), 2U);
    EXPECT_EQ(sections[1].fromSeconds, 4.0);
    EXPECT_EQ(sections[1].bpm, 120.0);
    EXPECT_EQ(sections[1].key, 3);
}

TEST(sectionsOf, LeavesOutWhatLiesBeforeZero) {
    TrackReport report = test::exampleReport();
    report.analysis.key->segments = {{0.0, 4.0, 12, 0.9}, {4.0, 8.0, 3, 0.8}};
    countFrom(report, {TimeOrigin::At::music, -5000.0});
    const auto sections = sectionsOf(report);
    ASSERT_EQ(sections.size(), 1U);
    EXPECT_EQ(sections[0].fromSeconds, 0.0);
    EXPECT_EQ(sections[0].toSeconds, 3.0);
    EXPECT_EQ(sections[0].key, 3);
    countFrom(report, {TimeOrigin::At::music, -9000.0});
    EXPECT_TRUE(sectionsOf(report).empty());
}

}  // namespace
}  // namespace output
