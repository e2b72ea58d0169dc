// SPDX-License-Identifier: MIT
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "media/TrackDecoder.h"
#include "page/pageSound.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using test::runTool;
using test::ToolRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ReportCommand : public testing::Test {
protected:
    void SetUp() override {
        test::writeAudioFile(track_, {"flac", "flac"}, test::clicks(44100, 2, 3.0, {0.5, 1.5}));
    }

    /** What the page plays: the text of its sound, or the address that it refers to. */
    static std::string soundIn(const std::string& page) { return part(page, "id=\"sound\">"); }
    static nlohmann::json addressIn(const std::string& page) {
        return nlohmann::json::parse(part(page, "id=\"data\">"))["audio"];
    }

    test::TemporaryFolder folder_;
    std::string track_ = folder_.file("a.flac");
    std::string page_ = folder_.file("a.html");

private:
    static std::string part(const std::string& page, const std::string& begin) {
        const std::size_t from = page.find(begin) + begin.size();
        return page.substr(from, page.find("</script>", from) - from);
    }
};

TEST_F(ReportCommand, WritesAPageWithSoundAndPrintsNothing) {
    const ToolRun run = runTool({"report", track_, "-o", page_});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
    const std::string page = test::readFile(page_);
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>"));
    // "OggS" in base64.
    EXPECT_THAT(soundIn(page), StartsWith("T2dnU"));
    EXPECT_EQ(addressIn(page), nullptr);
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac", "a.html"));
}

TEST_F(ReportCommand, WritesToStandardOutput) {
    const ToolRun run = runTool({"report", "--no-embed", track_, "-o", "-"});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(run.out, StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(run.out, HasSubstr("</html>\n"));
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac"));
}

TEST_F(ReportCommand, RefersToTheFileWhereTheSoundIsTooLarge) {
    ToolRun run = runTool({"report", "--embed", "1K", track_, "-o", page_});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.err, HasSubstr("a.flac: warning: its sound is not in the page"));
    EXPECT_EQ(addressIn(test::readFile(page_)), "a.flac");
    EXPECT_EQ(soundIn(test::readFile(page_)), "");
}

TEST_F(ReportCommand, RefersToTheFileFromWhereThePageIs) {
    const std::string odd = folder_.file("a #1 %?.flac");
    std::filesystem::rename(track_, odd);
    std::filesystem::create_directory(folder_.file("pages"));
    const ToolRun run = runTool({"report", "--no-embed", odd, "-o", folder_.file("pages/x.html")});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(addressIn(test::readFile(folder_.file("pages/x.html"))), "../a%20%231%20%25%3F.flac");
}

TEST_F(ReportCommand, MakesAPageOfEachTrackInAFolderAndReplacesNone) {
    const std::string other = folder_.file("b.flac");
    std::filesystem::copy_file(track_, other);
    const std::string pages = folder_.file("pages");
    EXPECT_EQ(runTool({"report", track_, "-d", pages}).exitStatus, 0);
    test::writeFile(pages + "/a.html", "mine");
    const ToolRun run = runTool({"report", track_, other, "-d", pages});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("a.html is there already (--overwrite replaces it)"));
    EXPECT_EQ(test::readFile(pages + "/a.html"), "mine");
    EXPECT_THAT(test::readFile(pages + "/b.html"), StartsWith("<!DOCTYPE"));
    EXPECT_EQ(runTool({"report", track_, "-d", pages, "--overwrite"}).exitStatus, 0);
    EXPECT_THAT(test::readFile(pages + "/a.html"), StartsWith("<!DOCTYPE"));
}

TEST_F(ReportCommand, RefusesPlacesThatDoNotFit) {
    const auto refusal = [](const std::vector<std::string>& arguments) {
        const ToolRun run = runTool(arguments);
        EXPECT_EQ(run.exitStatus, 2);
        return run.err;
    };
    EXPECT_THAT(refusal({"report", track_}), HasSubstr("say where the page goes"));
    EXPECT_THAT(refusal({"report", track_, "-o", folder_.file("a.txt")}),
                HasSubstr("must end in .html"));
    EXPECT_THAT(refusal({"report", track_, track_, "-o", page_}), HasSubstr("go to a folder"));
    EXPECT_THAT(refusal({"report", track_, "-o", page_, "--embed", "much"}),
                HasSubstr("takes a size"));
    EXPECT_THAT(refusal({"report", track_, "-o", page_, "--embed", "1M", "--no-embed"}),
                HasSubstr("--no-embed"));
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac"));
}

TEST_F(ReportCommand, LeavesNoPageOfATrackThatFails) {
    test::writeFile(page_, "old");
    test::writeFile(track_, "no music");
    const ToolRun run = runTool({"report", track_, "-o", page_});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(test::readFile(page_), "old");
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac", "a.html"));
}

TEST_F(ReportCommand, NeverReplacesATrack) {
    const std::string track = folder_.file("track.html");
    std::filesystem::rename(track_, track);
    const ToolRun run = runTool({"report", track, "-o", track});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.err, HasSubstr("the page would replace the track itself"));
}

TEST_F(ReportCommand, SaysThatATemporaryFolderIsMissing) {
    ToolRun run;
    run.arguments = {"report", track_, "-o", page_};
    run.environment = {{"TMPDIR", folder_.file("none")}};
    run.run();
    EXPECT_NE(run.exitStatus, 0);
    EXPECT_THAT(run.err, HasSubstr("no temporary folder can be made"));
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac"));
}

// Clicks at 0.5 and 1.5 s stay there: the encoder's delay is stated in the file and left out again.
TEST_F(ReportCommand, EmbedsSoundThatBeginsWithTheMusic) {
    beatatlas::track::TrackResult analysis;
    analysis.rate = 44100;
    analysis.frames = 3 * 44100;
    const auto bytes = encodedSound(track_, analysis, 1 << 20, [](double) {});
    ASSERT_TRUE(bytes);
    const std::string copy = folder_.file("copy.opus");
    test::writeFile(copy, *bytes);
    test::Recorder recorder;
    media::TrackDecoder(copy).run(recorder);
    EXPECT_EQ(recorder.left.size(), 3U * 48000U);
    EXPECT_NEAR(test::clickNear(recorder.left, 48000, 0.5), 24000, 24);
    EXPECT_NEAR(test::clickNear(recorder.left, 48000, 1.5), 72000, 24);
}

TEST_F(ReportCommand, RefusesATrackThatHasChangedMeanwhile) {
    beatatlas::track::TrackResult analysis;
    analysis.rate = 44100;
    analysis.frames = 3 * 44100 - 1;
    EXPECT_THROW(encodedSound(track_, analysis, 1 << 20, [](double) {}), base::TrackError);
}

}  // namespace
}  // namespace app
