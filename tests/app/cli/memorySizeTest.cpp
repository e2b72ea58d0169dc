// SPDX-License-Identifier: MIT
#include "cli/memorySize.h"

#include <gtest/gtest.h>

namespace app {
namespace {

TEST(memorySize, ReadsBytesAndTheUsualUnits) {
    EXPECT_EQ(parseMemorySize("1"), 1);
    EXPECT_EQ(parseMemorySize("1073741824"), 1LL << 30);
    EXPECT_EQ(parseMemorySize("512M"), 512LL << 20);
    EXPECT_EQ(parseMemorySize("512m"), 512LL << 20);
    EXPECT_EQ(parseMemorySize("2G"), 2LL << 30);
    EXPECT_EQ(parseMemorySize("1.5GiB"), 3LL << 29);
    EXPECT_EQ(parseMemorySize("100KiB"), 102400);
    EXPECT_EQ(parseMemorySize("100kB"), 100000);
    EXPECT_EQ(parseMemorySize("2GB"), 2000000000);
    EXPECT_EQ(parseMemorySize("1T"), 1LL << 40);
    EXPECT_EQ(parseMemorySize("77B"), 77);
}

TEST(memorySize, RefusesWhatIsNoSize) {
    for (const char* text : {"", "M", "-1", "0", "0.1", "1X", "1MM", "1MiBs", "1 G", "G1", "1e3",
                             "1.2.3", "inf", "nan", "99999999999T", "."}) {
        EXPECT_EQ(parseMemorySize(text), std::nullopt) << text;
        EXPECT_NE(requireMemorySize(text), "") << text;
    }
    EXPECT_EQ(requireMemorySize("1G"), "");
}

}  // namespace
}  // namespace app
