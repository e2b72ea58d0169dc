// SPDX-License-Identifier: MIT
#include "comparison/readBeatSheet.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"

namespace comparison {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<double> timesIn(const std::string& text) {
    std::vector<double> times;
    for (const SheetBeat& beat : readBeatSheet(text).beats) times.push_back(beat.seconds);
    return times;
}

/** -1 where no number is known. */
std::vector<int> numbersIn(const std::string& text) {
    std::vector<int> numbers;
    for (const SheetBeat& beat : readBeatSheet(text).beats)
        numbers.push_back(beat.number.value_or(-1));
    return numbers;
}

std::string refusalOf(const std::string& text) {
    try {
        readBeatSheet(text);
    } catch (const base::TrackError& error) {
        return error.what();
    }
    return "";
}

TEST(ReadBeatSheet, ReadsATimeALine) {
    EXPECT_THAT(timesIn("0.5\n1.0\n1.5"), ElementsAre(0.5, 1.0, 1.5));
    EXPECT_THAT(timesIn("\xEF\xBB\xBF# beats\r\n\r\n  1e0 \r\n% more\n2\n"), ElementsAre(1.0, 2.0));
    EXPECT_THAT(timesIn("2\n1\n-0.25\n"), ElementsAre(-0.25, 1.0, 2.0));
    EXPECT_THAT(timesIn("# none\n"), IsEmpty());
}

TEST(ReadBeatSheet, ReadsTheNumberBehindATime) {
    for (const char* text : {"0.5\t1\n1\t2\n1.5\t3\n2\t1\n", "0.5 1\n1  2\n1.5 3\n2 1",
                             "0.5,1\n1,2\n1.5, 3\n2,1", "0.5;7.1\n1;7.2\n1.5;7.3\n2;8.1"}) {
        EXPECT_THAT(numbersIn(text), ElementsAre(1, 2, 3, 1)) << text;
        EXPECT_THAT(timesIn(text), ElementsAre(0.5, 1.0, 1.5, 2.0)) << text;
    }
    EXPECT_THAT(numbersIn("0.5 1\n1 0\n1.5 0\n2 1"), ElementsAre(1, 0, 0, 1));
    EXPECT_THAT(numbersIn("0.5\n1 what\n"), ElementsAre(-1, -1));
}

TEST(ReadBeatSheet, ReadsAudacityLabels) {
    EXPECT_THAT(numbersIn("0.500000\t0.500000\t1.1\n1.000000\t1.000000\t1.2\n"
                          "\\\t120.000000\t440.000000\n1.500000\t1.700000\t2.1\n"),
                ElementsAre(1, 2, 1));
    EXPECT_THAT(numbersIn("0.5\t0.5\tthe first\n1.0\t1.0\t\n"), ElementsAre(-1, -1));
    EXPECT_THAT(timesIn("0.5\t0.5\t1\n1.0\t1.0\t2\n"), ElementsAre(0.5, 1.0));
}

TEST(ReadBeatSheet, DoesNotTakeCountsForNumbersOfBeats) {
    EXPECT_THAT(numbersIn("1 1\n2 2\n3 3\n4 4\n5 5"), ElementsAre(-1, -1, -1, -1, -1));
    EXPECT_THAT(numbersIn("1 1\n2 99\n3 1"), ElementsAre(-1, -1, -1));
    EXPECT_THAT(numbersIn("1 1"), ElementsAre(1));
}

TEST(ReadBeatSheet, TellsTheTempoOfMostBeats) {
    EXPECT_DOUBLE_EQ(*readBeatSheet("1\n1.5\n2\n2.5\n9\n").bpm, 120.0);
    EXPECT_EQ(readBeatSheet("1\n").bpm, std::nullopt);
    EXPECT_EQ(readBeatSheet("1\n1\n1\n").bpm, std::nullopt);
}

TEST(ReadBeatSheet, ReadsTheResultOfATrack) {
    const BeatSheet sheet = readBeatSheet(
        R"({"format":"beatatlas.analysis","version":2,"tracks":[{"file":"a","tempo":{"bpm":120.5},)"
        R"("beats":[{"seconds":1.0,"beat":4},{"seconds":1.5,"beat":1}],"key":{"number":12}}]})");
    EXPECT_EQ(sheet.bpm, 120.5);
    EXPECT_EQ(sheet.key, 12);
    ASSERT_EQ(sheet.beats.size(), 2U);
    EXPECT_TRUE(sheet.beats[1].isDownbeat());
    EXPECT_TRUE(sheet.hasBars());
}

TEST(ReadBeatSheet, ReadsJamsInBothForms) {
    const BeatSheet list = readBeatSheet(
        R"({"annotations":[{"namespace":"chord","data":[]},
        {"namespace":"beat","data":[{"time":2.0,"duration":0,"value":1,"confidence":null},
                                    {"time":1.0,"duration":0,"value":3,"confidence":null}]},
        {"namespace":"tempo","data":[{"time":0,"duration":9,"value":60},
                                     {"time":9,"duration":30,"value":61.5}]},
        {"namespace":"key_mode","data":[{"time":0,"duration":9,"value":"C:major"},
            {"time":9,"duration":8,"value":"F#:minor"},{"time":17,"duration":8,"value":"F#:minor"}]}
        ]})");
    EXPECT_EQ(list.bpm, 61.5);
    EXPECT_EQ(list.key, 21);
    ASSERT_EQ(list.beats.size(), 2U);
    EXPECT_EQ(list.beats[0].seconds, 1.0);
    EXPECT_TRUE(list.beats[1].isDownbeat());
    const BeatSheet members = readBeatSheet(
        R"({"annotations":[{"namespace":"beat","data":{"time":[1,2],"value":[1]}}]})");
    ASSERT_EQ(members.beats.size(), 2U);
    EXPECT_TRUE(members.beats[0].isDownbeat());
    EXPECT_EQ(members.beats[1].number, std::nullopt);
    EXPECT_THAT(timesIn(R"({"annotations":[{"namespace":"beat_position",
        "data":[{"time":3,"value":{"position":1,"measure":1}}]}]})"),
                ElementsAre(3.0));
}

