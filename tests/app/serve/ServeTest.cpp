// SPDX-License-Identifier: MIT
#include <filesystem>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "catalogue/Scan.h"
#include "catalogue/TrackStore.h"
#include "media/FileAnalysis.h"
#include "media/TrackDecoder.h"
#include "serve/ServedCatalogue.h"
#include "support/AudioFileWriter.h"
#include "support/Sounds.h"

namespace app {
namespace {

using test::Answer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Json = nlohmann::json;

class Serve : public test::ServedCatalogue {
protected:
    /** The last parts of the paths that a list shows. */
    std::vector<std::string> names(const std::string& parameters) const {
        const Answer answer = get("/api/tracks?" + parameters);
        EXPECT_EQ(answer.status, 200) << answer.body;
        std::vector<std::string> found;
        const Json list = answer.json();
        for (const auto& track : list["tracks"]) {
            const auto path = track["file"].get<std::string>();
            found.push_back(path.substr(path.rfind('/') + 1));
        }
        return found;
    }

    /** Puts a track with a file of its own into the catalogue. @return its number */
    std::string addTrack(const std::string& path, const test::FileKind& kind) {
        test::writeAudioFile(path, kind, test::cadence(44100, 2, 8.0, 13, 440.0));
        media::FileAnalysis::Options options;
        const media::AnalysedFile found = media::FileAnalysis(options).analyze(path);
        catalogue::Catalogue catalogue(path_, catalogue::Catalogue::Access::write);
        catalogue::Scan scan(catalogue, {"{}", false, false});
        scan.settle();
        catalogue::AudioHash hash{};
        hash[0] = 99;
        scan.put(catalogue::makeAnalysed(found.file, test::stateOf(path), hash, options.track,
                                         found.result, 0.0, {}, "1"));
        return std::to_string(catalogue::TrackStore(catalogue).find(path).value());
    }
};

TEST_F(Serve, ListsWhatTheListCommandLists) {
    EXPECT_THAT(names(""), ElementsAre("a.mp3", "b, \"c\".mp3", "silence.wav", "z\\xFF\\n.mp3"));
    EXPECT_THAT(names("text=M%C3%9CSIC%2Fa"), ElementsAre("a.mp3"));
    EXPECT_THAT(names("lowest=96&highest=96"), ElementsAre("b, \"c\".mp3"));
    EXPECT_THAT(names("lowest=100"), ElementsAre("a.mp3", "z\\xFF\\n.mp3"));
    EXPECT_THAT(names("key=8A"), ElementsAre("a.mp3"));
    EXPECT_THAT(names("corrected=1"), ElementsAre("z\\xFF\\n.mp3"));
    EXPECT_THAT(names("low=1"), ElementsAre("a.mp3", "b, \"c\".mp3"));
    EXPECT_THAT(names("gone=1"), ElementsAre("gone.mp3"));
    EXPECT_EQ(get("/api/tracks?text=a.mp3").json()["tracks"][0]["leastSure"], "tempo");
    EXPECT_EQ(get("/api/tracks?corrected=1").json()["tracks"][0]["leastSure"], "key");
    EXPECT_THAT(names("text=nothing+of+it"), IsEmpty());
    EXPECT_THAT(names("sort=bpm&reverse=1"),
                ElementsAre("z\\xFF\\n.mp3", "a.mp3", "b, \"c\".mp3", "silence.wav"));
    EXPECT_THAT(names("sort=title&offset=1&limit=2"), ElementsAre("b, \"c\".mp3", "z\\xFF\\n.mp3"));
    // A minor at 120 BPM goes with C major at 240.
    EXPECT_THAT(names("compatible=" + numberOf("/a.mp3")), ElementsAre("z\\xFF\\n.mp3"));
    EXPECT_THAT(names("lowest=239&highest=241&key=8B&compatible=" + numberOf("/a.mp3")),
                ElementsAre("z\\xFF\\n.mp3"));
    EXPECT_THAT(names("lowest=90&highest=100&compatible=" + numberOf("/a.mp3")), IsEmpty());
    EXPECT_THAT(names("key=9A&compatible=" + numberOf("/a.mp3")), IsEmpty());
    EXPECT_THAT(names("key=3A&compatible=" + numberOf("/a.mp3")), IsEmpty());
}

TEST_F(Serve, ListsFailuresWithTheirReasons) {
    const Json list = get("/api/tracks?failed=1").json();
    EXPECT_EQ(list["total"], 1);
    EXPECT_EQ(list["failures"][0]["file"], "/music/bad.mp3");
    EXPECT_EQ(list["failures"][0]["reason"], "is cut off");
}

TEST_F(Serve, SendsThePartsOfItsPage) {
    EXPECT_THAT(get("/").body, HasSubstr("/web/library/library.js"));
    EXPECT_EQ(get("/web/library/library.js").header("Content-Type"),
              "text/javascript; charset=utf-8");
    EXPECT_EQ(get("/web/track/track.css").status, 200);
    // A page that has gaps to be filled in is none.
    EXPECT_EQ(get("/web/report.html").status, 404);
    EXPECT_EQ(get("/web/library.html").status, 404);
}

TEST_F(Serve, ListsThatThereAreNoFailures) {
    {
        const catalogue::Catalogue catalogue(path_, catalogue::Catalogue::Access::write);
        catalogue.database().exec("DELETE FROM failures");
    }
    const Json list = get("/api/tracks?failed=1").json();
    EXPECT_EQ(list["failures"], Json::array());
    EXPECT_FALSE(list.contains("tracks"));
}

TEST_F(Serve, RefusesConditionsThatMeanNothing) {
    for (const char* parameters :
         {"lowest=x", "lowest=nan", "lowest=1e99", "lowest=130&highest=120", "key=H9", "sort=size",
          "limit=1001", "limit=-1", "offset=x", "compatible=99", "compatible=x",
          "failed=1&offset=1.5"}) {
        const Answer answer = get(std::string("/api/tracks?") + parameters);
        EXPECT_EQ(answer.status, 400) << parameters << answer.body;
        EXPECT_TRUE(answer.json().contains("error")) << parameters;
    }
    EXPECT_EQ(get("/api/strips?ids=1,x").status, 400);
    EXPECT_EQ(get("/api/export?format=xls").status, 400);
}

// Eight seconds at 120 BPM: 16 beats and a beat between each two.
TEST_F(Serve, KeepsACorrectionOverARestartAndTakesItBack) {
    const std::string track = "/api/tracks/" + numberOf("/a.mp3");
    const std::size_t beats = get(track).json()["beats"]["frames"].get<std::string>().size();
    const Answer corrected = post(track + "/corrections", R"({"kind":"double"})");
    EXPECT_EQ(corrected.json()["tempo"]["bpm"], 240.0);
    EXPECT_GT(corrected.json()["beats"]["frames"].get<std::string>().size(), beats);
    EXPECT_THAT(catalogued("show", {"/music/a.mp3"}).out, HasSubstr("by hand  doubled"));
    start();
    const Json again = get(track).json();
    EXPECT_EQ(again["tempo"]["bpm"], 240.0);
    EXPECT_EQ(again["corrections"][0]["kind"], "double");
    EXPECT_EQ(again["foundBpm"], 120.0);
    EXPECT_THAT(names("corrected=1"), ElementsAre("a.mp3", "z\\xFF\\n.mp3"));
    EXPECT_EQ(post(track + "/undo", "").json()["tempo"]["bpm"], 120.0);
    const Answer nothingToUndo = post(track + "/undo", "");
    EXPECT_EQ(nothingToUndo.status, 409);
    EXPECT_EQ(nothingToUndo.json()["error"], "the track has no correction to take back");
    EXPECT_THAT(names("corrected=1"), ElementsAre("z\\xFF\\n.mp3"));
}

TEST_F(Serve, AppliesEveryKindOfCorrection) {
    const std::string track = "/api/tracks/" + numberOf("/a.mp3") + "/corrections";
    for (const char* edit :
         {R"({"kind":"halve"})", R"({"kind":"double","value":0})", R"({"kind":"three-to-two"})",
          R"({"kind":"shift-half"})", R"({"kind":"shift-ms","value":-12.5})",
          R"({"kind":"downbeat","value":3.5})", R"({"kind":"key","value":23})",
          R"({"kind":"bpm","value":97.5})"})
        EXPECT_EQ(post(track, edit).status, 200) << edit;
    EXPECT_THAT(catalogued("show", {"/music/a.mp3"}).out,
                HasSubstr("halved, doubled, three beats for two, moved by half a beat, moved by "
                          "-12.5 ms, a bar begins at 0:03.50, key G# minor, 97.50 BPM"));
}

TEST_F(Serve, RefusesWhatIsNoCorrectionOrCannotBeMade) {
    const std::string track = "/api/tracks/" + numberOf("/a.mp3") + "/corrections";
    for (const char* edit :
         {"", "{}", "[]", "null", R"({"kind":1})", R"({"kind":"triple"})", R"({"kind":"bpm"})",
          R"({"kind":"bpm","value":"120"})", R"({"kind":"bpm","value":1e300})",
          R"({"kind":"key","value":24})", R"({"kind":"key","value":1.5})",
          R"({"kind":"double","value":1})", R"({"kind":"downbeat","value":-1})", "\xFF"})
        EXPECT_EQ(post(track, edit).status, 400) << edit;
    const std::string silent = "/api/tracks/" + numberOf("/silence.wav") + "/corrections";
    const Answer noBeats = post(silent, R"({"kind":"double"})");
    EXPECT_EQ(noBeats.status, 409);
    EXPECT_EQ(noBeats.json()["error"], "the track has no beats");
    EXPECT_EQ(post("/api/tracks/99/corrections", R"({"kind":"double"})").status, 404);
}

TEST_F(Serve, NoticesWhatOtherProgramsChange) {
    const Json before = get("/api/scan").json();
    EXPECT_EQ(before["tracks"], 4);
    EXPECT_EQ(before["failures"], 1);
    EXPECT_EQ(catalogued("correct", {"--halve", "/music/a.mp3"}).exitStatus, 0);
    const Json after = get("/api/scan").json();
    EXPECT_GT(after["revision"], before["revision"]);
    EXPECT_EQ(after["corrected"], 2);
    EXPECT_EQ(get("/api/scan").json()["revision"], after["revision"]);
}

TEST_F(Serve, SaysHowFarAScanIsThatRunsBesideIt) {
    EXPECT_EQ(get("/api/scan").json()["scan"], nullptr);
    {
        catalogue::Catalogue catalogue(path_, catalogue::Catalogue::Access::write);
        catalogue::Scan scan(catalogue, {"{}", false, false});
        for (const char* path : {"/music/x", "/music/y"}) scan.found(path, {1, 1}, 1.0);
        scan.settle();
        scan.putFailure("/music/x", {1, 1}, {catalogue::FailureKind::damaged, "is cut off"});
        scan.commit();
        const Json seen = get("/api/scan").json()["scan"];
        EXPECT_EQ(seen["planned"], 2);
        EXPECT_EQ(seen["done"], 1);
        EXPECT_EQ(seen["failed"], 1);
        // A long track: nothing is written for a while, but the scan has its lock.
        catalogue.database().exec("UPDATE scan_progress SET written_at = written_at - 60");
        EXPECT_EQ(get("/api/scan").json()["scan"]["done"], 1);
    }
    EXPECT_EQ(get("/api/scan").json()["scan"], nullptr);
    // One that was killed has left no end, and no lock.
    catalogue::Catalogue catalogue(path_, catalogue::Catalogue::Access::write);
    catalogue.database().exec("UPDATE scan_progress SET ended_at = NULL");
    EXPECT_EQ(get("/api/scan").json()["scan"], nullptr);
}

TEST_F(Serve, ShowsAnotherCatalogueThatTookThePlaceOfTheFirst) {
    ASSERT_EQ(get("/api/scan").json()["tracks"], 4);
    const std::string other = folder_.file("other.sqlite");
    { const catalogue::Catalogue empty(other, catalogue::Catalogue::Access::create); }
    std::filesystem::rename(other, path_);
    EXPECT_EQ(get("/api/scan").json()["tracks"], 0);
}

TEST_F(Serve, ExportsTheListsOfTheListCommand) {
    for (const char* format : {"m3u8", "csv"}) {
        const Answer answer = get(std::string("/api/export?low=1&format=") + format);
        const std::string listed = catalogued("list", {"--low-confidence", "--format", format}).out;
        // The answer comes in pieces, each behind its length.
        EXPECT_THAT(answer.body, HasSubstr(listed)) << format;
        EXPECT_EQ(answer.header("Content-Disposition"),
                  std::string("attachment; filename=\"tracks.") + format + "\"");
    }
    const std::string chosen =
        R"({"ids":[)" + numberOf("/silence.wav") + "," + numberOf("/a.mp3") + ",99]}";
    const std::string body = post("/api/export?format=json", chosen).body;
    const std::size_t start = body.find('[');
    const Json tracks = Json::parse(body.substr(start, body.rfind(']') + 1 - start));
    ASSERT_EQ(tracks.size(), 2U);
    EXPECT_EQ(tracks[0]["file"], "/music/silence.wav");
    EXPECT_EQ(tracks[1]["key"]["camelot"], "8A");
    EXPECT_EQ(post("/api/export?format=json", R"({"ids":"x"})").status, 400);
}

TEST_F(Serve, SendsTheFileOfATrackOrAnyPartOfIt) {
    const std::string path = folder_.file("one.flac");
    const std::string audio = "/api/tracks/" + addTrack(path, {"flac", "flac"}) + "/audio";
    const std::string bytes = test::readFile(path);
    const std::string size = std::to_string(bytes.size());
    const Answer whole = get(audio);
    EXPECT_EQ(whole.status, 200);
    EXPECT_EQ(whole.header("Content-Type"), "audio/flac");
    EXPECT_EQ(whole.header("Accept-Ranges"), "bytes");
    EXPECT_EQ(whole.header("Content-Length"), size);
    EXPECT_EQ(whole.body, bytes);
    const Answer part = get(audio, {{"Range", "bytes=100-299"}});
    EXPECT_EQ(part.status, 206);
    EXPECT_EQ(part.header("Content-Range"), "bytes 100-299/" + size);
    EXPECT_EQ(part.body, bytes.substr(100, 200));
    EXPECT_EQ(get(audio, {{"Range", "bytes=1000-"}}).body, bytes.substr(1000));
    EXPECT_EQ(get(audio, {{"Range", "bytes=-10"}}).body, bytes.substr(bytes.size() - 10));
    for (const std::string& range : {"bytes=" + size + "-", std::string("bytes=5-2"),
                                     std::string("bytes=0-0,5-5"), std::string("lines=1-2")})
        EXPECT_EQ(get(audio, {{"Range", range}}).status, 416) << range;
    const Answer head = request("HEAD", audio, "");
    EXPECT_EQ(head.header("Content-Length"), size);
    EXPECT_EQ(head.body, "");
}

// 8 s of 44,100 frames, 4 bytes each, behind 44 bytes of header; MP3 has its delays left out.
TEST_F(Serve, SendsTheSoundAsItWasAnalysed) {
    const std::string path = folder_.file("one.mp3");
    const std::string track = addTrack(path, {"mp3", "libmp3lame"});
    const Answer sound = get("/api/tracks/" + track + "/sound");
    EXPECT_EQ(sound.status, 200);
    EXPECT_EQ(sound.header("Content-Type"), "audio/wav");
    ASSERT_EQ(sound.body.size(), 44U + 8U * 44100U * 4U);
    test::writeFile(folder_.file("sound.wav"), sound.body);
    test::Recorder original;
    test::Recorder sent;
    media::TrackDecoder(path).run(original);
    media::TrackDecoder(folder_.file("sound.wav")).run(sent);
    ASSERT_EQ(sent.left.size(), original.left.size());
    for (std::size_t i = 0; i < sent.left.size(); i += 997)
        EXPECT_NEAR(sent.left[i], original.left[i], 1.0e-4) << i;
}

TEST_F(Serve, SaysOfAFileThatIsGoneThatItCannotBePlayed) {
    const std::string gone = "/api/tracks/" + numberOf("/a.mp3");
    EXPECT_EQ(get(gone + "/audio").status, 409);
    EXPECT_EQ(get(gone + "/sound").status, 409);
    // A pipe would keep whoever opens it waiting for a writer.
    const std::string path = folder_.file("pipe.wav");
    const std::string pipe = "/api/tracks/" + addTrack(path, {"wav", "pcm_s16le"}) + "/audio";
    std::filesystem::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(get(pipe).status, 409);
}

TEST_F(Serve, RefusesAFileThatTookThePlaceOfTheTrack) {
    const std::string path = folder_.file("one.wav");
    const std::string track = "/api/tracks/" + addTrack(path, {"wav", "pcm_s16le"});
    const std::string text = folder_.file("text");
    test::writeFile(text, "the secret of another program");
    const std::string other = folder_.file("other.wav");
    test::writeAudioFile(other, {"wav", "pcm_s16le"}, test::cadence(48000, 2, 8.0, 13, 440.0));
    for (const std::string& target : {text, other}) {
        std::filesystem::remove(path);
        std::filesystem::create_symlink(target, path);
        EXPECT_EQ(get(track + "/audio").status, 409) << target;
        EXPECT_EQ(get(track + "/sound").status, 409) << target;
    }
    std::filesystem::remove(path);
    std::filesystem::rename(other, path);
    for (const char* what : {"/audio", "/sound"}) {
        const Answer answer = get(track + what);
        EXPECT_EQ(answer.status, 409) << what;
        EXPECT_THAT(answer.body, HasSubstr("the track has changed since it was analysed")) << what;
    }
}

TEST_F(Serve, ShowsACatalogueThatMayNotBeWritten) {
    tool_.reset();
    const auto all = std::filesystem::perms::all;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_read);
    std::filesystem::permissions(folder_.path(), std::filesystem::perms::owner_read |
                                                     std::filesystem::perms::owner_exec);
    start();
    EXPECT_THAT(tool_->err(), HasSubstr("corrections will be refused"));
    EXPECT_EQ(names("").size(), 4U);
    const Answer refused =
        post("/api/tracks/" + numberOf("/a.mp3") + "/corrections", R"({"kind":"double"})");
    EXPECT_EQ(refused.status, 503);
    EXPECT_THAT(refused.body, HasSubstr("may not be written to"));
    std::filesystem::permissions(folder_.path(), all);
}

TEST_F(Serve, RefusesAFileThatIsNoCatalogue) {
    test::writeFile(folder_.file("text"), "no catalogue");
    const test::ToolRun run = test::runTool({"serve", "--catalogue", folder_.file("text")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(test::runTool({"serve", "--catalogue", folder_.file("none")}).exitStatus, 1);
}

}  // namespace
}  // namespace app
