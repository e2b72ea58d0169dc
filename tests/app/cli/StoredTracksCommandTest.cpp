// SPDX-License-Identifier: MIT
#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "catalogue/Scan.h"
#include "cli/CataloguedTracks.h"
#include "media/FileAnalysis.h"
#include "support/AudioFileWriter.h"
#include "support/Sounds.h"

namespace app {
namespace {

using test::ToolRun;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using Json = nlohmann::json;

class StoredTracks : public test::CataloguedTracks {
protected:
    /** Analyses a file with everything and puts it into the catalogue. */
    void catalogueFile(const std::string& path) {
        media::FileAnalysis::Options options;
        options.track.wantsSessionKey = true;
        const media::AnalysedFile found = media::FileAnalysis(options).analyze(path);
        catalogue::Catalogue catalogue(path_, catalogue::Catalogue::Access::write);
        catalogue::Scan scan(catalogue, {"{}", false, false});
        scan.settle();
        scan.put(
            catalogue::makeAnalysed(found.file, {}, {}, options.track, found.result, 0.0, {}, "1"));
    }
};

TEST_F(StoredTracks, AreShownWithWhatWasCorrectedAndHowTheyWereAnalysed) {
    const ToolRun run = catalogued("show", {"/music/z\xFF\n.mp3"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.out, StartsWith("/music/z\\xFF\\n.mp3\n  audio    flac"));
    EXPECT_THAT(run.out, HasSubstr("  tempo    240.00 BPM\n"));
    EXPECT_THAT(run.out, HasSubstr("  by hand  doubled; found: 120.00 BPM, C major (8B)\n"));
    EXPECT_THAT(run.out, HasSubstr(" UTC by 1.2.3, {\"tempo\":\"auto\""));
    EXPECT_THAT(catalogued("show", {"/music/gone.mp3"}).out,
                HasSubstr("  gone     the file is no longer there\n"));
}

// What comes out of the catalogue is what went in, to the last digit.
TEST_F(StoredTracks, AreShownInTheDocumentOfAnalyze) {
    const std::string track = folder_.file("cadence.wav");
    test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::cadence(44100, 2, 8.0, 13, 440.0));
    const std::string analysed = test::runTool({"analyze", "--json", "--waves", track}).out;
    catalogueFile(track);
    EXPECT_EQ(catalogued("show", {"--json", "--waves", track}).out, analysed);
}

// A sample of 4.0 is 12 dB over full scale.
TEST_F(StoredTracks, AreShownWithTheWarningsThatTheirFilesDeserve) {
    const std::string track = folder_.file("loud.wav");
    test::Sound sound = test::cadence(44100, 2, 8.0, 13, 440.0);
    sound.channels[0][1000] = 4.0F;
    test::writeAudioFile(track, {"wav", "pcm_f32le"}, sound);
    catalogueFile(track);
    EXPECT_THAT(catalogued("show", {track}).out,
                HasSubstr("  warning  is too loud: clipped 1 sample, up to 12.0 dB over full "
                          "scale\n"));
    const std::string document = catalogued("show", {"--json", track}).out;
    EXPECT_EQ(document, test::runTool({"analyze", "--json", track}).out);
    const Json overload = Json::parse(document)["tracks"][0]["overload"];
    EXPECT_EQ(overload["clipped"], 1);
    EXPECT_EQ(overload["peak"], 4.0);
    EXPECT_EQ(overload["tooLoud"], true);
}

TEST_F(StoredTracks, AreShownInADocumentThatNamesCorrectionsAndFailures) {
    const ToolRun run = catalogued("show", {"--json", "/music/z\xFF\n.mp3", "/music/none"});
    EXPECT_EQ(run.exitStatus, 1);
    const Json tracks = Json::parse(run.out)["tracks"];
    ASSERT_EQ(tracks.size(), 2U);
    EXPECT_EQ(tracks[0]["corrections"][0]["kind"], "double");
    EXPECT_EQ(tracks[0]["tempo"]["bpm"], 240.0);
    EXPECT_EQ(tracks[0]["beats"].size(), 29U);
    EXPECT_EQ(tracks[1]["error"], "is not in the catalogue");
    EXPECT_THAT(run.err, HasSubstr("/music/none: is not in the catalogue\n"));
}

TEST_F(StoredTracks, AreNotLookedForByAnEmptyName) {
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"show", ""}, {"correct", "", "--double"}, {"forget", ""}}) {
        const ToolRun run = catalogued(words.front(), {words.begin() + 1, words.end()});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_EQ(run.err, "beatatlas: '': is an empty name, which no file has\n");
    }
}

