// SPDX-License-Identifier: MIT
#include "cli/timeArgument.h"

#include <gtest/gtest.h>

namespace app {
namespace {

TEST(TimeArgument, IsSecondsOrClockTime) {
    const std::vector<std::pair<std::string, double>> times = {
        {"0", 0.0},        {"90", 90.0},          {"90.5", 90.5},    {".5", 0.5},   {"1:30", 90.0},
        {"0:07.25", 7.25}, {"1:02:03.5", 3723.5}, {"90:00", 5400.0}, {"1:5", 65.0}, {"0:0:1", 1.0}};
    for (const auto& [text, seconds] : times) {
        ASSERT_TRUE(parseTime(text)) << text;
        EXPECT_DOUBLE_EQ(*parseTime(text), seconds) << text;
    }
}

TEST(TimeArgument, IsNothingElse) {
    for (const char* text : {"",      ".",    ":",    "1:",  ":30", "1:75",  "1:60",   "1:2:3:4",
                             "1:-3",  "-1",   "+1",   "1e3", "nan", "inf",   "1.5:30", "1:1.5:30",
                             "1:030", "1:.5", "0x10", " 1",  "1 ",  "1:30s", "1,5",    "1.2.3"})
        EXPECT_FALSE(parseTime(text)) << text;
}

}  // namespace
}  // namespace app
