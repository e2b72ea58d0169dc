// SPDX-License-Identifier: MIT
// What a catalogue holds leaves it in every format as if the files had been analysed, and chosen as
// lists choose it.
#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/CataloguedTracks.h"
#include "output/formats/ExportFormat.h"
#include "support/AudioFileWriter.h"

namespace app {
namespace {

using test::ToolRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using Json = nlohmann::json;

bool isOfSound(const output::ExportFormat& format) {
    return format.tells == output::ExportFormat::Tells::peaksAlone;
}

/** A scan does not look for it. */
std::string withoutSessionKey(const output::ExportFormat& format, const std::string& text) {
    if (format.tells != output::ExportFormat::Tells::everything) return text;
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        // The last member of a track: an object that ends with the list of notes.
        if (const std::size_t begin = line.find(",\"sessionKey\":"); begin != std::string::npos)
            line.erase(begin, line.rfind("}]}}") + 3 - begin);
        result += line + "\n";
    }
    return result;
}

class StoredExport : public test::CataloguedTracks {
protected:
    std::vector<std::string> names(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--to", "jsonl"});
        return namesIn("export", arguments);
    }
};

TEST(StoredExports, AreThoseOfTheFilesThemselves) {
    test::TemporaryFolder folder;
    const std::string track = folder.file("a.wav");
    const std::string other = folder.file("b.wav");
    const std::string catalogue = folder.file("c.sqlite");
    test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::kicks(44100, 12.0, 0.8));
    test::writeAudioFile(other, {"wav", "pcm_s16le"}, test::kicks(48000, 9.0, 0.8));
    ASSERT_EQ(test::runTool({"scan", "--catalogue", catalogue, track, other}).exitStatus, 0);
    for (const output::ExportFormat& format : output::exportFormats()) {
        if (isOfSound(format)) continue;
        std::vector<std::string> both = {"export", "--to", format.name, "--origin=file",
                                         "--offset=3"};
        std::vector<std::string> stored = both;
        both.push_back(track);
        stored.insert(stored.end(), {"--catalogue", catalogue});
        if (format.holdsManyTracks) {
            both.push_back(other);
        } else {
            stored.insert(stored.end(), {"--text", "a.wav"});
        }
        const ToolRun fromFiles = test::runTool(both);
        const ToolRun fromCatalogue = test::runTool(stored);
        EXPECT_EQ(fromCatalogue.exitStatus, 0) << fromCatalogue.err;
        EXPECT_EQ(fromCatalogue.out, withoutSessionKey(format, fromFiles.out)) << format.name;
        EXPECT_NE(fromCatalogue.out, "");
    }
}

TEST_F(StoredExport, ChoosesTracksAsListsDo) {
    EXPECT_THAT(names({"--text", "music/a"}), ElementsAre("a.mp3"));
    EXPECT_THAT(names({"--bpm", "96:120", "--sort", "bpm"}), ElementsAre("b, \"c\".mp3", "a.mp3"));
    EXPECT_THAT(names({"--compatible-with", "/music/a.mp3"}), ElementsAre("z\\xFF\\n.mp3"));
    EXPECT_THAT(names({"--gone"}), ElementsAre("gone.mp3"));
    EXPECT_THAT(names({"--corrected"}), ElementsAre("z\\xFF\\n.mp3"));
    EXPECT_THAT(names({"--low-confidence", "--key", "9A"}), ElementsAre("b, \"c\".mp3"));
    EXPECT_THAT(names({"--reverse", "--limit", "1"}), ElementsAre("z\\xFF\\n.mp3"));
    EXPECT_THAT(names({}), ElementsAre("a.mp3", "b, \"c\".mp3", "silence.wav", "z\\xFF\\n.mp3"));
}

