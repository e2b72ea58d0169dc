// SPDX-License-Identifier: MIT
// What a program asks that shows a catalogue a page at a time.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <SQLiteCpp/Database.h>

#include "catalogue/CatalogueError.h"
#include "catalogue/StoredTracks.h"
#include "catalogue/TrackStore.h"
#include "catalogue/query/TrackQuery.h"
#include "catalogue/query/overview.h"
#include "catalogue/query/runningScan.h"
#include "catalogue/query/totals.h"
#include "support/TemporaryFolder.h"

namespace catalogue {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Browsing : public testing::Test {
protected:
    Browsing() {
        test::store(catalogue_,
                    {test::analysedTrack("/m/c.mp3", 1), test::analysedTrack("/m/a.mp3", 2),
                     test::analysedTrack("/m/b.mp3", 3)});
    }

    std::int64_t numberOf(const std::string& path) const {
        return TrackStore(catalogue_).find(path).value();
    }

    test::TemporaryFolder folder_;
    Catalogue catalogue_{folder_.file("c.sqlite"), Catalogue::Access::create};
};

TEST_F(Browsing, GivesTheNumbersOfTheTracksThatAreListedInTheirOrder) {
    EXPECT_THAT(listIds(catalogue_, {}),
                ElementsAre(numberOf("/m/a.mp3"), numberOf("/m/b.mp3"), numberOf("/m/c.mp3")));
    TrackQuery query;
    query.text = "b.mp3";
    EXPECT_THAT(listIds(catalogue_, query), ElementsAre(numberOf("/m/b.mp3")));
    query.text = "nothing";
    EXPECT_THAT(listIds(catalogue_, query), IsEmpty());
}

TEST_F(Browsing, ListsChosenTracksInTheOrderOfTheChoice) {
    std::vector<std::string> paths;
    const std::int64_t first = numberOf("/m/c.mp3");
    listChosen(catalogue_, {first, 999, numberOf("/m/a.mp3"), first, -1},
               [&](const base::ListedTrack& track) { paths.push_back(track.path); });
    EXPECT_THAT(paths, ElementsAre("/m/c.mp3", "/m/a.mp3", "/m/c.mp3"));
}

TEST_F(Browsing, GivesTheOverviewOfTheResultThatListsShow) {
    const auto expected = test::exampleResult().loudWave;
    const auto found = overviewOf(catalogue_, numberOf("/m/a.mp3"));
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i].level, expected[i].level) << i;
        EXPECT_EQ(found[i].color, expected[i].color) << i;
    }
    EXPECT_THAT(overviewOf(catalogue_, 999), IsEmpty());
    catalogue_.database().exec("UPDATE waves SET loud = x'07'");
    EXPECT_THROW(overviewOf(catalogue_, numberOf("/m/a.mp3")), DamagedRecord);
}

TEST_F(Browsing, CountsWhatListsShow) {
    catalogue_.database().exec(
        "UPDATE tracks SET gone_at = 1 WHERE path = CAST('/m/a.mp3' AS BLOB)");
    catalogue_.database().exec("UPDATE tracks SET is_corrected = 1");
    {
        Scan scan(catalogue_, {"{}", false, false});
        scan.settle();
        scan.putFailure("/m/bad.mp3", {}, {FailureKind::damaged, "is cut off"});
        scan.putFailure("/m/cover.png", {}, {FailureKind::notAudio, "is none"});
    }
    const Totals totals = totalsOf(catalogue_);
    EXPECT_EQ(totals.tracks, 2);
    EXPECT_EQ(totals.gone, 1);
    EXPECT_EQ(totals.corrected, 2);
    EXPECT_EQ(totals.failures, 1);
}

TEST_F(Browsing, NoticesWhatAnotherProgramWrites) {
    const Catalogue onlooker(folder_.file("c.sqlite"), Catalogue::Access::read);
    const std::int64_t before = changeNumber(onlooker);
    EXPECT_EQ(changeNumber(onlooker), before);
    catalogue_.database().exec("UPDATE tracks SET is_corrected = 1");
    EXPECT_NE(changeNumber(onlooker), before);
}

TEST_F(Browsing, SeesAScanWhileItRunsAndNotAfterwards) {
    EXPECT_FALSE(unfinishedScan(catalogue_));
    EXPECT_FALSE(isBeingScanned(catalogue_));
    {
        Scan scan(catalogue_, {"{}", false, false});
        for (int i = 0; i < 4; ++i) scan.found("/m/new" + std::to_string(i), {1, 1}, 1.0);
        scan.settle();
        scan.putFailure("/m/new0", {1, 1}, {FailureKind::damaged, "is cut off"});
        scan.commit();
        const auto progress = unfinishedScan(catalogue_);
        ASSERT_TRUE(progress);
        EXPECT_EQ(progress->planned, 4);
        EXPECT_EQ(progress->done, 1);
        EXPECT_EQ(progress->failed, 1);
        EXPECT_TRUE(isBeingScanned(catalogue_));
    }
    EXPECT_FALSE(isBeingScanned(catalogue_));
    EXPECT_FALSE(unfinishedScan(catalogue_));
}

}  // namespace
}  // namespace catalogue
