// SPDX-License-Identifier: MIT
#include "media/Container.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"

namespace media {
namespace {

using testing::HasSubstr;

class ContainerTest : public testing::Test {
protected:
    void SetUp() override { showFfmpegMessages(false); }

    std::string reasonOf(const std::string& content) {
        const std::string path = folder_.file("file.mp3");
        test::writeFile(path, content);
        try {
            FileInput input(path);
            const Container container(input);
        } catch (const base::TrackError& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryFolder folder_;
};

TEST_F(ContainerTest, RefusesTextAndPictures) {
    EXPECT_THAT(reasonOf("just words\n"), HasSubstr("not an audio file"));
    EXPECT_THAT(reasonOf(std::string(100000, 'x')), HasSubstr("not an audio file"));
    EXPECT_THAT(
        reasonOf(std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1\x08\0\0\0\0", 29)),
        HasSubstr("not an audio file"));
}

TEST_F(ContainerTest, RefusesASingleByteAndAllZeros) {
    EXPECT_THAT(reasonOf("x"), HasSubstr("not an audio file"));
    EXPECT_THAT(reasonOf(std::string(200000, '\0')), HasSubstr("not an audio file"));
}

TEST_F(ContainerTest, RefusesArbitraryBytes) {
    std::string noise;
    std::uint32_t state = 1;
    for (int i = 0; i < 1000000; ++i) {
        state = state * 1664525U + 1013904223U;
        noise += static_cast<char>(state >> 24);
    }
    EXPECT_THAT(reasonOf(noise), HasSubstr("not an audio file"));
}

TEST_F(ContainerTest, FollowsNoPlaylist) {
    const std::string music = folder_.file("music.wav");
    test::writeAudioFile(music, {"wav", "pcm_s16le"}, test::tone(44100, 2, 0.5, 440.0, 0.5));
    EXPECT_THAT(
        reasonOf("#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\n" + music + "\n#EXT-X-ENDLIST\n"),
        HasSubstr("not an audio file"));
    EXPECT_THAT(reasonOf("ffconcat version 1.0\nfile " + music + "\n"),
                HasSubstr("not an audio file"));
    EXPECT_THAT(reasonOf("[playlist]\nFile1=" + music + "\n"), HasSubstr("not an audio file"));
}

TEST_F(ContainerTest, TellsAHeaderWithoutMusic) {
    const std::string path = folder_.file("whole");
    test::writeAudioFile(path, {"ipod", "aac"}, test::tone(44100, 2, 1.0, 440.0, 0.5));
    // The index of this file stands at its end.
    const std::string whole = test::readFile(path);
    EXPECT_THAT(reasonOf(whole.substr(0, whole.size() / 2)), HasSubstr("damaged or cut off"));
    EXPECT_THAT(reasonOf(whole.substr(0, 40)), testing::Not(""));
}

TEST_F(ContainerTest, KnowsTheDeclaredLength) {
    const std::string path = folder_.file("a");
    test::writeAudioFile(path, {"flac", "flac"}, test::tone(44100, 2, 1.5, 440.0, 0.5));
    FileInput input(path);
    const Container container(input);
    ASSERT_TRUE(container.declaredSeconds().has_value());
    EXPECT_DOUBLE_EQ(*container.declaredSeconds(), 1.5);
}

TEST_F(ContainerTest, DoesNotGuessALengthFromTheBitRate) {
    const std::string path = folder_.file("a");
    test::writeAudioFile(path, {"adts", "aac"}, test::tone(44100, 2, 1.5, 440.0, 0.5));
    FileInput input(path);
    EXPECT_FALSE(Container(input).declaredSeconds().has_value());
}

// ID3 belongs to the file, Vorbis comments to the stream.
TEST_F(ContainerTest, TellsHowTheTagsCallTheTrack) {
    const std::string path = folder_.file("tagged");
    const char* tags = "artist=Björk Ödegård:title=夜の音楽";
    for (const test::FileKind& kind : {test::FileKind{"mp3", "libmp3lame", "", false, tags},
                                       {"ogg", "libvorbis", "", false, tags},
                                       {"flac", "flac", "", false, tags}}) {
        test::writeAudioFile(path, kind, test::tone(44100, 2, 0.5, 440.0, 0.5));
        FileInput input(path);
        const base::TrackTags found = Container(input).tags();
        EXPECT_EQ(found.artist, "Björk Ödegård") << kind.muxer;
        EXPECT_EQ(found.title, "夜の音楽") << kind.muxer;
    }
}

TEST_F(ContainerTest, TellsNoTagsWhereThereAreNone) {
    const std::string path = folder_.file("plain.flac");
    test::writeAudioFile(path, {"flac", "flac"}, test::tone(44100, 2, 0.5, 440.0, 0.5));
    FileInput input(path);
    const base::TrackTags found = Container(input).tags();
    EXPECT_EQ(found.artist, "");
    EXPECT_EQ(found.title, "");
}

}  // namespace
}  // namespace media