TEST_F(StoredExport, HasTheCorrectionsAndSaysSoWhereTheFormatCan) {
    const auto corrected = [&](const char* format) {
        return catalogued("export", {"--to", format, "--corrected"}).out;
    };
    const Json line = Json::parse(corrected("jsonl"));
    EXPECT_EQ(line["tempo"]["bpm"], 240.0);
    EXPECT_EQ(line["corrections"], Json::parse(R"([{"kind": "double", "value": 0.0}])"));
    EXPECT_THAT(corrected("csv-tracks"), HasSubstr(",240.00,"));
    EXPECT_THAT(corrected("csv-tracks"), HasSubstr(",yes,\n"));
    EXPECT_THAT(corrected("midi"), HasSubstr("Corrected by hand: doubled"));
    EXPECT_THAT(corrected("ffmetadata"), HasSubstr("comment=Corrected by hand: doubled\n"));
    // The key is as it was found.
    const Json jams = Json::parse(corrected("jams"));
    for (const Json& each : jams["annotations"]) {
        const bool isKey = each["namespace"] == "key_mode";
        EXPECT_EQ(each["annotation_metadata"]["data_source"],
                  isKey ? "program" : "program, corrected by hand");
    }
    const std::string others = catalogued("export", {"--to=csv-tracks", "--bpm=96"}).out;
    EXPECT_THAT(others, HasSubstr(",no,\n"));
    EXPECT_THAT(catalogued("export", {"--to=json", "--bpm=96"}).out, Not(HasSubstr("corrections")));
}

TEST_F(StoredExport, GivesEachTrackAFileNamedAfterIt) {
    const ToolRun run = catalogued("export", {"--to=midi", "-d", folder_.file("x")});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    for (const char* name : {"x/a.mid", "x/b, \"c\".mid", "x/silence.mid", "x/z\xFF\n.mid"})
        EXPECT_TRUE(std::filesystem::exists(folder_.file(name))) << name;
    const ToolRun again =
        catalogued("export", {"--to=midi", "-o", folder_.file("x/{name}.mid"), "--limit=1"});
    EXPECT_EQ(again.exitStatus, 1);
    EXPECT_THAT(again.err, HasSubstr("/music/a.mp3: "));
    EXPECT_THAT(again.err, HasSubstr("is there already"));
}

TEST_F(StoredExport, GoesOnBehindATrackThatIsDamaged) {
    catalogue::Catalogue catalogue(path_, catalogue::Catalogue::Access::write);
    catalogue.database().exec("UPDATE grids SET beats = x'00' WHERE result_id = "
                              "(SELECT result_id FROM tracks WHERE title = 'Track 1')");
    const ToolRun run = catalogued("export", {"--to=csv-tracks"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("/music/a.mp3: "));
    // Names, the damaged one with its reason, and three others.
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 5);
    EXPECT_THAT(run.out, HasSubstr("/music/silence.wav"));
}

TEST_F(StoredExport, RefusesWhatTheCatalogueCannotGive) {
    const std::pair<std::vector<std::string>, const char*> lines[] = {
        {{"--to=waveform"}, "a catalogue does not hold what waveform is made of: name the files"},
        {{"--to=csv", "x.wav"}, "name either files, which are analysed, or tracks of a catalogue"},
        {{"--to=csv", "--no-key"}, "--no-key goes with files"},
        {{"--to=csv", "--threads=1"}, "--threads goes with files"},
        {{"--to=csv", "--partial"}, "--partial goes with files"},
        {{"--to=jams"}, "jams holds one track: several go to a folder"},
        {{"--to=csv", "-o", path_}, "the result would replace the catalogue"},
        {{"--to=csv", "--within=5"}, "--within goes with --compatible-with"}};
    const std::string before = test::readFile(path_);
    for (const auto& [arguments, message] : lines) {
        const ToolRun run = catalogued("export", arguments);
        EXPECT_EQ(run.exitStatus, 2) << message;
        EXPECT_THAT(run.err, HasSubstr(message));
        EXPECT_EQ(run.out, "");
    }
    EXPECT_EQ(test::readFile(path_), before);
    EXPECT_THAT(test::runTool({"export", "--to=csv"}).err, HasSubstr("FILE is missing"));
    const ToolRun absent = test::runTool({"export", "--to=csv", "--catalogue", "/nowhere"});
    EXPECT_EQ(absent.exitStatus, 1);
    EXPECT_THAT(absent.err, HasSubstr("/nowhere: there is no such catalogue"));
}

