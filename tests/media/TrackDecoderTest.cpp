// SPDX-License-Identifier: MIT
#include "media/TrackDecoder.h"

#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "support/AudioFileWriter.h"
#include "support/Sounds.h"
#include "support/TemporaryFolder.h"

namespace media {
namespace {

using test::FileKind;
using testing::HasSubstr;

constexpr FileKind kWave{"wav", "pcm_s16le"};
constexpr FileKind kFlac{"flac", "flac"};

struct Decoded {
    test::Recorder sound;
    base::TrackFormat format;
    DecodeTally tally;
    bool isCutOff;
};

Decoded decodeFile(const std::string& path) {
    Decoded decoded{};
    TrackDecoder decoder(path);
    decoder.run(decoded.sound);
    decoded.format = decoder.format();
    decoded.tally = decoder.tally();
    decoded.isCutOff = decoder.isCutOff();
    return decoded;
}

struct FormatCase {
    const char* name;
    FileKind kind;
    const char* codec;
    double clickTolerance;  // frames; lossy coding smears a click
    long mostExtraFrames;   // padding that the format cannot state
};

class EveryFormat : public testing::TestWithParam<std::tuple<FormatCase, int>> {
protected:
    test::TemporaryFolder folder_;
};

// The oracle is the sound itself: clicks were put at known places, and there they must be found.
TEST_P(EveryFormat, CountsPositionsFromTheFirstFrameOfMusic) {
    const auto& [format, rate] = GetParam();
    const std::string path = folder_.file("track");
    test::writeAudioFile(path, format.kind, test::clicks(rate, 2, 3.0, {0.25, 1.0, 2.75}));
    const Decoded decoded = decodeFile(path);

    EXPECT_EQ(decoded.format.codec, format.codec);
    EXPECT_EQ(decoded.format.channels, 2);
    const int sessionRate = decoded.format.sessionRate;
    for (const double place : {0.25, 1.0, 2.75}) {
        EXPECT_NEAR(test::clickNear(decoded.sound.left, sessionRate, place), place * sessionRate,
                    format.clickTolerance)
            << "at " << place;
    }
    const auto frames = static_cast<long>(decoded.sound.left.size());
    EXPECT_GE(frames, 3L * sessionRate);
    EXPECT_LE(frames, 3L * sessionRate + format.mostExtraFrames);
    EXPECT_FALSE(decoded.isCutOff);
    EXPECT_EQ(decoded.tally.damagedPackets, 0);
}

// Opus always decodes at 48,000 Hz; AAC and MP3 without a header state no padding at the end, WMA
// none at all.
INSTANTIATE_TEST_SUITE_P(
    Files, EveryFormat,
    testing::Combine(
        testing::Values(
            FormatCase{"Wave", kWave, "pcm_s16le", 0.01, 0},
            FormatCase{"Wave24", {"wav", "pcm_s24le"}, "pcm_s24le", 0.01, 0},
            FormatCase{"WaveFloat", {"wav", "pcm_f32le"}, "pcm_f32le", 0.01, 0},
            FormatCase{"Wave64", {"w64", "pcm_s16le"}, "pcm_s16le", 0.01, 0},
            FormatCase{"Aiff", {"aiff", "pcm_s16be"}, "pcm_s16be", 0.01, 0},
            FormatCase{"Flac", kFlac, "flac", 0.01, 0},
            FormatCase{"FlacInOgg", {"ogg", "flac"}, "flac", 0.01, 0},
            FormatCase{"Alac", {"ipod", "alac"}, "alac", 0.01, 0},
            FormatCase{"WavPack", {"wv", "wavpack"}, "wavpack", 0.01, 0},
            FormatCase{"Mp3", {"mp3", "libmp3lame"}, "mp3", 0.5, 0},
            FormatCase{"Mp3WithoutHeader", {"mp3", "libmp3lame", "write_xing=0"}, "mp3", 0.5, 2304},
            FormatCase{"AacInMp4", {"ipod", "aac"}, "aac", 0.5, 60},
            FormatCase{"AacInMp4FastStart", {"ipod", "aac", "movflags=faststart"}, "aac", 0.5, 60},
            FormatCase{"AacBare", {"adts", "aac"}, "aac", 0.5, 2048},
            FormatCase{"Vorbis", {"ogg", "libvorbis"}, "vorbis", 1.0, 0},
            FormatCase{"Wma", {"asf", "wmav2"}, "wmav2", 0.5, 4096},
            FormatCase{"WmaOne", {"asf", "wmav1"}, "wmav1", 0.5, 4096}),
        testing::Values(44100, 48000)),
    [](const auto& instance) {
        return std::get<0>(instance.param).name + std::to_string(std::get<1>(instance.param));
    });

class TrackDecoderTest : public testing::Test {
protected:
    std::string write(const std::string& name, const FileKind& kind, const test::Sound& sound) {
        const std::string path = folder_.file(name);
        test::writeAudioFile(path, kind, sound);
        return path;
    }

