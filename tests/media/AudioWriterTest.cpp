// SPDX-License-Identifier: MIT
#include "media/AudioWriter.h"

#include <csignal>

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "base/errors.h"
#include "media/TrackDecoder.h"
#include "support/ClickPattern.h"
#include "support/Sounds.h"
#include "support/TemporaryFolder.h"

namespace media {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/** The first frames of a sound, in stretches of an awkward length. */
void write(const std::string& path, const AudioKind& kind, const test::Sound& sound,
           std::size_t frames) {
    showFfmpegMessages(false);
    AudioWriter writer(path, kind, sound.rate);
    constexpr std::size_t kStretch = 1777;
    for (std::size_t at = 0; at < frames; at += kStretch) {
        const std::size_t count = std::min(kStretch, frames - at);
        StereoBlock block;
        const auto begin = sound.channels[0].begin() + static_cast<std::ptrdiff_t>(at);
        block.left.assign(begin, begin + static_cast<std::ptrdiff_t>(count));
        block.right = block.left;
        writer.write(block);
    }
    EXPECT_EQ(writer.commit(), "");
}

test::Recorder read(const std::string& path) {
    test::Recorder recorder;
    TrackDecoder(path).run(recorder);
    return recorder;
}

AudioKind kindOf(const std::string& ending) {
    for (const AudioKind& kind : audioKinds()) {
        if (kind.ending == ending) return kind;
    }
    throw std::runtime_error("no kind " + ending);
}

TEST(AudioWriter, WritesEveryKindThatItNames) {
    std::vector<std::string> endings;
    for (const AudioKind& kind : audioKinds()) endings.emplace_back(kind.ending);
    EXPECT_THAT(endings,
                ElementsAre(".wav", ".flac", ".wv", ".mp3", ".m4a", ".ogg", ".oga", ".opus"));
}

// Half a frame is the error of the pattern's own detector in lossy sound.
TEST(AudioWriter, KeepsPlaceAndLengthThroughEveryKind) {
    const test::TemporaryFolder folder;
    for (const AudioKind& kind : audioKinds()) {
        for (const int rate : {44100, 48000}) {
            const int taken = AudioWriter::rateFor(kind, rate);
            const test::Sound sound = test::clickPattern(taken, 2);
            const std::string path = folder.file(std::string("out") + kind.ending);
            write(path, kind, sound, sound.frames());
            const test::Recorder found = read(path);
            EXPECT_EQ(found.left.size(), sound.frames()) << kind.ending << rate;
            const auto shift = test::patternShift(found.left, taken);
            ASSERT_TRUE(shift) << kind.ending << rate;
            EXPECT_NEAR(*shift * taken, 0.0, 0.5) << kind.ending << rate;
        }
    }
}

TEST(AudioWriter, KeepsLosslessSamplesToHalfAStepOfSixteenBits) {
    const test::TemporaryFolder folder;
    const test::Sound sound = test::tone(44100, 2, 1.0, 440.0, 0.9);
    for (const char* ending : {".wav", ".flac", ".wv"}) {
        write(folder.file("out"), kindOf(ending), sound, sound.frames());
        const test::Recorder found = read(folder.file("out"));
        ASSERT_EQ(found.left.size(), sound.frames());
        for (std::size_t i = 0; i < sound.frames(); ++i)
            ASSERT_NEAR(found.left[i], sound.channels[0][i], 0.51 / 32768.0) << ending << i;
    }
}

TEST(AudioWriter, WritesTracksOfAnyLength) {
    const test::TemporaryFolder folder;
    const test::Sound sound = test::tone(48000, 2, 0.2, 440.0, 0.5);
    for (const AudioKind& kind : audioKinds()) {
        for (const std::size_t frames : {1, 100, 960, 1024, 1152, 4097, 9600}) {
            // Nobody recognises an MP3 of a packet or two, and a Vorbis file of a single page has
            // no room to tell its delay.
            if (kind.muxer == std::string("mp3") && frames < 4000) continue;
            if (kind.muxer == std::string("ogg") && frames < 9000) continue;
            const std::string path = folder.file(std::string("out") + kind.ending);
            write(path, kind, sound, frames);
            EXPECT_EQ(read(path).left.size(), frames) << kind.ending << frames;
        }
    }
}

TEST(AudioWriter, KnowsTheRatesOfEachKind) {
    EXPECT_EQ(AudioWriter::rateFor(kindOf(".opus"), 44100), 48000);
    EXPECT_EQ(AudioWriter::rateFor(kindOf(".mp3"), 44100), 44100);
    EXPECT_EQ(AudioWriter::rateFor(kindOf(".wav"), 44100), 44100);
}

TEST(AudioWriter, LeavesNothingWithoutCommit) {
    const test::TemporaryFolder folder;
    for (const AudioKind& kind : audioKinds()) {
        AudioWriter writer(folder.file("out"), kind, 48000);
        StereoBlock block;
        block.assignSilence(10000);
        writer.write(block);
    }
    EXPECT_THAT(folder.names(), ElementsAre());
}

TEST(AudioWriter, SaysThatTheFileMayNotGrow) {
    const test::TemporaryFolder folder;
    const test::Sound sound = test::tone(48000, 2, 3.0, 440.0, 0.5);
    std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit own = {};
    getrlimit(RLIMIT_FSIZE, &own);
    const struct rlimit small = {10000, own.rlim_max};
    for (const AudioKind& kind : audioKinds()) {
        const std::string path = folder.file(std::string("out") + kind.ending);
        setrlimit(RLIMIT_FSIZE, &small);
        try {
            write(path, kind, sound, sound.frames());
            ADD_FAILURE() << kind.ending;
        } catch (const base::OutputError& error) {
            EXPECT_THAT(error.what(), HasSubstr(" cannot be written: File too large"));
        }
        setrlimit(RLIMIT_FSIZE, &own);
    }
    EXPECT_THAT(folder.names(), ElementsAre());
}

}  // namespace
}  // namespace media
