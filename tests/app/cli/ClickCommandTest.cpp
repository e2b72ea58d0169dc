// SPDX-License-Identifier: MIT
#include <csignal>

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/resource.h>

#include "media/TrackDecoder.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using test::runTool;
using test::Sound;
using test::ToolRun;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kRate = 44100;

struct FoundBeat {
    std::size_t frame;
    int number;
};

class ClickCommand : public testing::Test {
protected:
    std::string write(const std::string& name, const Sound& sound) {
        const std::string path = folder_.file(name);
        test::writeAudioFile(path, {"wav", "pcm_f32le"}, sound);
        return path;
    }

    /** Kicks of 120 BPM, half as loud as full scale. */
    std::string writeKicks(double seconds = 20.0) {
        return write("in.wav", test::kicks(kRate, seconds, 0.5));
    }

    std::vector<FoundBeat> beatsOf(const std::string& track) {
        const ToolRun run = runTool({"analyze", "--json", track});
        std::vector<FoundBeat> beats;
        const auto document = nlohmann::json::parse(run.out);
        for (const auto& beat : document["tracks"][0]["beats"])
            beats.push_back({beat["frame"], beat["beat"]});
        return beats;
    }

    test::Recorder click(const std::string& track, std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"click", track, "-o", out_});
        const ToolRun run = runTool(options);
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        EXPECT_EQ(run.out, "");
        err_ = run.err;
        return read(out_);
    }

    static test::Recorder read(const std::string& path) {
        test::Recorder recorder;
        media::TrackDecoder(path).run(recorder);
        return recorder;
    }

    test::TemporaryFolder folder_;
    std::string out_ = folder_.file("out.wav");
    std::string err_;
};

TEST_F(ClickCommand, ClicksOnTheVeryFramesOfTheBeats) {
    const std::string track = writeKicks();
    const std::vector<FoundBeat> beats = beatsOf(track);
    ASSERT_GT(beats.size(), 30U);
    const test::Recorder clicks = click(track, {"--only"});
    const float high = *std::max_element(clicks.left.begin(), clicks.left.end());
    EXPECT_GT(high, 0.2F);
    for (const auto& [frame, number] : beats) {
        const float wanted = number == 1 ? high : 0.5F * high;
        EXPECT_NEAR(clicks.left[frame], wanted, 1e-3) << frame;
        if (frame > 0) {
            EXPECT_NEAR(clicks.left[frame - 1], 0.0F, 1e-4) << frame;
        }
    }
    EXPECT_EQ(clicks.left.size(), static_cast<std::size_t>(20 * kRate));
}

// What a lossy codec leaves of an onset spreads to both sides of it: its place is where three
// quarters of the height around it are first reached.
TEST_F(ClickCommand, KeepsTheBeatsInLossyFiles) {
    const std::string track = writeKicks();
    const std::vector<FoundBeat> beats = beatsOf(track);
    for (const char* name : {"out.mp3", "out.m4a", "out.ogg", "out.opus", "out.flac"}) {
        out_ = folder_.file(name);
        const test::Recorder clicks = click(track, {"--only"});
        const bool isOpus = out_.ends_with("opus");
        for (const auto& [frame, number] : beats) {
            const long beat = static_cast<long>(isOpus ? (frame * 480 + 220) / 441 : frame);
            if (beat < 1000) continue;
            const auto middle = clicks.left.begin() + beat;
            const float high = *std::max_element(middle - 1000, middle + 1000);
            const auto onset = std::find_if(middle - 1000, middle + 1000,
                                            [&](float sample) { return sample > 0.75F * high; });
            EXPECT_NEAR(static_cast<double>(onset - middle), 0.0, 1.0) << name << frame;
        }
    }
}

TEST_F(ClickCommand, PutsMusicLeftAndClicksRight) {
    const std::string track = writeKicks();
    const test::Recorder apart = click(track, {"--left-right"});
    const test::Recorder alone = click(track, {"--only"});
    const test::Recorder music = read(track);
    EXPECT_EQ(apart.right, alone.left);
    for (std::size_t i = 0; i < music.left.size(); i += 11)
        ASSERT_NEAR(apart.left[i], music.left[i], 1.0 / 32768.0);
}

