// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/CataloguedTracks.h"

namespace app {
namespace {

using test::ToolRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using Json = nlohmann::json;

class ListCommand : public test::CataloguedTracks {
protected:
    std::vector<std::string> names(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--format", "jsonl"});
        return namesIn("list", arguments);
    }
};

TEST_F(ListCommand, PrintsAlignedLinesForPeople) {
    EXPECT_EQ(catalogued("list", {}).out,
              "    BPM  Key               Length  Least sure             File\n"
              " 120.00  A minor (8A)        0:08  tempo 0.50             /music/a.mp3\n"
              "  96.00  E minor (9A)        0:08  tempo 0.50             /music/b, \"c\".mp3\n"
              "      -  -                   0:08           -             /music/silence.wav\n"
              " 240.00  C major (8B)        0:08    key 0.88  corrected  /music/z\\xFF\\n.mp3\n");
    EXPECT_THAT(catalogued("list", {"--key-notation", "camelot"}).out, HasSubstr(" 120.00  8A "));
}

TEST_F(ListCommand, FiltersByEachCondition) {
    EXPECT_THAT(names({"MÜSIC/a"}), ElementsAre("a.mp3"));
    EXPECT_THAT(names({"--bpm", "96"}), ElementsAre("b, \"c\".mp3"));
    EXPECT_THAT(names({"--bpm", "96:120"}), ElementsAre("a.mp3", "b, \"c\".mp3"));
    for (const char* key : {"8A", "8a", "1m", "A minor", "Am", "a min"})
        EXPECT_THAT(names({"--key", key}), ElementsAre("a.mp3")) << key;
    EXPECT_THAT(names({"--corrected"}), ElementsAre("z\\xFF\\n.mp3"));
    EXPECT_THAT(names({"--low-confidence"}), ElementsAre("a.mp3", "b, \"c\".mp3"));
    EXPECT_THAT(names({"--gone"}), ElementsAre("gone.mp3"));
    EXPECT_THAT(names({"--bpm", "100:130", "--key", "9A"}), IsEmpty());
}

// A minor goes with E minor, D minor and C major; 120 BPM also with 240.
TEST_F(ListCommand, FindsWhatMixesWithATrackOrAKey) {
    EXPECT_THAT(names({"--compatible-with", "8A"}),
                ElementsAre("a.mp3", "b, \"c\".mp3", "z\\xFF\\n.mp3"));
    EXPECT_THAT(names({"--compatible-with", "/music/a.mp3"}), ElementsAre("z\\xFF\\n.mp3"));
    // 96 BPM is 20 percent below 120.
    EXPECT_THAT(names({"--compatible-with", "/music/a.mp3", "--within", "20"}),
                ElementsAre("b, \"c\".mp3", "z\\xFF\\n.mp3"));
    // Further conditions narrow what mixes, also to nothing.
    EXPECT_THAT(names({"--compatible-with", "8A", "--key", "9A"}), ElementsAre("b, \"c\".mp3"));
    EXPECT_THAT(names({"--compatible-with", "8A", "--key", "3A"}), IsEmpty());
    EXPECT_THAT(names({"--compatible-with", "8A", "--bpm", "100:130"}), ElementsAre("a.mp3"));
    EXPECT_THAT(names({"--compatible-with", "/music/a.mp3", "--bpm", "239:241"}),
                ElementsAre("z\\xFF\\n.mp3"));
    EXPECT_THAT(names({"--compatible-with", "/music/a.mp3", "--bpm", "90:100"}), IsEmpty());
    EXPECT_EQ(catalogued("list", {"--compatible-with", "/music/none"}).exitStatus, 2);
    EXPECT_THAT(catalogued("list", {"--compatible-with", "/music/silence.wav"}).err,
                HasSubstr("has neither a key nor a tempo"));
}

// The tempo is sure to 0.5, the key to 0.875; what somebody says is certain.
TEST_F(ListCommand, NamesWhatItIsLeastSureOf) {
    const auto leastSure = [&](const std::vector<std::string>& correction) {
        EXPECT_EQ(catalogued("correct", correction).exitStatus, 0);
        const Json line = Json::parse(catalogued("list", {"/music/a", "--format", "jsonl"}).out);
        return line["leastSure"].get<std::string>() + line["confidence"].dump();
    };
    EXPECT_EQ(leastSure({"/music/a.mp3", "--key", "Am"}), "tempo0.5");
    EXPECT_EQ(leastSure({"/music/a.mp3", "--undo"}), "tempo0.5");
    EXPECT_EQ(leastSure({"/music/a.mp3", "--halve"}), "key0.875");
    const Json none = Json::parse(catalogued("list", {"silence", "--format", "jsonl"}).out);
    EXPECT_EQ(none["leastSure"], nullptr);
    EXPECT_EQ(none["confidence"], nullptr);
}

TEST_F(ListCommand, SortsAndStops) {
    EXPECT_THAT(names({"--sort", "bpm"}),
                ElementsAre("silence.wav", "b, \"c\".mp3", "a.mp3", "z\\xFF\\n.mp3"));
    EXPECT_THAT(names({"--sort", "bpm", "--reverse", "--limit", "2"}),
                ElementsAre("z\\xFF\\n.mp3", "a.mp3"));
    EXPECT_THAT(names({"--limit", "0"}), IsEmpty());
}

TEST_F(ListCommand, QuotesFieldsOfCsv) {
    EXPECT_EQ(
        catalogued("list", {"--format", "csv", "--bpm", "96"}).out,
        "file,artist,title,seconds,bpm,key,camelot,confidence,corrected,gone,least_sure\r\n"
        "\"/music/b, \"\"c\"\".mp3\",The Example,Track 2,8,96.00,E minor,9A,0.5,0,0,tempo\r\n");
}

TEST_F(ListCommand, TellsBytesThatAreNoTextInJson) {
    const Json line = Json::parse(catalogued("list", {"--format", "jsonl", "--corrected"}).out);
    EXPECT_EQ(line["file"], "/music/z\\xFF\\n.mp3");
    // z is 7a, the line feed 0a.
    EXPECT_EQ(line["fileBytes"], "2f6d757369632f7aff0a2e6d7033");
    EXPECT_EQ(line["bpm"], 240.0);
    EXPECT_EQ(line["key"]["name"], "C major");
    EXPECT_EQ(line["corrected"], true);
    EXPECT_EQ(line["gone"], false);
    EXPECT_EQ(line["leastSure"], "key") << "the tempo was doubled by somebody";
}

TEST_F(ListCommand, WritesAPlaylistWithAddressesForNamesThatAreNoLines) {
    EXPECT_EQ(catalogued("list", {"--format", "m3u8", "--sort", "bpm", "--reverse"}).out,
              "#EXTM3U\n"
              "#EXTINF:8,The Example - Track 3\nfile:///music/z%FF%0A.mp3\n"
              "#EXTINF:8,The Example - Track 1\n/music/a.mp3\n"
              "#EXTINF:8,The Example - Track 2\n/music/b, \"c\".mp3\n"
              "#EXTINF:8,The Example - Track 4\n/music/silence.wav\n");
}

TEST_F(ListCommand, ListsFailuresInEveryFormat) {
    EXPECT_EQ(catalogued("list", {"--failed"}).out,
              "/music/bad.mp3: is cut off (damaged, 1 attempt)\n");
    EXPECT_EQ(catalogued("list", {"--failed", "--format", "csv"}).out,
              "file,error,kind,attempts\r\n/music/bad.mp3,is cut off,damaged,1\r\n");
    EXPECT_EQ(Json::parse(catalogued("list", {"--failed", "--format", "jsonl"}).out)["error"],
              "is cut off");
    EXPECT_EQ(catalogued("list", {"--failed", "--format", "m3u8"}).out,
              "#EXTM3U\n/music/bad.mp3\n");
}

TEST_F(ListCommand, RefusesWhatItDoesNotKnow) {
    const std::pair<std::vector<std::string>, const char*> lines[] = {
        {{"--bpm", "128:120"}, "--bpm: takes a tempo or two such as 120:128"},
        {{"--bpm", "x"}, "--bpm: takes a tempo"},
        {{"--bpm", "120:"}, "--bpm: takes a tempo"},
        {{"--bpm", "nan"}, "--bpm: takes a tempo"},
        {{"--key", "13A"}, "--key: takes a key such as 8A"},
        {{"--sort", "bmp"}, "not bmp; did you mean bpm?"},
        {{"--format", "m3u"}, "not m3u; did you mean m3u8?"},
        {{"--limit", "-1"}, "--limit: takes a whole number"},
        {{"--within", "5"}, "--within goes with --compatible-with"},
        {{"--within", "5", "--compatible-with", "8A"}, "--within goes with a track"},
        {{"--failed", "--gone"}, "--failed goes with"}};
    for (const auto& [arguments, message] : lines) {
        const ToolRun run = catalogued("list", arguments);
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.err, HasSubstr(message));
        EXPECT_EQ(run.out, "");
    }
    const ToolRun absent = test::runTool({"list", "--catalogue", folder_.file("absent")});
    EXPECT_EQ(absent.exitStatus, 1);
    EXPECT_THAT(absent.err, HasSubstr("absent: there is no such catalogue"));
}

TEST_F(ListCommand, LooksIntoTheUsersOwnCatalogueUnlessToldOtherwise) {
    ASSERT_EQ(setenv("XDG_DATA_HOME", folder_.path().c_str(), 1), 0);
    const ToolRun absent = test::runTool({"list"});
    EXPECT_THAT(absent.err, HasSubstr(folder_.path() + "/beatatlas/catalogue.sqlite: there is no"));
    std::filesystem::create_directory(folder_.file("beatatlas"));
    std::filesystem::copy(folder_.file("c.sqlite"), folder_.file("beatatlas/catalogue.sqlite"));
    EXPECT_THAT(test::runTool({"list"}).out, HasSubstr("/music/a.mp3"));
    // A folder that is not absolute does not count.
    ASSERT_EQ(setenv("XDG_DATA_HOME", "beatatlas", 1), 0);
    ASSERT_EQ(setenv("HOME", folder_.path().c_str(), 1), 0);
    EXPECT_THAT(test::runTool({"list"}).err,
                HasSubstr(folder_.path() + "/.local/share/beatatlas/catalogue.sqlite"));
    unsetenv("XDG_DATA_HOME");
}

}  // namespace
}  // namespace app