TEST(ReadBeatSheet, RefusesWhatItCannotRead) {
    EXPECT_EQ(refusalOf(" \n\t"), "is empty");
    EXPECT_THAT(refusalOf("1.0\ntwo\n"), HasSubstr("line 2 begins with no time: two"));
    EXPECT_THAT(refusalOf("nan\n"), HasSubstr("line 1"));
    EXPECT_THAT(refusalOf("1e999\n"), HasSubstr("line 1"));
    EXPECT_EQ(refusalOf("1e7\n"), "has a beat at a time that no track has");
    EXPECT_EQ(refusalOf("{\"format\":"), "is not whole JSON");
    EXPECT_EQ(refusalOf("{}"), "is neither a result of beatatlas nor JAMS");
    EXPECT_EQ(refusalOf(R"({"format":"beatatlas.analysis"})"), "holds no track");
    EXPECT_EQ(refusalOf(R"({"format":"beatatlas.analysis","tracks":[{},{}]})"),
              "holds 2 tracks: only one can be compared");
    EXPECT_EQ(refusalOf(R"({"format":"beatatlas.analysis","tracks":[{"error":"is empty"}]})"),
              "holds no result: the track is empty");
    EXPECT_EQ(refusalOf(R"({"annotations":[{"namespace":"beat","data":[{"time":"x"}]}]})"),
              "has a beat at a time that no track has");
    EXPECT_EQ(refusalOf("{\"a\":" + std::string(200000, '[')), "is not whole JSON");
}

TEST(ReadBeatSheet, TellsTextFromSound) {
    EXPECT_TRUE(isText("0.5\t1\r\n\xC3\xA9"));
    EXPECT_FALSE(isText(std::string("RIFF\0\0", 6)));
    EXPECT_FALSE(isText("ID3\x03"));
}

}  // namespace
}  // namespace comparison
