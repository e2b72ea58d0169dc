// SPDX-License-Identifier: MIT
#include "catalogue/correction/Corrections.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <SQLiteCpp/Database.h>

#include "catalogue/StoredTracks.h"
#include "catalogue/forget.h"
#include "support/TemporaryFolder.h"

namespace catalogue {
namespace {

using test::valueOf;
using testing::ElementsAre;

class CatalogueCorrections : public testing::Test {
protected:
    CatalogueCorrections() { test::store(catalogue_, {test::analysedTrack("/a", 1)}); }

    std::string shown() {
        return valueOf(catalogue_, "SELECT bpm || ' ' || key || ' ' || confidence || ' ' || "
                                   "is_corrected FROM tracks");
    }

    test::TemporaryFolder folder_;
    Catalogue catalogue_{folder_.file("c.sqlite"), Catalogue::Access::create};
    Corrections corrections_{catalogue_};
};

// The confidence shown is the smaller one of the key's, 0.875, and the product of those of tempo,
// level and phase, 0.5.
TEST_F(CatalogueCorrections, ChangeWhatListsRead) {
    EXPECT_EQ(shown(), "120.0 12 0.5 0");
    corrections_.add(1, {EditKind::twice});
    EXPECT_EQ(shown(), "240.0 12 0.875 1");
    corrections_.add(1, {EditKind::key, 3.0});
    EXPECT_EQ(shown(), "240.0 3 1.0 1");
    EXPECT_THAT(corrections_.of(1), ElementsAre(Edit{EditKind::twice}, Edit{EditKind::key, 3.0}));
}

TEST_F(CatalogueCorrections, AreTakenBackFromTheLastOn) {
    corrections_.add(1, {EditKind::bpm, 100.25});
    corrections_.add(1, {EditKind::half});
    EXPECT_EQ(corrections_.undo(1), (Edit{EditKind::half}));
    EXPECT_EQ(shown(), "100.25 12 0.875 1");
    EXPECT_EQ(corrections_.undo(1), (Edit{EditKind::bpm, 100.25}));
    EXPECT_EQ(shown(), "120.0 12 0.5 0");
    EXPECT_FALSE(corrections_.undo(1));
}

TEST_F(CatalogueCorrections, AreNotTouchedByAnAnalysis) {
    corrections_.add(1, {EditKind::twice});
    Analysed again = test::analysedTrack("/a", 1);
    again.result.bpm = 100.0;
    test::store(catalogue_, {again});
    EXPECT_THAT(corrections_.of(1), ElementsAre(Edit{EditKind::twice}));
    EXPECT_EQ(shown(), "200.0 12 0.875 1");
}

// Another version may know more kinds of edits.
TEST_F(CatalogueCorrections, ThatAreNotKnownAreLeftOutAndLeftAlone) {
    corrections_.add(1, {EditKind::twice});
    catalogue_.database().exec("INSERT INTO corrections (audio_hash, kind, value, made_at) "
                               "SELECT audio_hash, column1, column2, 0 FROM tracks, (VALUES "
                               "('swing', 0.6), ('key', 24.0), ('bpm', 1e300))");
    EXPECT_THAT(corrections_.of(1), ElementsAre(Edit{EditKind::twice}));
    EXPECT_EQ(corrections_.undo(1), Edit{EditKind::twice});
    EXPECT_FALSE(corrections_.undo(1));
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM corrections"), "3");
    EXPECT_EQ(shown(), "120.0 12 0.5 1");
}

TEST_F(CatalogueCorrections, AreCommonToCopies) {
    test::store(catalogue_, {test::analysedTrack("/a", 1), test::analysedTrack("/copy", 1),
                             test::analysedTrack("/other", 2)});
    corrections_.add(1, {EditKind::twice});
    EXPECT_THAT(corrections_.of(2), ElementsAre(Edit{EditKind::twice}));
    const std::string bpm = "SELECT group_concat(bpm) FROM (SELECT bpm FROM tracks ORDER BY id)";
    EXPECT_EQ(valueOf(catalogue_, bpm), "240.0,240.0,120.0");
    EXPECT_EQ(corrections_.undo(2), Edit{EditKind::twice});
    EXPECT_EQ(valueOf(catalogue_, bpm), "120.0,120.0,120.0");
}

TEST_F(CatalogueCorrections, StayWhenATrackIsForgottenUnlessTheyAreMeantToo) {
    corrections_.add(1, {EditKind::twice});
    EXPECT_TRUE(forget(catalogue_, "/a", false));
    EXPECT_FALSE(forget(catalogue_, "/a", false));
    test::store(catalogue_, {test::analysedTrack("/b", 1), test::analysedTrack("/copy", 1)});
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "240.0");
    EXPECT_TRUE(forget(catalogue_, "/b", true));
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "240.0");
    EXPECT_TRUE(forget(catalogue_, "/copy", true));
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM corrections"), "0");
}

}  // namespace
}  // namespace catalogue
