// SPDX-License-Identifier: MIT
#include "media/end/declaredEnd.h"

#include <gtest/gtest.h>

#include "media/FileInput.h"
#include "support/TemporaryFolder.h"

namespace media {
namespace {

using std::string_literals::operator""s;

std::string bigEndian(std::uint64_t value, int bytes) {
    std::string text;
    for (int i = bytes - 1; i >= 0; --i) text += static_cast<char>((value >> (8 * i)) & 0xFF);
    return text;
}

std::string littleEndian(std::uint64_t value, int bytes) {
    const std::string text = bigEndian(value, bytes);
    return {text.rbegin(), text.rend()};
}

class DeclaredEnd : public testing::Test {
protected:
    using EndOf = std::optional<std::int64_t> (*)(const FileInput&);

    std::optional<std::int64_t> endBy(EndOf endOf, const std::string& content) {
        test::writeFile(folder_.file("a"), content);
        const FileInput input(folder_.file("a"));
        return endOf(input);
    }

    static std::string wave(std::uint64_t dataLength) {
        return "RIFF" + littleEndian(0, 4) + "WAVE" + "fmt " + littleEndian(16, 4) +
               std::string(16, '\0') + "data" + littleEndian(dataLength, 4);
    }

    test::TemporaryFolder folder_;
};

TEST_F(DeclaredEnd, OfAWaveIsTheEndOfItsData) {
    EXPECT_EQ(endBy(waveEnd, wave(1000)), 44 + 1000);
}

TEST_F(DeclaredEnd, OfAWaveSkipsTheFillByteOfAnOddChunk) {
    const std::string odd = "RIFF" + littleEndian(0, 4) + "WAVE" + "note" + littleEndian(3, 4) +
                            "abc\0"s + "data" + littleEndian(10, 4);
    EXPECT_EQ(endBy(waveEnd, odd), 12 + 12 + 8 + 10);
}

TEST_F(DeclaredEnd, OfAStreamedWaveIsUnknown) {
    EXPECT_EQ(endBy(waveEnd, wave(0)), std::nullopt);
    EXPECT_EQ(endBy(waveEnd, wave(0xFFFFFFFF)), std::nullopt);
    EXPECT_EQ(endBy(waveEnd, wave(0x7FFFFFFF)), std::nullopt);
}

TEST_F(DeclaredEnd, OfALongWaveIsTakenFromItsLongLength) {
    const std::string header = "RF64" + littleEndian(0xFFFFFFFF, 4) + "WAVE" + "ds64" +
                               littleEndian(28, 4) + littleEndian(0, 8) +
                               littleEndian(5000000000, 8) + std::string(12, '\0') + "data" +
                               littleEndian(0xFFFFFFFF, 4);
    EXPECT_EQ(endBy(waveEnd, header), 12 + 36 + 8 + 5000000000);
}

TEST_F(DeclaredEnd, OfMp4IsTheEndOfItsLastBox) {
    const std::string boxes = bigEndian(8, 4) + "ftyp" + bigEndian(100, 4) + "mdat";
    EXPECT_EQ(endBy(mp4End, boxes), 108);
}

TEST_F(DeclaredEnd, OfMp4TakesLongBoxesAndIgnoresWhatIsNoBox) {
    const std::string longBox = bigEndian(1, 4) + "mdat" + bigEndian(5000000000, 8);
    EXPECT_EQ(endBy(mp4End, longBox), 5000000000);
    const std::string foreign = bigEndian(8, 4) + "ftyp" + "TAG by an old program";
    EXPECT_EQ(endBy(mp4End, foreign), 8);
    const std::string open = bigEndian(8, 4) + "ftyp" + bigEndian(0, 4) + "mdat" + "music";
    EXPECT_EQ(endBy(mp4End, open), 8);
}

TEST_F(DeclaredEnd, OfOggIsTheEndOfItsLastPage) {
    // 26 bytes of header, the number of segments, their lengths: 27 + 2 + 255 + 5.
    const std::string page = "OggS" + std::string(22, '\0') + "\x02\xFF\x05"s;
    EXPECT_EQ(endBy(oggEnd, page), 289);
    EXPECT_EQ(endBy(oggEnd, std::string(100000, 'x') + page), 100289);
    EXPECT_EQ(endBy(oggEnd, "OggS\0\0"s), 27);
    EXPECT_EQ(endBy(oggEnd, "no page"), std::nullopt);
}

TEST_F(DeclaredEnd, OfMp3IsToldByItsFirstFrameBehindTheTags) {
    const std::string tag = "ID3\x04\0\0\0\0\0\x05"s + "12345";
    const std::string frame = "\xFF\xFB\x90\x00"s + std::string(32, '\0') + "Xing" +
                              bigEndian(3, 4) + bigEndian(77, 4) + bigEndian(4000, 4);
    EXPECT_EQ(endBy(mpegAudioEnd, frame), 4000);
    EXPECT_EQ(endBy(mpegAudioEnd, tag + tag + frame), 30 + 4000);
}

TEST_F(DeclaredEnd, OfMp3KnowsTheLayoutsOfMonoAndOfLowRates) {
    const std::string count = bigEndian(2, 4) + bigEndian(500, 4);
    EXPECT_EQ(endBy(mpegAudioEnd, "\xFF\xFB\x90\xC0"s + std::string(17, '\0') + "Info" + count),
              500);
    EXPECT_EQ(endBy(mpegAudioEnd, "\xFF\xF3\x90\x00"s + std::string(17, '\0') + "Info" + count),
              500);
    EXPECT_EQ(endBy(mpegAudioEnd, "\xFF\xF3\x90\xC0"s + std::string(9, '\0') + "Info" + count),
              500);
}

TEST_F(DeclaredEnd, OfMp3WithoutSuchAHeaderIsUnknown) {
    EXPECT_EQ(endBy(mpegAudioEnd, "\xFF\xFB\x90\x00"s + std::string(100, '\0')), std::nullopt);
    EXPECT_EQ(
        endBy(mpegAudioEnd, "\xFF\xFB\x90\x00"s + std::string(32, '\0') + "Xing" + bigEndian(1, 4)),
        std::nullopt);
}

TEST_F(DeclaredEnd, OfMatroskaIsTheEndOfItsSegment) {
    const std::string header = bigEndian(0x1A45DFA3, 4) + "\x82" + "ab";
    EXPECT_EQ(
        endBy(matroskaEnd, header + bigEndian(0x18538067, 4) + bigEndian(0x0100000000001000, 8)),
        7 + 12 + 0x1000);
    EXPECT_EQ(
        endBy(matroskaEnd, header + bigEndian(0x18538067, 4) + bigEndian(0x01FFFFFFFFFFFFFF, 8)),
        std::nullopt);
}

TEST_F(DeclaredEnd, OfWmaIsTheEndOfItsDataObject) {
    const std::string dataObject =
        "\x36\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C"s;
    const std::string header = std::string(16, 'h') + littleEndian(30, 8) + std::string(6, '\0');
    EXPECT_EQ(endBy(asfEnd, header + dataObject + littleEndian(2000, 8)), 2030);
    EXPECT_EQ(endBy(asfEnd, header + dataObject + littleEndian(0, 8)), std::nullopt);
    EXPECT_EQ(endBy(asfEnd, header + std::string(24, 'x')), std::nullopt);
}

}  // namespace
}  // namespace media
