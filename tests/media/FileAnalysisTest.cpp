// SPDX-License-Identifier: MIT
#include "media/FileAnalysis.h"

#include <cfenv>
#include <cmath>
#include <filesystem>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "media/FilePasses.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/sameResults.h"

namespace media {
namespace {

using test::FileKind;
using test::Sound;
using testing::HasSubstr;

// Less than the program itself takes: nothing of a track can be kept.
constexpr std::int64_t kNoMemory = 1;

/** Drums and chords with noise enough that no codec keeps a sample as it was. */
Sound music(int rate, double seconds) {
    Sound sound = test::kicks(rate, seconds, 0.5);
    test::mixInto(sound, test::cadence(rate, 1, seconds, 3, 440.0));
    sound.channels.push_back(sound.channels[0]);
    for (float& sample : sound.channels[1]) sample *= 0.7F;
    return sound;
}

class FileAnalysisTest : public testing::Test {
protected:
    void SetUp() override {
        test::writeAudioFile(track_, {"flac", "flac"}, test::tone(44100, 2, 4.0, 220.0, 0.4));
    }

    AnalysedFile analyze(const std::string& path, bool acceptsCutOff = false) const {
        FileAnalysis::Options options;
        options.track.wantsSessionKey = true;
        options.acceptsCutOff = acceptsCutOff;
        return FileAnalysis(options).analyze(path);
    }

    std::string reasonOf(const std::string& path) const {
        try {
            analyze(path);
        } catch (const base::TrackError& error) {
            return error.what();
        }
        return "";
    }

    std::optional<base::TrackError::Kind> kindOf(const std::string& name) const {
        try {
            analyze(folder_.file(name));
        } catch (const base::TrackError& error) {
            return error.kind();
        }
        return std::nullopt;
    }

