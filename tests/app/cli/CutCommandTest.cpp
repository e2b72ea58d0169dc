// SPDX-License-Identifier: MIT
#include <csignal>

#include <cmath>
#include <filesystem>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "media/RecordingChain.h"
#include "media/TrackDecoder.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using test::runTool;
using test::Sound;
using test::ToolRun;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kRate = 44100;
constexpr double kChordHz = 440.0;
constexpr double kKickHz = 60.0;

class CutCommand : public testing::Test {
protected:
    std::string write(const std::string& name, const Sound& sound) {
        const std::string path = folder_.file(name);
        test::writeAudioFile(path, {"wav", "pcm_f32le"}, sound);
        return path;
    }

    media::Recording read(const std::string& path) {
        media::TrackDecoder decoder(path);
        media::RecordingChain chain(1.0, [](std::size_t) {});
        decoder.run(chain);
        codec_ = decoder.format().codec;
        return chain.recording();
    }

    media::Recording cut(const Sound& sound, std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"cut", write("in.wav", sound), "-o", out_});
        const ToolRun run = runTool(options);
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        EXPECT_EQ(run.out, "");
        return read(out_);
    }

    test::TemporaryFolder folder_;
    std::string out_ = folder_.file("out.wav");
    std::string codec_;
};

Sound chordWithKicks(int rate, double seconds) {
    Sound sound = test::tone(rate, 2, seconds, kChordHz, 0.2);
    test::mixInto(sound, test::kicks(rate, seconds, 0.6));
    return sound;
}

TEST_F(CutCommand, TakesTheBassDrumOutAndKeepsTheNote) {
    const Sound before = chordWithKicks(kRate, 6.0);
    const media::Recording after = cut(before);
    const std::size_t beat = kRate / 2;
    const std::size_t hit = kRate / 10;
    double kickBefore = 0.0;
    double kickAfter = 0.0;
    for (std::size_t at = beat; at < 11 * beat; at += beat) {
        kickBefore += test::levelAt(before.channels[0], kRate, kKickHz, at, hit);
        kickAfter += test::levelAt(after.channels[0], kRate, kKickHz, at, hit);
    }
    EXPECT_LT(kickAfter, 0.5 * kickBefore);
    EXPECT_NEAR(test::levelAt(after.channels[0], kRate, kChordHz, kRate, 4 * kRate), 0.2, 0.01);
}

TEST_F(CutCommand, KeepsTheNoteFromTheFirstFrameToTheLast) {
    const std::size_t tenth = kRate / 10;
    const media::Recording after = cut(test::tone(kRate, 1, 3.0, kChordHz, 0.2));
    for (const std::size_t from : {std::size_t{0}, 3 * static_cast<std::size_t>(kRate) - tenth})
        EXPECT_GT(test::levelAt(after.channels[0], kRate, kChordHz, from, tenth), 0.12) << from;
}

TEST_F(CutCommand, KeepsLengthRateAndChannels) {
    for (const auto& [rate, channels, seconds] :
         {std::tuple{8000, 1, 0.7}, {48000, 2, 1.1}, {96000, 6, 0.5}, {44100, 2, 0.001}}) {
        const Sound sound = test::tone(rate, channels, seconds, 440.0, 0.2);
        const media::Recording after = cut(sound);
        EXPECT_EQ(after.rate, rate);
        EXPECT_EQ(after.channels.size(), static_cast<std::size_t>(channels));
        EXPECT_EQ(after.frames(), sound.frames());
    }
}

TEST_F(CutCommand, CutsEachChannelForItself) {
    Sound sound = test::tone(kRate, 2, 2.0, kChordHz, 0.2);
    sound.channels[1].assign(sound.frames(), 0.0F);
    const media::Recording after = cut(sound);
    EXPECT_GT(test::levelAt(after.channels[0], kRate, kChordHz, kRate / 2, kRate), 0.19);
    EXPECT_THAT(after.channels[1], testing::Each(0.0F));
}

TEST_F(CutCommand, WritesSixteenBitsOrFloats) {
    const Sound sound = test::tone(kRate, 1, 1.0, kChordHz, 0.2);
    const media::Recording rounded = cut(sound);
    EXPECT_EQ(codec_, "pcm_s16le");
    const media::Recording exact = cut(sound, {"--float"});
    EXPECT_EQ(codec_, "pcm_f32le");
    for (std::size_t i = 0; i < exact.frames(); ++i)
        ASSERT_EQ(rounded.channels[0][i],
                  std::nearbyint(exact.channels[0][i] * 32768.0F) / 32768.0F);
}