TEST_F(ClickCommand, FollowsTheLevel) {
    const std::string track = writeKicks();
    const auto highest = [&](const char* level) {
        const test::Recorder clicks = click(track, {"--only", "--level", level});
        return *std::max_element(clicks.left.begin(), clicks.left.end());
    };
    EXPECT_NEAR(highest("0") / highest("-20"), 10.0, 0.02);
    EXPECT_LT(highest("40"), 0.9F);
}

TEST_F(ClickCommand, RefusesLevelsWithoutSense) {
    for (const char* level : {"nan", "inf", "41", "-61", "loud", ""})
        EXPECT_EQ(runTool({"click", writeKicks(1.0), "-o", out_, "--level", level}).exitStatus, 2);
}

TEST_F(ClickCommand, NamesTheFilesItCanWrite) {
    const std::string track = writeKicks(1.0);
    for (const char* name : {"out.xyz", "out", "mp3", ".aac"}) {
        const ToolRun run = runTool({"click", track, "-o", folder_.file(name)});
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.err, HasSubstr("must end in one of .wav, .flac, .wv, .mp3, .m4a, .ogg"));
    }
    EXPECT_THAT(folder_.names(), ElementsAre("in.wav"));
}

TEST_F(ClickCommand, SaysThatThereIsNothingToClickOn) {
    const std::string track = write("in.wav", test::tone(kRate, 2, 12.0, 440.0, 0.0));
    const test::Recorder silence = click(track);
    EXPECT_THAT(err_, HasSubstr("in.wav: warning: no beats were found: nothing clicks"));
    EXPECT_THAT(silence.left, Each(0.0F));
    EXPECT_EQ(silence.left.size(), static_cast<std::size_t>(12 * kRate));
    EXPECT_EQ(runTool({"click", track, "-o", out_, "--tempo", "off"}).exitStatus, 2);
}

TEST_F(ClickCommand, TakesNamesOfAnyBytes) {
    std::filesystem::rename(writeKicks(2.0), folder_.file("[a, b]\xFF\n.wav"));
    const std::string out = folder_.file("[x]\x80 y.FLAC");
    const ToolRun run = runTool({"click", folder_.file("[a, b]\xFF\n.wav"), "-o", out});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_EQ(read(out).left.size(), static_cast<std::size_t>(2 * kRate));
}

TEST_F(ClickCommand, NeverReplacesTheTrackItself) {
    const std::string track = writeKicks(1.0);
    std::filesystem::create_symlink(track, folder_.file("link.wav"));
    const std::string before = test::readFile(track);
    for (const std::string& name : {track, folder_.file("link.wav")}) {
        const ToolRun run = runTool({"click", track, "-o", name});
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.err, HasSubstr("would replace the track"));
    }
    EXPECT_EQ(test::readFile(track), before);
}

TEST_F(ClickCommand, LeavesTheOlderFileWhenTheNewOneMayNotGrow) {
    const std::string track = writeKicks(5.0);
    test::writeFile(out_, "old");
    struct rlimit own = {};
    getrlimit(RLIMIT_FSIZE, &own);
    const struct rlimit small = {100000, own.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const ToolRun run = runTool({"click", track, "-o", out_});
    setrlimit(RLIMIT_FSIZE, &own);
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "beatatlas: " + out_ + " cannot be written: File too large\n");
    EXPECT_THAT(folder_.names(), ElementsAre("in.wav", "out.wav"));
    EXPECT_EQ(test::readFile(out_), "old");
}

TEST_F(ClickCommand, StopsOnRequestAndLeavesNothing) {
    const std::string track = writeKicks(120.0);
    ToolRun run;
    run.arguments = {"click", track, "-o", out_};
    run.hasTerminal = true;
    run.signalAtProgress = SIGINT;
    run.run();
    EXPECT_EQ(run.exitStatus, 128 + SIGINT);
    EXPECT_THAT(folder_.names(), ElementsAre("in.wav"));
}

}  // namespace
}  // namespace app