    test::TemporaryFolder folder_;
    std::string track_ = folder_.file("track");
};

struct FormatCase {
    const char* name;
    FileKind kind;
    bool isDeclared = true;  // the length, to the frame: see the remark at the table
};

class OneDecodingOfEveryFormat : public testing::TestWithParam<std::tuple<FormatCase, int>> {
protected:
    test::TemporaryFolder folder_;
    std::string track_ = folder_.file("track");
};

// Short of memory the track is decoded once for each of two passes, and once more before where its
// length is not declared.
TEST_P(OneDecodingOfEveryFormat, GivesTheSameResultsWhateverMemoryAndThreadsItMayTake) {
    const auto& [format, rate] = GetParam();
    test::writeAudioFile(track_, format.kind, music(rate, 3.3));
    const test::PlainAnalysis plain(track_);
    for (const std::int64_t memory : {kNoMemory, std::int64_t{1} << 30}) {
        for (const int threads : {1, 2, 3, 4}) {
            FileAnalysis::Options options;
            options.track.wantsSessionKey = true;
            options.effort = {memory, threads};
            options.note = [](const std::string& text) { ADD_FAILURE() << text; };
            std::int64_t heard = 0;
            options.alongside = [&](const StereoBlock& block) {
                heard += static_cast<std::int64_t>(block.frames());
            };
            const AnalysedFile found = FileAnalysis(options).analyze(track_);
            test::expectSameResults(found.result, plain.result());
            EXPECT_EQ(heard, plain.result().frames);
            EXPECT_EQ(found.file.damagedPackets, 0);
        }
    }
}

TEST_P(OneDecodingOfEveryFormat, KnowsTheLengthBeforehandWhereTheFileDeclaresIt) {
    const auto& [format, rate] = GetParam();
    for (const double seconds : {2.0, 3.345678}) {
        test::writeAudioFile(track_, format.kind, music(rate, seconds));
        const FilePasses passes(track_, {});
        const test::PlainAnalysis plain(track_);
        EXPECT_EQ(passes.declaredFrames().has_value(), format.isDeclared);
        if (format.isDeclared) {
            EXPECT_EQ(passes.declaredFrames(), plain.result().frames);
        }
    }
}

// What FFmpeg's own writers declare: none in Matroska and Wave 64, none to the frame in ASF; none
// in a bare stream.
INSTANTIATE_TEST_SUITE_P(
    Files, OneDecodingOfEveryFormat,
    testing::Combine(
        testing::Values(
            FormatCase{"Wave", {"wav", "pcm_s16le"}}, FormatCase{"Wave24", {"wav", "pcm_s24le"}},
            FormatCase{"WaveFloat", {"wav", "pcm_f32le"}},
            FormatCase{"Wave64", {"w64", "pcm_s16le"}, false},
            FormatCase{"Aiff", {"aiff", "pcm_s16be"}}, FormatCase{"Flac", {"flac", "flac"}},
            FormatCase{"FlacInOgg", {"ogg", "flac"}}, FormatCase{"Alac", {"ipod", "alac"}},
            FormatCase{"WavPack", {"wv", "wavpack"}}, FormatCase{"Mp3", {"mp3", "libmp3lame"}},
            FormatCase{"Mp3WithoutHeader", {"mp3", "libmp3lame", "write_xing=0"}, false},
            FormatCase{"AacInMp4", {"ipod", "aac"}},
            FormatCase{"AacInMp4WithoutEdit", {"ipod", "aac", "use_editlist=0"}},
            FormatCase{"AacBare", {"adts", "aac"}, false},
            FormatCase{"Vorbis", {"ogg", "libvorbis"}},
            FormatCase{"VorbisInMatroska", {"matroska", "libvorbis"}, false},
            FormatCase{"Wma", {"asf", "wmav2"}, false}),
        testing::Values(32000, 44100, 48000)),
    [](const auto& instance) {
        return std::get<0>(instance.param).name + std::to_string(std::get<1>(instance.param));
    });

INSTANTIATE_TEST_SUITE_P(
    OpusFiles, OneDecodingOfEveryFormat,
    testing::Combine(testing::Values(FormatCase{"Opus", {"ogg", "libopus"}},
                                     FormatCase{"OpusInMp4", {"mp4", "libopus"}},
                                     FormatCase{"OpusInMatroska", {"matroska", "libopus"}, false}),
                     testing::Values(48000)),
    [](const auto& instance) { return std::get<0>(instance.param).name; });

// Of 86 MiB the program and the analysis take 78. Of the rest 4 bytes of each 4.7 are the track's,
// 6.8 MiB: twenty seconds of floats.
TEST_F(FileAnalysisTest, GivesTheSameResultsWhenMemoryRunsOutOnTheWay) {
    Sound sound = music(44100, 40.0);
    // Silence at first looks as if it could be kept in integers.
    for (auto& channel : sound.channels) std::fill_n(channel.begin(), 40000, 0.0F);
    for (const FileKind& kind : {FileKind{"wav", "pcm_f32le"}, FileKind{"matroska", "pcm_f32le"}}) {
        test::writeAudioFile(track_, kind, sound);
        const test::PlainAnalysis plain(track_);
        for (const int threads : {1, 2, 3}) {
            FileAnalysis::Options options;
            options.track.wantsSessionKey = true;
            options.effort = {86LL << 20, threads};
            test::expectSameResults(FileAnalysis(options).analyze(track_).result, plain.result());
        }
    }
}

TEST_F(FileAnalysisTest, ReadsAFileOnceWhereMemoryAllows) {
    for (const int threads : {1, 2}) {
        FileAnalysis::Options options;
        options.track.wantsSessionKey = true;
        options.effort.threads = threads;
        options.alongside = [&](const StereoBlock&) { std::filesystem::remove(track_); };
        SetUp();
        EXPECT_EQ(FileAnalysis(options).analyze(track_).result.frames, 4 * 44100);
    }
}

TEST_F(FileAnalysisTest, TellsOfItsProgressWithoutEverFallingBack) {
    for (const FileKind& kind : {FileKind{"flac", "flac"}, FileKind{"adts", "aac"}}) {
        test::writeAudioFile(track_, kind, music(44100, 20.0));
        for (const std::int64_t memory : {kNoMemory, std::int64_t{1} << 30}) {
            double last = 0.0;
            FileAnalysis::Options options;
            options.track.wantsSessionKey = true;
            options.effort = {memory, 2};
            options.progress = [&](double fraction, double) {
                EXPECT_GE(fraction, last);
                last = fraction;
            };
            static_cast<void>(FileAnalysis(options).analyze(track_));
            EXPECT_EQ(last, 1.0);
        }
    }
}

TEST_F(FileAnalysisTest, TellsFormatLengthAndWaves) {
    const AnalysedFile report = analyze(track_);
    EXPECT_EQ(report.file.path, track_);
    EXPECT_EQ(report.file.format.codec, "flac");
    EXPECT_EQ(report.file.format.trackRate, 44100);
    EXPECT_EQ(report.result.rate, 44100);
    EXPECT_EQ(report.result.frames, 4 * 44100);
    EXPECT_DOUBLE_EQ(report.result.seconds(), 4.0);
    EXPECT_EQ(report.result.loudWave.size(), 400U);
    EXPECT_EQ(report.result.zoomWave.size(), 600U);
    EXPECT_FALSE(report.file.isCutOff);
}

TEST_F(FileAnalysisTest, RefusesATrackCutOffAndSaysWhatCanBeDone) {
    test::copyShortened(track_, folder_.file("cut"), 1000);
    EXPECT_THAT(reasonOf(folder_.file("cut")), HasSubstr("is cut off"));
    EXPECT_THAT(reasonOf(folder_.file("cut")), HasSubstr("--partial"));
}

TEST_F(FileAnalysisTest, AnalysesWhatIsLeftWhenThatIsWanted) {
    test::copyShortened(track_, folder_.file("cut"), std::filesystem::file_size(track_) / 2);
    const AnalysedFile report = analyze(folder_.file("cut"), true);
    EXPECT_TRUE(report.file.isCutOff);
    EXPECT_GT(report.result.frames, 44100);
    EXPECT_LT(report.result.frames, 3 * 44100);
}

TEST_F(FileAnalysisTest, RefusesATrackTooLongToCountBeforeDecodingIt) {
    // One byte a frame: the header of a WAV of 2.3 thousand million frames, and a hole in the disk
    // for the music.
    constexpr std::uint32_t kFrames = 2300000000U;
    const auto number = [](std::uint32_t value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i) text += static_cast<char>((value >> (8 * i)) & 0xFF);
        return text;
    };
    const std::string path = folder_.file("long");
    test::writeFile(path, "RIFF" + number(kFrames + 36, 4) + "WAVEfmt " + number(16, 4) +
                              number(1, 2) + number(1, 2) + number(44100, 4) + number(44100, 4) +
                              number(1, 2) + number(8, 2) + "data" + number(kFrames, 4));
    std::filesystem::resize_file(path, 44ULL + kFrames);
    EXPECT_THAT(reasonOf(path), HasSubstr("is too long"));
    EXPECT_THAT(reasonOf(path), HasSubstr("2,147,483,647 frames"));
}

TEST_F(FileAnalysisTest, RefusesATrackWithoutAFrame) {
    test::writeAudioFile(folder_.file("none"), {"wav", "pcm_s16le"}, {44100, {{}}});
    EXPECT_EQ(reasonOf(folder_.file("none")), "holds no audio");
}

TEST_F(FileAnalysisTest, TellsWhatIsNoMusicFromWhatIsDamagedUnreadableOrMissing) {
    using Kind = base::TrackError::Kind;
    test::writeFile(folder_.file("text"), "Notes on this album.");
    test::writeFile(folder_.file("empty"), "");
    test::writeAudioFile(folder_.file("none"), {"wav", "pcm_s16le"}, {44100, {{}}});
    test::copyShortened(track_, folder_.file("cut"), std::filesystem::file_size(track_) / 2);
    std::filesystem::create_symlink(folder_.file("circle"), folder_.file("circle"));
    for (const char* name : {"text", "empty", "none"}) EXPECT_EQ(kindOf(name), Kind::notAudio);
    EXPECT_EQ(kindOf("cut"), Kind::damaged);
    EXPECT_EQ(kindOf("circle"), Kind::unreadable);
    EXPECT_EQ(kindOf("missing"), Kind::missing);
    EXPECT_EQ(kindOf("track"), std::nullopt);
}

TEST_F(FileAnalysisTest, LeavesTheRoundingModeAlone) {
    static_cast<void>(analyze(track_));
    EXPECT_EQ(std::fegetround(), FE_TONEAREST);
}

TEST_F(FileAnalysisTest, TakesTheShortestTracks) {
    for (const double seconds : {1.0 / 44100.0, 0.001, 0.1}) {
        test::writeAudioFile(folder_.file("short"), {"wav", "pcm_s16le"},
                             test::tone(44100, 2, seconds, 440.0, 0.5));
        EXPECT_EQ(analyze(folder_.file("short")).result.frames, std::lround(seconds * 44100.0));
    }
}

}  // namespace
}  // namespace media
