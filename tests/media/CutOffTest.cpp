// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "base/errors.h"
#include "media/TrackDecoder.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"

namespace media {
namespace {

using test::FileKind;

/** A tone that is not quite periodic, so that every format needs data for all of it. */
test::Sound music(int rate) {
    test::Sound sound = test::tone(rate, 2, 4.0, 440.0, 0.3);
    std::uint32_t state = 7;
    for (auto& channel : sound.channels) {
        for (float& sample : channel) {
            state = state * 1664525U + 1013904223U;
            sample += 0.1F * static_cast<float>(static_cast<int>(state >> 16) - 32768) / 32768.0F;
        }
    }
    return sound;
}

bool isRecognisedAsCutOff(const std::string& path) {
    try {
        test::Recorder recorder;
        TrackDecoder decoder(path);
        decoder.run(recorder);
        return decoder.isCutOff();
    } catch (const base::TrackError&) {
        return true;
    }
}

struct CutCase {
    const char* name;
    FileKind kind;
    int rate = 44100;
};

class CutOff : public testing::TestWithParam<CutCase> {
protected:
    void SetUp() override { test::writeAudioFile(whole_, GetParam().kind, music(GetParam().rate)); }

    test::TemporaryFolder folder_;
    std::string whole_ = folder_.file("whole");
};

TEST_P(CutOff, IsNotSeenInAWholeFile) {
    EXPECT_FALSE(isRecognisedAsCutOff(whole_));
}

TEST_P(CutOff, IsSeenHoweverLittleOrMuchIsMissing) {
    const std::size_t size = test::readFile(whole_).size();
    for (const std::size_t missing :
         {std::size_t{20}, std::size_t{100}, size / 10, size / 2, size * 9 / 10}) {
        test::copyShortened(whole_, folder_.file("cut"), missing);
        EXPECT_TRUE(isRecognisedAsCutOff(folder_.file("cut")))
            << missing << " of " << size << " bytes missing";
    }
}

TEST_P(CutOff, IsNotSeenInATagBehindTheMusic) {
    // An old ID3v1 tag, as some programs append it to any file: "TAG" and 125 bytes.
    test::writeFile(folder_.file("tagged"),
                    test::readFile(whole_) + "TAG" + std::string(125, '\0'));
    EXPECT_FALSE(isRecognisedAsCutOff(folder_.file("tagged")));
}

INSTANTIATE_TEST_SUITE_P(
    Files, CutOff,
    testing::Values(CutCase{"Wave", {"wav", "pcm_s16le"}}, CutCase{"Aiff", {"aiff", "pcm_s16be"}},
                    CutCase{"LongWave", {"wav", "pcm_s16le", "rf64=always"}},
                    CutCase{"Flac", {"flac", "flac"}}, CutCase{"Mp3", {"mp3", "libmp3lame"}},
                    CutCase{"Mp3WithoutHeader", {"mp3", "libmp3lame", "write_xing=0"}},
                    CutCase{"Mp3OfLowRate", {"mp3", "libmp3lame", "write_xing=0"}, 22050},
                    CutCase{"Mp4", {"ipod", "aac"}},
                    CutCase{"Mp4FastStart", {"ipod", "aac", "movflags=faststart"}},
                    CutCase{"Alac", {"ipod", "alac"}}, CutCase{"BareAac", {"adts", "aac"}},
                    CutCase{"Vorbis", {"ogg", "libvorbis"}},
                    CutCase{"Opus", {"ogg", "libopus"}, 48000}, CutCase{"Wma", {"asf", "wmav2"}},
                    CutCase{"Matroska", {"matroska", "libvorbis"}}),
    [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace
}  // namespace media