TEST_F(StoredTracks, AreFoundByRelativeNamesToo) {
    ToolRun run;
    run.arguments = {"show", "--catalogue", path_, "music/../../music/./a.mp3"};
    run.folder = "/tmp";
    EXPECT_EQ(run.run().exitStatus, 0);
}

TEST_F(StoredTracks, AreCorrectedOneEditAtATime) {
    const std::pair<std::vector<std::string>, const char*> edits[] = {
        {{"--bpm", "100"}, "100.00 BPM; now 100.00 BPM, A minor (8A)"},
        {{"--double"}, "doubled; now 200.00 BPM, A minor (8A)"},
        {{"--halve"}, "halved; now 100.00 BPM, A minor (8A)"},
        {{"--shift-half"}, "moved by half a beat; now 100.00 BPM, A minor (8A)"},
        {{"--shift-ms", "-12.5"}, "moved by -12.5 ms; now 100.00 BPM, A minor (8A)"},
        {{"--downbeat", "0:03.5"}, "a bar begins at 0:03.50; now 100.00 BPM, A minor (8A)"},
        {{"--key", "Gb"}, "key F# major; now 100.00 BPM, F# major (2B)"},
        {{"--undo"}, "taken back: key F# major; now 100.00 BPM, A minor (8A)"}};
    for (const auto& [edit, told] : edits) {
        std::vector<std::string> arguments = edit;
        arguments.push_back("/music/a.mp3");
        const ToolRun run = catalogued("correct", arguments);
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        EXPECT_EQ(run.out, "/music/a.mp3: " + std::string(told) + "\n");
    }
}

TEST_F(StoredTracks, AreNotCorrectedInWaysThatDoNotApply) {
    const std::pair<std::vector<std::string>, const char*> edits[] = {
        {{"--double", "/music/silence.wav"}, "silence.wav: has no beats"},
        {{"--undo", "/music/a.mp3"}, "a.mp3: has no correction to take back"},
        {{"--shift-ms", "9000", "/music/a.mp3"}, "a.mp3: is shorter than the shift"},
        {{"--shift-ms", "7999", "/music/a.mp3"}, "a.mp3: would have no beats left"},
        {{"--downbeat", "99:00", "/music/a.mp3"}, "a.mp3: does not last so long"},
        {{"--double", "/music/none"}, "none: is not in the catalogue"}};
    for (const auto& [arguments, reason] : edits) {
        const ToolRun run = catalogued("correct", arguments);
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_THAT(run.err, HasSubstr(reason));
        EXPECT_EQ(run.out, "");
    }
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"/music/a.mp3"},
                                                      {"--double", "--halve", "/music/a.mp3"},
                                                      {"--undo", "--key", "8A", "/music/a.mp3"},
                                                      {"--bpm", "19", "/music/a.mp3"},
                                                      {"--key", "X", "/music/a.mp3"},
                                                      {"--downbeat", "x", "/music/a.mp3"}})
        EXPECT_EQ(catalogued("correct", arguments).exitStatus, 2);
}

