// SPDX-License-Identifier: MIT
#include "comparison/Comparison.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "comparison/comparisonReport.h"

namespace comparison {
namespace {

using testing::HasSubstr;

/** Beats from 0.1 s on, in bars of four. */
BeatSheet grid(std::size_t beats, double bpm, double late = 0.0) {
    BeatSheet sheet;
    sheet.bpm = bpm;
    for (std::size_t i = 0; i < beats; ++i)
        sheet.beats.push_back(
            {0.1 + late + 60.0 / bpm * static_cast<double>(i), static_cast<int>(i % 4) + 1});
    return sheet;
}

double within70(const Comparison& found, Reading reading) {
    return found.beats->at(static_cast<std::size_t>(reading)).within70;
}

TEST(Comparison, FindsASheetLikeItself) {
    BeatSheet sheet = grid(40, 120.0);
    sheet.key = 3;
    const Comparison found = compareSheets(sheet, sheet);
    EXPECT_EQ(found.tempoRatio, 1.0);
    EXPECT_EQ(within70(found, Reading::same), 1.0);
    EXPECT_EQ(within70(found, Reading::shifted), 0.0);
    EXPECT_EQ(found.lateness, 0.0);
    EXPECT_EQ(found.downbeats->within20, 1.0);
    EXPECT_EQ(found.key->score, 1.0);
    EXPECT_EQ(found.likeliest(), Reading::same);
}

TEST(Comparison, NoticesOtherReadings) {
    const BeatSheet slow = grid(21, 60.0);
    const BeatSheet fast = grid(41, 120.0);
    EXPECT_EQ(within70(compareSheets(fast, slow), Reading::twice), 1.0);
    EXPECT_EQ(compareSheets(fast, slow).likeliest(), Reading::twice);
    EXPECT_EQ(compareSheets(fast, slow).tempoRatio, 2.0);
    EXPECT_EQ(compareSheets(slow, fast).likeliest(), Reading::half);
    EXPECT_EQ(compareSheets(grid(20, 60.0, 0.5), fast).likeliest(), Reading::otherHalf);
    EXPECT_EQ(compareSheets(grid(40, 120.0, 0.25), fast).likeliest(), Reading::shifted);
}

TEST(Comparison, TellsHowLateBeatsAreAndWhichAreDownbeats) {
    const Comparison found = compareSheets(grid(40, 120.0, 0.03), grid(40, 120.0));
    EXPECT_NEAR(*found.lateness, 0.03, 1e-9);
    EXPECT_EQ(found.downbeats->within70, 1.0);
    EXPECT_EQ(found.downbeats->within20, 0.0);
    BeatSheet other = grid(40, 120.0);
    for (SheetBeat& beat : other.beats) beat.number = *beat.number % 4 + 1;
    EXPECT_EQ(compareSheets(grid(40, 120.0), other).downbeats->within70, 0.0);
}

TEST(Comparison, SaysNothingOfWhatOneSideDoesNotKnow) {
    const Comparison found = compareSheets({}, {});
    EXPECT_FALSE(found.tempoRatio || found.beats || found.lateness || found.downbeats || found.key);
    BeatSheet plain = grid(8, 120.0);
    for (SheetBeat& beat : plain.beats) beat.number.reset();
    EXPECT_FALSE(compareSheets(plain, grid(8, 120.0)).downbeats);
    EXPECT_EQ(within70(compareSheets({}, plain), Reading::same), 0.0);
    EXPECT_EQ(within70(compareSheets(plain, {}), Reading::same), 0.0);
}

TEST(Comparison, ComparesSingleBeats) {
    BeatSheet one;
    one.beats = {{1.0, 1}};
    const Comparison found = compareSheets(one, one);
    EXPECT_EQ(within70(found, Reading::same), 1.0);
    EXPECT_EQ(found.downbeats->within70, 1.0);
    EXPECT_EQ(found.tempoRatio, std::nullopt);
}

TEST(ComparisonReport, TellsAllOfIt) {
    BeatSheet a = grid(41, 120.0, 0.01);
    BeatSheet b = grid(21, 60.0);
    a.key = 12;
    b.key = 3;
    const std::string text = comparisonText({"a\n.wav", a}, {"b.txt", b});
    EXPECT_THAT(text, HasSubstr("a\\n.wav\nb.txt\n"));
    EXPECT_THAT(text, HasSubstr("A 120.00, B 60.00 BPM: 2.0000 times B\n"));
    EXPECT_THAT(text, HasSubstr("B as it is                 0.677 within 70 ms"));  // 42 of 62
    EXPECT_THAT(text, HasSubstr("B doubled                  1.000 within 70 ms"));
    EXPECT_THAT(text, HasSubstr("  best     B doubled\n"));
    EXPECT_THAT(text, HasSubstr("A lies 10.0 ms behind B, in the middle\n"));
    EXPECT_THAT(text, HasSubstr("A A minor, B C major: relative, 0.3\n"));
    const auto json = nlohmann::json::parse(comparisonJson({"a\xFF", a}, {"b", b}, "1.2"));
    EXPECT_EQ(json["a"]["fileBytes"], "61ff");
    EXPECT_EQ(json["b"]["beats"], 21);
    EXPECT_EQ(json["likeliest"], "double");
    EXPECT_NEAR(json["latenessMs"].get<double>(), 10.0, 1e-6);
    EXPECT_EQ(json["key"]["relation"], "relative");
}

TEST(ComparisonReport, SaysWhatIsMissing) {
    const std::string text = comparisonText({"a", {}}, {"b", {}});
    EXPECT_THAT(text, HasSubstr("  tempo    A none, B none\n  beats    none\n"));
    EXPECT_THAT(text, HasSubstr("  bars     not compared\n  key      A none, B none\n"));
    const auto json = nlohmann::json::parse(comparisonJson({"a", {}}, {"b", {}}, "1.2"));
    for (const char* member : {"tempoRatio", "beats", "likeliest", "latenessMs", "downbeats"})
        EXPECT_EQ(json[member], nullptr) << member;
}

}  // namespace
}  // namespace comparison
