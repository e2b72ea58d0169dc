// SPDX-License-Identifier: MIT
#include "catalogue/correction/carryCorrections.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <SQLiteCpp/Database.h>

#include "catalogue/CatalogueScan.h"
#include "catalogue/blobCodecs.h"
#include "catalogue/correction/Corrections.h"

namespace catalogue {
namespace {

using test::analysedTrack;
using test::soundOf;
using test::valueOf;
using testing::ElementsAre;

TEST_F(CatalogueScan, KeepsCorrectionsOfASoundThatAnotherTookThePlaceOf) {
    const std::string place = fileNamed("place");
    put(place, 1);
    Corrections(catalogue_).add(idOf(place), {EditKind::half});
    put(music_.file("from"), 2);
    // The file of the first now holds the sound of the second.
    {
        Scan scan(catalogue_, {kParameters, false, false});
        scan.settle();
        EXPECT_TRUE(scan.adopt(place, {7, 7}, soundOf(2), kFormat).leavesCorrections);
    }
    EXPECT_THAT(Corrections(catalogue_).of(idOf(place)), testing::IsEmpty());
    put(fileNamed("back"), 1);
    EXPECT_THAT(Corrections(catalogue_).of(idOf(music_.file("back"))),
                ElementsAre(Edit{EditKind::half}));
}

/** Another song, or the same encoded anew: a waveform that rises and falls. */
Analysed waved(const std::string& path, int sound, int period, float loudness,
               const FileState& state) {
    std::vector<beatatlas::track::WavePoint> wave(1200);
    for (std::size_t i = 0; i < wave.size(); ++i)
        wave[i].level = loudness * static_cast<float>(i % static_cast<std::size_t>(period));
    Analysed analysed = analysedTrack(path, sound, state);
    analysed.result.zoomWave = encodeWave(wave);
    return analysed;
}

class CorrectedScan : public CatalogueScan {
protected:
    CorrectedScan() {
        test::store(catalogue_, {waved("/a", 1, 20, 1.0F, kState)});
        Corrections(catalogue_).add(idOf("/a"), {EditKind::twice});
    }

    /** Whether that leaves corrections behind. */
    bool puts(const Analysed& analysed) {
        Scan scan(catalogue_, {kParameters, false, false});
        scan.settle();
        return scan.put(analysed);
    }

    std::string shown() {
        return valueOf(catalogue_, "SELECT bpm || ' ' || is_corrected FROM tracks WHERE path = "
                                   "CAST('/a' AS BLOB)");
    }
};

TEST_F(CorrectedScan, GivesAnotherSongOfTheSameNameNoneOfThem) {
    EXPECT_TRUE(puts(waved("/a", 2, 33, 1.0F, {2000, 6})));
    EXPECT_EQ(shown(), "120.0 0");
    EXPECT_FALSE(puts(waved("/a", 1, 20, 1.0F, {1000, 7})));
    EXPECT_EQ(shown(), "240.0 1");
}

TEST_F(CorrectedScan, CarriesThemOverToWhatAnotherDecoderMakesOfTheSameFile) {
    EXPECT_FALSE(puts(waved("/a", 2, 33, 1.0F, kState)));
    EXPECT_EQ(shown(), "240.0 1");
}

TEST_F(CorrectedScan, CarriesThemOverToTheSameRecordingEncodedAnew) {
    EXPECT_FALSE(puts(waved("/a", 2, 20, 0.5F, {500, 6})));
    EXPECT_EQ(shown(), "240.0 1");
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM corrections"), "1");
}

TEST_F(CorrectedScan, CarriesNoneOverToARecordingOfAnotherLength) {
    Analysed longer = waved("/a", 2, 20, 1.0F, {2000, 6});
    longer.track.seconds += 0.2;
    EXPECT_TRUE(puts(longer));
    EXPECT_EQ(shown(), "120.0 0");
}

TEST_F(CorrectedScan, LeavesACopyItsOwnWhenItCarriesThemOver) {
    test::store(catalogue_, {waved("/a", 1, 20, 1.0F, kState), analysedTrack("/copy", 1)});
    puts(waved("/a", 2, 20, 0.5F, {500, 6}));
    EXPECT_EQ(valueOf(catalogue_, "SELECT group_concat(bpm) FROM tracks"), "240.0,240.0");
}

TEST_F(CorrectedScan, KeepsThemWhereTwoFilesSwapTheirNames) {
    test::store(catalogue_, {waved("/b", 2, 33, 1.0F, kState)});
    puts(waved("/a", 2, 33, 1.0F, {1000, 8}));
    puts(waved("/b", 1, 20, 1.0F, {1000, 8}));
    EXPECT_EQ(valueOf(catalogue_, "SELECT group_concat(CAST(path AS TEXT) || bpm) FROM tracks"),
              "/a120.0,/b240.0");
}

TEST_F(CatalogueScan, ShowsTheResultThatWasAskedForLast) {
    Analysed other = analysedTrack("/a", 1);
    other.result.parameters = parametersText({});
    other.result.bpm = 99.0;
    put("/a", 1);
    test::store(catalogue_, {other});
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "99.0");
    EXPECT_EQ(countsOf({kParameters, false, false}, {"/a"}).known, 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "120.0");
    EXPECT_EQ(countsOf({parametersText({}), false, false}, {"/a"}).known, 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "99.0");
    EXPECT_EQ(TrackStore(catalogue_).read(idOf("/a")).value().analysed.result.bpm, 99.0);
}

TEST_F(CatalogueScan, HidesNoTempoBehindAResultWithoutOne) {
    put("/a", 1);
    beatatlas::track::Options withoutTempo = test::everything();
    withoutTempo.tempo = beatatlas::track::TempoMode::off;
    Analysed other = analysedTrack("/a", 1);
    other.result.parameters = parametersText(withoutTempo);
    other.result.bpm.reset();
    test::store(catalogue_, {other});
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "120.0");
    EXPECT_EQ(countsOf({parametersText(withoutTempo), false, false}, {"/a"}).known, 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "120.0");
}

}  // namespace
}  // namespace catalogue