TEST_F(StoredTracks, ThatAreDamagedKeepNoneOfTheOthersFromBeingCorrected) {
    {
        const catalogue::Catalogue catalogue(path_, catalogue::Catalogue::Access::write);
        catalogue.database().exec("UPDATE results SET details = '{' WHERE track_id = (SELECT id "
                                  "FROM tracks WHERE CAST(path AS TEXT) = '/music/a.mp3')");
    }
    const ToolRun run = catalogued("correct", {"--double", "/music/a.mp3", "/music/gone.mp3"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "beatatlas: /music/a.mp3: the details of a result in the catalogue are "
                       "damaged\n");
    EXPECT_THAT(run.out, StartsWith("/music/gone.mp3: doubled; now "));
    EXPECT_THAT(catalogued("list", {"--compatible-with", "/music/a.mp3"}).err,
                HasSubstr("/music/a.mp3: the details"));
}

TEST_F(StoredTracks, AreForgottenButForTheirCorrections) {
    const ToolRun run =
        catalogued("forget", {"/music/a.mp3", "/music/z\xFF\n.mp3", "/music/bad.mp3", "/none"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "beatatlas: /none: is not in the catalogue\n");
    const std::string left = catalogued("list", {}).out;
    EXPECT_THAT(left, Not(HasSubstr("a.mp3")));
    EXPECT_THAT(left, Not(HasSubstr("z\\xFF")));
    EXPECT_EQ(catalogued("list", {"--failed"}).out, "");
    const catalogue::Catalogue catalogue(path_, catalogue::Catalogue::Access::read);
    EXPECT_EQ(catalogue.database().execAndGet("SELECT count(*) FROM corrections").getInt(), 1);
}

TEST_F(StoredTracks, AreForgottenWithTheirCorrectionsWhenTheseAreMeantToo) {
    EXPECT_EQ(catalogued("forget", {"--corrected", "/music/z\xFF\n.mp3"}).exitStatus, 0);
    const catalogue::Catalogue catalogue(path_, catalogue::Catalogue::Access::read);
    EXPECT_EQ(catalogue.database().execAndGet("SELECT count(*) FROM corrections").getInt(), 0);
}

TEST_F(StoredTracks, AreNamedBehindDashesWhateverTheirNamesLookLike) {
    test::writeFile(folder_.file("-b.mp3"), "x");
    ToolRun run;
    run.arguments = {"show", "--catalogue", path_, "/music/a.mp3", "--", "-b.mp3", "--double"};
    run.folder = folder_.path();
    run.run();
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, StartsWith("/music/a.mp3\n"));
    EXPECT_EQ(run.err, "beatatlas: -b.mp3: is not in the catalogue\n"
                       "beatatlas: --double: is not in the catalogue\n");
    EXPECT_THAT(catalogued("list", {"--", "-b"}).err, "");
}

TEST_F(StoredTracks, AreMergedIntoANewCatalogue) {
    const std::string both = folder_.file("both.sqlite");
    const ToolRun run = test::runTool({"merge", path_, path_, "-o", both});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_EQ(run.out, "5 tracks, 0 conflicts\n");
    EXPECT_EQ(test::runTool({"list", "--catalogue", both}).out, catalogued("list", {}).out);
    EXPECT_THAT(test::runTool({"merge", path_, "-o", both}).err, HasSubstr("is there already"));
    EXPECT_EQ(test::runTool({"merge", path_}).exitStatus, 2);
}

TEST_F(StoredTracks, AreMergedWithAWordOnCorrectionsThatDiffer) {
    const std::string other = folder_.file("other.sqlite");
    ASSERT_EQ(test::runTool({"merge", path_, "-o", other}).exitStatus, 0);
    ASSERT_EQ(catalogued("correct", {"--halve", "/music/a.mp3"}).exitStatus, 0);
    ASSERT_EQ(
        test::runTool({"correct", "--catalogue", other, "--bpm", "96", "/music/a.mp3"}).exitStatus,
        0);
    const ToolRun run = test::runTool({"merge", path_, other, "-o", folder_.file("c")});
    EXPECT_EQ(run.out, "5 tracks, 1 conflict\n");
    EXPECT_THAT(run.err, HasSubstr("/music/a.mp3: warning: was corrected in two ways"));
}

}  // namespace
}  // namespace app
