// SPDX-License-Identifier: MIT
// What each format writes, and that all of them write something whole for every result there may
// be. tests/formats reads the same with other programs.
#include <limits>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/displayName.h"
#include "output/formats/ExportFormat.h"
#include "output/formats/csvText.h"
#include "support/Reports.h"

namespace output {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const ExportFormat& formatNamed(const std::string& name) {
    for (const ExportFormat& format : exportFormats())
        if (format.name == name) return format;
    throw std::invalid_argument(name);
}

Peaks somePeaks() {
    Peaks peaks;
    peaks.rate = 48000;
    peaks.framesPerPixel = 256;
    peaks.channels = 2;
    peaks.values = {-1, 1, -32768, 32767, -300, 300, 0, 255};
    return peaks;
}

std::string written(const std::string& format, const std::vector<TrackReport>& reports,
                    ExportOptions options = {}) {
    std::string text;
    const Peaks peaks = somePeaks();
    const auto writer =
        formatNamed(format).make(options, [&](std::string_view piece) { text += piece; });
    writer->begin();
    for (const TrackReport& report : reports) writer->add(report, &peaks);
    writer->end();
    return text;
}

TrackReport oneBeatReport() {
    TrackReport report = test::emptyReport();
    report.analysis.bpm = 120.0;
    report.analysis.beats = {{0.5, 120.0, 24000, 1}};
    return report;
}

class EveryFormat : public testing::TestWithParam<ExportFormat> {};

TEST_P(EveryFormat, WritesEmptyAndOneBeatResults) {
    for (const TrackReport& report : {test::emptyReport(), oneBeatReport(), test::exampleReport()})
        EXPECT_NO_THROW(written(GetParam().name, {report}));
}

// Tags and names may hold any bytes; a text that a person or a program reads is UTF-8.
TEST_P(EveryFormat, IsUtf8WhateverTheTrackIsCalled) {
    TrackReport report = test::exampleReport();
    report.path = "a\nb\xFF,\"<&>=;#\\ \x01.wav";
    report.format.tags = {"Art\xFEist\n[CHAPTER]", "Ti\ttle, \"x\""};
    const std::string text = written(GetParam().name, {report});
    const bool isBinary = GetParam().name == "midi" || GetParam().name == "waveform";
    EXPECT_TRUE(isBinary || base::isUtf8(text)) << text;
}

TEST(ShortNumber, LeavesOutTheNoiseOfTheArithmetic) {
    EXPECT_EQ(shortNumber(0.99 * 0.42, 4), "0.4158");
    EXPECT_EQ(shortNumber(0.41579999999995, 4), "0.4158");
    EXPECT_EQ(shortNumber(8.0, 6), "8");
    EXPECT_EQ(shortNumber(1.0 / 3.0, 6), "0.333333");
    EXPECT_EQ(shortNumber(1e9 + 0.25, 6), "1000000000.25");
    EXPECT_EQ(shortNumber(0.00001, 4), "0");
}

TEST_P(EveryFormat, HasNoPositionBeforeZeroWhereItsReadersKnowNone) {
    TrackReport report = test::exampleReport();
    countFrom(report, {TimeOrigin::At::music, -3000.0});
    const std::string text = written(GetParam().name, {report});
    const std::set<std::string> mayHaveThem = {"json", "jsonl",    "csv",           "csv-tracks",
                                               "midi", "waveform", "waveform-json", "m3u8"};
    if (mayHaveThem.contains(GetParam().name)) return;
    EXPECT_THAT(text, testing::Not(testing::ContainsRegex("-[0-9]+[.]")));
}

INSTANTIATE_TEST_SUITE_P(Formats, EveryFormat, testing::ValuesIn(exportFormats()),
                         [](const auto& instance) {
                             std::string name = instance.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(formatTable, NamesEveryFormatOnce) {
    std::set<std::string> names;
    for (const ExportFormat& format : exportFormats()) {
        EXPECT_TRUE(names.insert(format.name).second);
        EXPECT_THAT(format.ending, StartsWith("."));
    }
}

TEST(BeatsCsv, CountsBarsFromTheFirstDownbeat) {
    EXPECT_THAT(written("csv", {test::exampleReport()}),
                StartsWith("file,seconds,frame,bar,beat,bpm\n"
                           "music/track.flac,0.100000,4800,0,4,120.00\n"
                           "music/track.flac,0.600000,28800,1,1,120.00\n"));
}

TEST(BeatsCsv, QuotesNamesThatNeedIt) {
    TrackReport report = oneBeatReport();
    report.path = "a,\"b\".wav";
    EXPECT_THAT(written("csv", {report}), HasSubstr("\n\"a,\"\"b\"\".wav\",0.500000,24000,1,1,"));
}

// Fifteen beats in bars of four, of which the first is the last of its bar.
TEST(AudacityLabels, TellBeatsBarsAndNumbers) {
    EXPECT_THAT(written("audacity-beats", {test::exampleReport()}),
                StartsWith("0.100000\t0.100000\t0.4\n0.600000\t0.600000\t1.1\n"));
    EXPECT_EQ(written("audacity-bars", {test::exampleReport()}),
              "0.600000\t0.600000\t1\n2.600000\t2.600000\t2\n4.600000\t4.600000\t3\n"
              "6.600000\t6.600000\t4\n");
    EXPECT_THAT(written("audacity-numbers", {test::exampleReport()}),
                StartsWith("0.100000\t0.100000\t4\n0.600000\t0.600000\t1\n"));
}

TEST(FfmpegMetadata, EscapesWhatHasAMeaning) {
    TrackReport report = test::exampleReport();
    report.format.tags.title = "a=b;#c\\";
    EXPECT_EQ(written("ffmetadata", {report}),
              ";FFMETADATA1\ntitle=a\\=b\\;\\#c\\\\\n[CHAPTER]\nTIMEBASE=1/48000\nSTART=0\n"
              "END=384000\ntitle=120.00 BPM, A minor\n");
}

/** Two keys and two tempos in eight seconds, the tempo's change at 2 s, the key's at 5 s. */
TrackReport changingReport() {
    TrackReport report = test::exampleReport();
    report.analysis.judgement.emplace();
    report.analysis.judgement->stretches = {{0.1, 2.0, 100.0}, {2.0, 7.6, 120.5}};
    report.analysis.key->segments = {{0.0, 5.0, 12, 0.9}, {5.0, 8.0, 3, 0.8}};
    report.keyNotation = KeyNotation::german;
    return report;
}

TEST(MatroskaChapters, HasOneForEachSection) {
    const std::string text = written("matroska-chapters", {changingReport()});
    EXPECT_THAT(text, HasSubstr("<ChapterString>100.00 BPM, a-Moll</ChapterString>"));
    EXPECT_THAT(text, HasSubstr("<ChapterString>120.50 BPM, a-Moll</ChapterString>"));
    EXPECT_THAT(text, HasSubstr("<ChapterString>120.50 BPM, C-Dur</ChapterString>"));
    EXPECT_THAT(text, HasSubstr("<ChapterTimeStart>00:00:05.000000000</ChapterTimeStart>\n"
                                "      <ChapterTimeEnd>00:00:08.000000000</ChapterTimeEnd>"));
}

TEST(JamsExport, TellsSectionsKeysAndTempos) {
    const auto document = nlohmann::json::parse(written("jams", {changingReport()}));
    const auto& annotations = document["annotations"];
    ASSERT_EQ(annotations.size(), 4U);
    EXPECT_EQ(annotations[0]["data"].size(), 15U);
    EXPECT_EQ(annotations[1]["data"][1]["value"], 120.5);
    EXPECT_EQ(annotations[2]["data"][1]["value"], "C:major");
    EXPECT_EQ(annotations[2]["data"][1]["time"], 5.0);
    EXPECT_EQ(annotations[3]["data"].size(), 3U);
    EXPECT_EQ(document["file_metadata"]["duration"], 8.0);
}

TEST(PeaksBinary, HasTheHeaderOfVersion2AndTheChannelsInTurn) {
    const std::string bytes = written("waveform", {test::emptyReport()});
    const std::string header("\2\0\0\0"
                             "\0\0\0\0"
                             "\x80\xBB\0\0"
                             "\0\1\0\0"
                             "\2\0\0\0"
                             "\2\0\0\0",
                             24);
    const std::string values("\xFF\xFF\1\0\0\x80\xFF\x7F\xD4\xFE\x2C\1\0\0\xFF\0", 16);
    EXPECT_EQ(bytes, header + values);
}

// -32768, 32767, -300 and 300 divided by 256 and cut.
TEST(PeaksJson, HalvesTheBitsOfEightBitPeaks) {
    ExportOptions options;
    options.peakBits = 8;
    const auto document =
        nlohmann::json::parse(written("waveform-json", {test::emptyReport()}, options));
    EXPECT_EQ(document["bits"], 8);
    EXPECT_EQ(document["length"], 2);
    EXPECT_EQ(document["data"], nlohmann::json({0, 0, -128, 127, -1, 1, 0, 0}));
    EXPECT_EQ(written("waveform", {test::emptyReport()}, options).size(), 24U + 8U);
}

TrackReport inKey(const std::string& path, int key, double bpm) {
    TrackReport report = test::exampleReport();
    report.path = path;
    report.analysis.key->ranking[0].key = key;
    report.analysis.bpm = bpm;
    return report;
}

// A minor is 8A, C major 8B, E minor 9A, G sharp minor 1A.
TEST(Playlist, IsInTheOrderOfTheWheelAndOfTempo) {
    TrackReport keyless = test::emptyReport();
    keyless.path = "/keyless";
    const std::string text = written("m3u8", {keyless, inKey("/e", 19, 90.0), inKey("/c", 3, 100.0),
                                              inKey("/a2", 12, 128.0), inKey("/a1", 12, 124.0),
                                              inKey("/gis", 23, 99.0)});
    std::string paths;
    std::size_t at = 0;
    while ((at = text.find("\n/", at)) != std::string::npos) {
        const std::size_t end = text.find('\n', at + 1);
        paths += text.substr(at + 1, end - at - 1) + " ";
        at = end;
    }
    EXPECT_EQ(paths, "/gis /a1 /a2 /c /e /keyless ");
    EXPECT_THAT(text, StartsWith("#EXTM3U\n#EXTINF:8,gis\n"));
}

TEST(Playlist, WritesNamesThatAreNoLineAsAddresses) {
    TrackReport report = test::exampleReport();
    report.path = "/m\n\xFF#.mp3";
    EXPECT_THAT(written("m3u8", {report}), testing::EndsWith("\nfile:///m%0A%FF%23.mp3\n"));
}

TEST(TracksCsv, TellsFailuresToo) {
    std::string text;
    const auto writer =
        formatNamed("csv-tracks").make({}, [&](std::string_view piece) { text += piece; });
    writer->begin();
    writer->addFailure("b.mp3", "is empty");
    EXPECT_THAT(text, testing::EndsWith("\nb.mp3,,,,,,,,,,,,,,,,is empty\n"));
}

TEST(countFrom, MovesEveryPositionAndNoLength) {
    TrackReport report = changingReport();
    report.format.trackRate = 48000;
    report.droppedFrames = 1200;
    report.gaps = {{1.0, 0.5}};
    countFrom(report, {TimeOrigin::At::file, 475.0});
    EXPECT_DOUBLE_EQ(report.startSeconds(), 0.5);
    EXPECT_EQ(report.analysis.beats[0].frame, 4800 + 24000);
    EXPECT_DOUBLE_EQ(report.analysis.beats[0].seconds, 0.6);
    EXPECT_DOUBLE_EQ(report.analysis.judgement->stretches[1].fromSeconds, 2.5);
    EXPECT_DOUBLE_EQ(report.analysis.key->segments[1].toSeconds, 8.5);
    EXPECT_DOUBLE_EQ(report.gaps[0].start, 1.5);
    EXPECT_DOUBLE_EQ(report.gaps[0].length, 0.5);
    EXPECT_EQ(report.analysis.frames, 384000);
    const auto track = nlohmann::json::parse(written("jsonl", {report}));
    EXPECT_EQ(track["origin"], nlohmann::json({{"at", "file"},
                                               {"offsetMs", 475.0},
                                               {"droppedFrames", 1200},
                                               {"droppedSeconds", 0.025}}));
}

}  // namespace
}  // namespace output