TEST_F(StoredExport, NeverReplacesTheCatalogueOrWhatLiesBesideIt) {
    std::vector<std::vector<std::string>> lines;
    for (const char* ending : {"", ".lock", "-wal", "-shm", "-journal"}) {
        lines.push_back({"--to=midi", "--bpm=96", "-o", path_ + ending});
        lines.push_back({"--to=json", "-o", path_ + ending});
    }
    std::filesystem::create_hard_link(path_, folder_.file("again.mid"));
    std::filesystem::create_symlink(path_ + ".lock", folder_.file("silence.mid"));
    std::filesystem::create_directory_symlink(folder_.path(), folder_.file("same"));
    lines.push_back({"--to=midi", "--bpm=96", "-o", folder_.file("again.mid")});
    lines.push_back({"--to=midi", "--bpm=96", "-o", folder_.file("same/c.sqlite-wal")});
    lines.push_back({"--to=midi", "--overwrite", "-d", folder_.path()});
    const std::string pattern = folder_.file("{name}");
    catalogue::Catalogue(path_, catalogue::Catalogue::Access::write)
        .database()
        .exec("UPDATE tracks SET path = CAST('/music/c.sqlite.mp3' AS BLOB) WHERE bpm = 96");
    lines.push_back({"--to=midi", "--overwrite", "-o", pattern});
    test::writeFile(path_ + ".lock", "");
    const std::string before = test::readFile(path_);
    for (const std::vector<std::string>& arguments : lines) {
        const ToolRun run = catalogued("export", arguments);
        EXPECT_EQ(run.exitStatus, 2) << arguments.back();
        EXPECT_THAT(run.err, HasSubstr("the result would replace the catalogue"));
        EXPECT_EQ(test::readFile(path_), before) << arguments.back();
        EXPECT_EQ(test::readFile(path_ + ".lock"), "") << arguments.back();
        EXPECT_FALSE(std::filesystem::exists(folder_.file("a.mid")));
    }
}

TEST_F(StoredExport, NeverReplacesATrackThatWasNotChosen) {
    const std::string track = folder_.file("a");
    test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::kicks(44100, 5.0, 0.8));
    ASSERT_EQ(catalogued("scan", {track}).exitStatus, 0);
    const ToolRun run = catalogued(
        "export", {"--to=midi", "--text=music/a", "--overwrite", "-o", folder_.file("{name}")});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.err, HasSubstr("the result would replace a track of the catalogue"));
    EXPECT_THAT(test::readFile(track), testing::StartsWith("RIFF"));
}

TEST_F(StoredExport, NeverReplacesATrackOfTheCatalogue) {
    const std::string track = folder_.file("t.wav");
    test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::kicks(44100, 5.0, 0.8));
    ASSERT_EQ(catalogued("scan", {track}).exitStatus, 0);
    const ToolRun run = catalogued("export", {"--to=json", "-o", track, "--bpm=96"});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.err, HasSubstr("the result would replace a track of the catalogue"));
    EXPECT_THAT(test::readFile(track), testing::StartsWith("RIFF"));
}

TEST_F(StoredExport, RefusesBeatsOfATrackThatWasAnalysedWithoutThem) {
    const std::string track = folder_.file("t.wav");
    test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::kicks(44100, 5.0, 0.8));
    ASSERT_EQ(catalogued("scan", {"--tempo=off", track}).exitStatus, 0);
    const ToolRun run = catalogued("export", {"--to=midi", "--text=t.wav"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("t.wav: was analysed without its tempo"));
    EXPECT_EQ(catalogued("export", {"--to=json", "--text=t.wav"}).exitStatus, 0);
}

// The option stands in a file of settings for the commands that need a catalogue.
TEST_F(StoredExport, OfFilesIgnoresACatalogueInTheSettings) {
    std::filesystem::create_directory(folder_.file("beatatlas"));
    test::writeFile(folder_.file("beatatlas/config.ini"), "catalogue = " + path_ + "\n");
    ToolRun run;
    run.arguments = {"export", "--to=csv-tracks", "--bpm=96"};
    run.configFolder = folder_.path();
    EXPECT_THAT(run.run().out, HasSubstr(",96.00,"));
    const std::string track = folder_.file("t.wav");
    test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::kicks(44100, 5.0, 0.8));
    run.arguments = {"export", "--to=csv-tracks", track};
    EXPECT_THAT(run.run().out, HasSubstr("t.wav"));
}

}  // namespace
}  // namespace app
