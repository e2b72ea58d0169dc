// SPDX-License-Identifier: MIT
#include "peakss/grid/BeatListDump.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatAt;
using peakss::BeatInfo;
using peakss::BeatList;
using peakss::BeatListDump;

class BeatListDumpTest : public beatatlas::test::RoundTowardZero {
protected:
    static std::string written(const std::function<void(std::FILE*)>& write) {
        char* text = nullptr;
        std::size_t size = 0;
        std::FILE* stream = open_memstream(&text, &size);
        write(stream);
        std::fclose(stream);
        std::string result(text, size);
        std::free(text);
        return result;
    }
    static BeatInfo record() {
        BeatInfo beat = beatAt(123456, 500.0F);
        beat.group = 3;
        beat.phase = 1.25F;
        beat.band = -1;
        return beat;
    }
};

constexpr const char* kLine = "3\t120.000000\t1.250000\t123456\t-1\n";

TEST_F(BeatListDumpTest, ListLineTellsNumberTempoPhasePositionAndBand) {
    EXPECT_EQ(written([](std::FILE* stream) {
                  peakss::printBeatList({record(), record()}, stream);
              }),
              std::string(kLine) + kLine);
    EXPECT_EQ(written([](std::FILE* stream) { peakss::printBeatList({}, stream); }), "");
}

// 60000 / 466 = 128.75536…, cut to single precision 128.755355…
TEST_F(BeatListDumpTest, TempoIsASinglePrecisionQuotient) {
    BeatInfo beat = record();
    beat.interval = 466.0F;
    const std::string text =
        written([&beat](std::FILE* stream) { peakss::printBeatList({beat}, stream); });
    EXPECT_EQ(text, "3\t128.755355\t1.250000\t123456\t-1\n");
}

TEST_F(BeatListDumpTest, IntervalOfZeroPrintsAnInfiniteTempo) {
    BeatInfo beat = record();
    beat.interval = 0.0F;
    EXPECT_EQ(written([&beat](std::FILE* stream) { peakss::printBeatList({beat}, stream); }),
              "3\tinf\t1.250000\t123456\t-1\n");
}

TEST_F(BeatListDumpTest, NullStreamOfThePrinterMeansStandardOutput) {
    testing::internal::CaptureStdout();
    peakss::printBeatList({record()}, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), kLine);
}

// 2 × 62 + 32 bytes.
TEST_F(BeatListDumpTest, BannerIsTheTitleBetweenTwoLines) {
    const std::string line = std::string(60, '=') + "\r\n";
    const std::string title = "ビート情報解析データ\r\n";
    ASSERT_EQ(line.size(), 62U);
    ASSERT_EQ(title.size(), 32U);
    EXPECT_EQ(written([](std::FILE* stream) { BeatListDump(stream).banner(); }),
              line + title + line);
}

TEST_F(BeatListDumpTest, SectionMixesLineEnds) {
    EXPECT_EQ(written([](std::FILE* stream) {
                  BeatListDump(stream).section("[ 選出生データ ]", {record()});
              }),
              std::string("[ 選出生データ ]\r\n") + kLine + "\r\n\r\n");
}

TEST_F(BeatListDumpTest, RepresentativeTempoIsASectionOfItsOwn) {
    EXPECT_EQ(written([](std::FILE* stream) { BeatListDump(stream).representativeTempo(128.5F); }),
              "[ 代表BPM ]\r\n128.500000\r\n\r\n\r\n");
}

TEST_F(BeatListDumpTest, BandCountsNameAllSixBands) {
    BeatList grid;
    for (const int band : {-1, 0, 2, 2, 5, 6}) grid.push_back(beatAt(0, 500.0F, 0, 0, band));
    EXPECT_EQ(written([&grid](std::FILE* stream) { BeatListDump(stream).bandCounts(grid); }),
              "[ バンド毎の件数 ]\r\nband0 : 1\r\nband1 : 0\r\nband2 : 2\r\nband3 : 0\r\n"
              "band4 : 0\r\nband5 : 1\r\n\r\n\r\n");
}

TEST_F(BeatListDumpTest, BandOffsetsAreOneTabbedLinePerSegment) {
    const std::string offsets =
        "-30.000000\t-20.000000\t-3.000000\t-3.000000\t-20.000000\t-3.000000\r\n";
    EXPECT_EQ(written([](std::FILE* stream) {
                  BeatListDump(stream).bandOffsets(
                      {peakss::kDetectorOffsetsMs, peakss::kDetectorOffsetsMs});
              }),
              "[ バンド毎のオフセット ]\r\n区間0\r\n" + offsets + "区間1\r\n" + offsets + "\r\n");
}

TEST_F(BeatListDumpTest, NullStreamOfTheDumpWritesNothing) {
    testing::internal::CaptureStdout();
    const BeatListDump dump(nullptr);
    dump.banner();
    dump.section("[ 選出生データ ]", {record()});
    dump.representativeTempo(120.0F);
    dump.bandCounts({record()});
    dump.bandOffsets({peakss::kDetectorOffsetsMs});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