// A tone of three times full scale: 9.5 dB over it.
TEST_F(CutCommand, WarnsOfWhatIntegersCannotHold) {
    const std::string track = folder_.file("loud.wav");
    test::writeAudioFile(track, {"wav", "pcm_f32le"}, test::tone(kRate, 1, 1.0, kChordHz, 3.0));
    const auto errorOf = [&](std::vector<std::string> options) {
        options.insert(options.begin(), {"cut", track, "-o", folder_.file("out.wav")});
        return runTool(options).err;
    };
    EXPECT_THAT(errorOf({}), HasSubstr("loud.wav: warning: is too loud: clipped "));
    EXPECT_EQ(errorOf({"--float"}), "");
}

TEST_F(CutCommand, FollowsModeAndDivision) {
    const Sound sound = chordWithKicks(kRate, 2.0);
    const media::Recording usual = cut(sound, {"--float"});
    EXPECT_EQ(cut(sound, {"--float", "--mode", "1"}).channels, usual.channels);  // short: same hop
    EXPECT_NE(cut(sound, {"--float", "--mode", "2"}).channels, usual.channels);
    for (const char* div : {"2", "4", "8", "16"})
        EXPECT_NE(cut(sound, {"--float", "--div", div}).channels, usual.channels);
}

TEST_F(CutCommand, StaysFiniteWhereTheTrackIsNot) {
    Sound sound = test::tone(kRate, 1, 1.0, kChordHz, 0.2);
    sound.channels[0][1000] = std::numeric_limits<float>::quiet_NaN();
    sound.channels[0][2000] = std::numeric_limits<float>::infinity();
    const media::Recording after = cut(sound, {"--float"});
    EXPECT_TRUE(std::all_of(after.channels[0].begin(), after.channels[0].end(),
                            [](float sample) { return std::isfinite(sample); }));
    EXPECT_GT(test::levelAt(after.channels[0], kRate, kChordHz, kRate / 2, kRate / 4), 0.15);
}

TEST_F(CutCommand, TakesNamesWithSpacesAndBrackets) {
    const std::string track = write("[a, b] c.wav", test::tone(kRate, 1, 0.5, 440.0, 0.2));
    const ToolRun run = runTool({"cut", track, "-o", folder_.file("[x] y.WAV")});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(folder_.names(), ElementsAre("[a, b] c.wav", "[x] y.WAV"));
}

TEST_F(CutCommand, NeverReplacesTheTrackItself) {
    const std::string track = write("in.wav", test::tone(kRate, 1, 0.5, 440.0, 0.2));
    std::filesystem::create_symlink(track, folder_.file("link.wav"));
    const std::string before = test::readFile(track);
    for (const std::string& name : {track, folder_.file("link.wav")}) {
        const ToolRun run = runTool({"cut", track, "-o", name});
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.err, HasSubstr("would replace the track"));
    }
    EXPECT_EQ(test::readFile(track), before);
}

TEST_F(CutCommand, TellsWhyTheResultCannotBeWritten) {
    const std::string track = write("in.wav", test::tone(kRate, 1, 0.5, 440.0, 0.2));
    const ToolRun run = runTool({"cut", track, "-o", folder_.file("no/out.wav")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("no/out.wav cannot be written: No such file or directory"));
}

TEST_F(CutCommand, LeavesNothingBehindWhenTheFileMayNotGrow) {
    const std::string track = write("in.wav", test::tone(kRate, 1, 2.0, 440.0, 0.2));
    struct rlimit own = {};
    getrlimit(RLIMIT_FSIZE, &own);
    const struct rlimit small = {100000, own.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const ToolRun run = runTool({"cut", track, "-o", out_});
    setrlimit(RLIMIT_FSIZE, &own);
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "beatatlas: " + out_ + " cannot be written: File too large\n");
    EXPECT_THAT(folder_.names(), ElementsAre("in.wav"));
}

TEST_F(CutCommand, LeavesTheOlderFileWhenTheTrackFails) {
    test::writeFile(out_, "old");
    test::copyShortened(write("in.wav", test::tone(kRate, 1, 2.0, 440.0, 0.2)),
                        folder_.file("short.wav"), 100000);
    for (const char* name : {"missing", "short.wav"})
        EXPECT_EQ(runTool({"cut", folder_.file(name), "-o", out_}).exitStatus, 1);
    EXPECT_EQ(test::readFile(out_), "old");
    EXPECT_EQ(runTool({"cut", "--partial", folder_.file("short.wav"), "-o", out_}).exitStatus, 0);
    EXPECT_EQ(read(out_).frames(), static_cast<std::size_t>(2 * kRate - 25000));
}

TEST_F(CutCommand, StopsOnRequestAndLeavesNothing) {
    const std::string track = write("in.wav", chordWithKicks(kRate, 60.0));
    for (const int signalNumber : {SIGINT, SIGTERM}) {
        ToolRun run;
        run.arguments = {"cut", "--mode", "4", track, "-o", out_};
        run.hasTerminal = true;
        run.signalAtProgress = signalNumber;
        run.run();
        EXPECT_EQ(run.exitStatus, 128 + signalNumber);
        EXPECT_THAT(folder_.names(), ElementsAre("in.wav"));
    }
}

}  // namespace
}  // namespace app