    std::string reasonOf(const std::string& path) {
        try {
            decodeFile(path);
        } catch (const base::TrackError& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryFolder folder_;
};

TEST_F(TrackDecoderTest, DropsOpusPreSkip) {
    for (const char* muxer : {"ogg", "matroska"}) {
        const auto decoded =
            decodeFile(write("a", {muxer, "libopus"}, test::clicks(48000, 2, 3.0, {0.25, 2.75})));
        EXPECT_NEAR(test::clickNear(decoded.sound.left, 48000, 0.25), 12000.0, 1.0) << muxer;
        EXPECT_NEAR(test::clickNear(decoded.sound.left, 48000, 2.75), 132000.0, 1.0) << muxer;
        EXPECT_EQ(decoded.sound.left.size(), 144000U) << muxer;
    }
}

TEST_F(TrackDecoderTest, ConvertsOtherRatesAndKeepsTheTimes) {
    for (const int rate : {8000, 11025, 16000, 22050, 32000, 88200, 96000, 176400, 192000}) {
        const auto decoded = decodeFile(write("a", kWave, test::clicks(rate, 2, 2.0, {0.5, 1.5})));
        const int sessionRate = decoded.format.sessionRate;
        EXPECT_EQ(sessionRate, rate % 11025 == 0 ? 44100 : 48000);
        EXPECT_EQ(decoded.format.trackRate, rate);
        // A place that falls between two frames of the track is rounded by half of one when the
        // clicks are made.
        const double tolerance = 0.6 * sessionRate / rate + 0.1;
        EXPECT_NEAR(test::clickNear(decoded.sound.left, sessionRate, 0.5), 0.5 * sessionRate,
                    tolerance)
            << rate;
        EXPECT_NEAR(test::clickNear(decoded.sound.left, sessionRate, 1.5), 1.5 * sessionRate,
                    tolerance)
            << rate;
        EXPECT_NEAR(static_cast<double>(decoded.sound.left.size()), 2.0 * sessionRate, 1.0) << rate;
    }
}

TEST_F(TrackDecoderTest, PutsMonoOnBothSidesAtFullLevel) {
    const auto decoded = decodeFile(write("a", kWave, test::tone(44100, 1, 0.1, 441.0, 0.5)));
    EXPECT_EQ(decoded.format.channels, 1);
    EXPECT_EQ(decoded.sound.left, decoded.sound.right);
    EXPECT_NEAR(decoded.sound.left.at(25), 0.5F,
                1.0F / 32768.0F);  // a quarter of the tone's period of 100 frames
}

TEST_F(TrackDecoderTest, FoldsSurroundToStereo) {
    test::Sound surround = test::tone(48000, 6, 0.1, 480.0, 0.0);
    surround.channels[0] = test::tone(48000, 1, 0.1, 480.0, 0.5).channels[0];  // front left alone
    const auto decoded = decodeFile(write("a", kFlac, surround));
    EXPECT_EQ(decoded.format.channels, 6);
    // 0.5 of full scale, lowered by 1 + 0.7071 + 0.7071, at a quarter of the period.
    EXPECT_NEAR(decoded.sound.left.at(25), 0.5 / 2.41421, 2.0 / 32768.0);
    EXPECT_EQ(decoded.sound.right.at(25), 0.0F);
}

TEST_F(TrackDecoderTest, GivesTheSameSamplesInEveryPass) {
    const std::string path =
        write("a", {"mp3", "libmp3lame"}, test::tone(32000, 2, 1.0, 440.0, 0.5));
    const auto first = decodeFile(path);
    const auto second = decodeFile(path);
    EXPECT_EQ(first.sound.left, second.sound.left);
    EXPECT_EQ(first.sound.right, second.sound.right);
}

TEST_F(TrackDecoderTest, IsNotConfusedByACoverPicture) {
    for (const FileKind& kind :
         {FileKind{"mp3", "libmp3lame", "", true}, FileKind{"ipod", "aac", "", true},
          FileKind{"flac", "flac", "", true},
          FileKind{"aiff", "pcm_s16be", "write_id3v2=1", true}}) {
        const auto decoded = decodeFile(write("a", kind, test::clicks(44100, 2, 1.0, {0.5})));
        EXPECT_NEAR(test::clickNear(decoded.sound.left, 44100, 0.5), 22050.0, 0.5) << kind.muxer;
        EXPECT_FALSE(decoded.isCutOff) << kind.muxer;
    }
}

TEST_F(TrackDecoderTest, ReadsNamesThatLookLikeSomethingElse) {
    for (const char* name : {"http:x", "file:x", "concat:a|b", "-", "a b", "a\nb", "caf\xE9",
                             "x.txt", "%d", "pipe:0"}) {
        const auto decoded = decodeFile(write(name, kWave, test::clicks(44100, 2, 0.5, {0.25})));
        EXPECT_EQ(decoded.sound.left.size(), 22050U) << name;
    }
}

TEST_F(TrackDecoderTest, GoesByContentNotByName) {
    const auto decoded = decodeFile(write("liar.mp3", kFlac, test::clicks(44100, 2, 0.5, {0.25})));
    EXPECT_EQ(decoded.format.codec, "flac");
}

TEST_F(TrackDecoderTest, FindsTheMusicBehindALargeTag) {
    const std::string path = write("a", {"mp3", "libmp3lame"}, test::clicks(44100, 2, 1.0, {0.5}));
    // An ID3v2 tag of 2 MiB of padding, its length in seven-bit digits: 2^21 is 1, 0, 0, 0.
    const std::string tag = std::string("ID3\x04\0\0\x01\0\0\0", 10) + std::string(1 << 21, '\0');
    test::writeFile(folder_.file("b"), tag + test::readFile(path));
    const auto decoded = decodeFile(folder_.file("b"));
    EXPECT_NEAR(test::clickNear(decoded.sound.left, 44100, 0.5), 22050.0, 0.5);
}

TEST_F(TrackDecoderTest, PutsSilenceWhereAPacketIsDamagedAndKeepsTheTime) {
    test::Sound sound = test::clicks(44100, 2, 3.0, {0.25, 2.75});
    const test::Sound hum = test::tone(44100, 1, 3.0, 97.3, 0.02);
    for (auto& channel : sound.channels) {
        for (std::size_t i = 0; i < channel.size(); ++i) channel[i] += hum.channels[0][i];
    }
    const std::string path = write("a", kFlac, sound);
    std::string bytes = test::readFile(path);
    for (std::size_t i = 0; i < 40; ++i) bytes[bytes.size() / 2 + i] = static_cast<char>(0x55);
    test::writeFile(path, bytes);
    const auto decoded = decodeFile(path);
    EXPECT_GT(decoded.tally.damagedPackets, 0);
    EXPECT_FALSE(decoded.isCutOff);
    EXPECT_NEAR(test::clickNear(decoded.sound.left, 44100, 2.75), 2.75 * 44100, 0.5);
}

TEST_F(TrackDecoderTest, TellsWhyAFileCannotBeRead) {
    EXPECT_THAT(reasonOf(folder_.file("missing")), HasSubstr("No such file or directory"));
    EXPECT_THAT(reasonOf(folder_.path()), HasSubstr("is a folder"));
    EXPECT_THAT(reasonOf("/dev/zero"), HasSubstr("not a regular file"));
    test::writeFile(folder_.file("empty"), "");
    EXPECT_EQ(reasonOf(folder_.file("empty")), "is empty");
}

}  // namespace
}  // namespace media
