// SPDX-License-Identifier: MIT
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using nlohmann::json;
using test::OutputPlace;
using test::runTool;
using test::ToolRun;
using testing::HasSubstr;

class CompareCommand : public testing::Test {
protected:
    std::string write(const std::string& name, const std::string& bytes) {
        test::writeFile(folder_.file(name), bytes);
        return folder_.file(name);
    }

    std::string writeKicks() {
        const std::string track = folder_.file("kicks.wav");
        test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::kicks(44100, 20.0, 0.6));
        return track;
    }

    json compare(const std::string& a, const std::string& b) {
        const ToolRun run = runTool({"compare", "--json", a, b});
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        return run.exitStatus == 0 ? json::parse(run.out) : json();
    }

    test::TemporaryFolder folder_;
};

TEST_F(CompareCommand, FindsATrackAndItsResultAlike) {
    const std::string track = writeKicks();
    const std::string result = write("kicks.json", runTool({"analyze", "--json", track}).out);
    const json found = compare(track, result);
    EXPECT_EQ(found["tempoRatio"], 1.0);
    EXPECT_EQ(found["beats"]["same"]["within20ms"], 1.0);
    EXPECT_EQ(found["latenessMs"], 0.0);
    EXPECT_EQ(found["downbeats"]["within70ms"], 1.0);
    EXPECT_EQ(found["a"]["beats"], found["b"]["beats"]);
}

TEST_F(CompareCommand, ComparesATrackWithTappedBeats) {
    std::string taps;
    for (int i = 0; i < 40; ++i) taps += std::to_string(0.5 * i) + "\n";
    const json found = compare(writeKicks(), write("taps.txt", taps));
    EXPECT_GT(found["beats"]["same"]["within70ms"], 0.95);
    EXPECT_NEAR(found["tempoRatio"].get<double>(), 1.0, 0.001);
    EXPECT_EQ(found["downbeats"], nullptr);
    EXPECT_EQ(found["b"]["key"], nullptr);
}

TEST_F(CompareCommand, TellsPeople) {
    const std::string beats = write("b.txt", "1\n1.5\n2\n");
    const ToolRun run = runTool({"compare", beats, beats});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.out, HasSubstr("1.000 within 70 ms, 1.000 within 20 ms\n"));
    EXPECT_EQ(run.err, "");
}

TEST_F(CompareCommand, SaysWhichSideCannotBeRead) {
    const std::string good = write("good.txt", "1\n2\n");
    const std::string bad = write("bad.txt", "one\n");
    ToolRun run = runTool({"compare", good, bad});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("bad.txt: is neither audio nor a list of beats: line 1"));
    run = runTool({"compare", folder_.file("missing"), good});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("missing: cannot be opened: No such file"));
    run = runTool({"compare", folder_.path(), good});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("is a folder"));
    run = runTool({"compare", write("empty", ""), good});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("empty: is empty"));
}

TEST_F(CompareCommand, TakesTwoSides) {
    const std::string good = write("good.txt", "1\n2\n");
    EXPECT_EQ(runTool({"compare", good}).exitStatus, 2);
    EXPECT_EQ(runTool({"compare", good, good, good}).exitStatus, 2);
}

TEST_F(CompareCommand, TakesNamesOfAnyBytes) {
    const std::string odd = write("[a, b]\xFF\n", "1\n2\n");
    EXPECT_EQ(compare(odd, odd)["beats"]["same"]["within70ms"], 1.0);
    EXPECT_THAT(runTool({"compare", odd, odd}).out, HasSubstr("[a, b]\\xFF\\n\n"));
}

TEST_F(CompareCommand, SaysThatItsResultCannotBeWritten) {
    const std::string good = write("good.txt", "1\n2\n");
    ToolRun run;
    run.arguments = {"compare", good, good};
    run.output = OutputPlace::fullDisk;
    EXPECT_EQ(run.run().exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("No space left on device"));
}

}  // namespace
}  // namespace app
