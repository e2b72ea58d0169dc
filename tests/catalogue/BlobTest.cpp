// SPDX-License-Identifier: MIT
#include "catalogue/Blob.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "catalogue/CatalogueError.h"

namespace catalogue {
namespace {

using std::string_literals::operator""s;

TEST(Blob, WritesIntegersSevenBitsAByte) {
    BlobWriter out;
    out.natural(1);
    out.natural(300);   // 2 * 128 + 44
    out.integer(-1);    // zigzag 1
    out.integer(1);     // zigzag 2
    out.integer(-150);  // zigzag 299 = 2 * 128 + 43
    EXPECT_EQ(out.blob(), "\x01\x01\xAC\x02\x01\x02\xAB\x02"s);
}

TEST(Blob, GivesBackEveryBit) {
    const double nan = -std::numeric_limits<double>::quiet_NaN();
    BlobWriter out;
    out.integer(std::numeric_limits<std::int64_t>::min());
    out.natural(std::numeric_limits<std::uint64_t>::max());
    out.real(-0.0);
    out.real(nan);
    out.real(0.1F);
    const std::string blob = out.blob();
    BlobReader in(blob);
    EXPECT_EQ(in.integer(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(in.natural(), std::numeric_limits<std::uint64_t>::max());
    EXPECT_TRUE(std::signbit(in.real()));
    EXPECT_TRUE(std::isnan(in.real()));
    EXPECT_EQ(in.shortReal(), 0.1F);
    EXPECT_NO_THROW(in.end());
}

TEST(Blob, CompressesWhatRepeats) {
    BlobWriter out;
    for (int i = 0; i < 10000; ++i) out.byte(7);
    const std::string blob = out.blob();
    EXPECT_EQ(blob.front(), '\x02');
    EXPECT_LT(blob.size(), 100U);
    BlobReader in(blob);
    for (int i = 0; i < 10000; ++i) ASSERT_EQ(in.byte(), 7);
    EXPECT_NO_THROW(in.end());
}

TEST(Blob, RefusesWhatIsCutOff) {
    BlobWriter out;
    for (int i = 0; i < 10000; ++i) out.byte(7);
    const std::string blob = out.blob();
    for (std::size_t length = 0; length < blob.size(); ++length)
        EXPECT_THROW(BlobReader(blob.substr(0, length)), CatalogueError) << length;
    EXPECT_THROW(BlobReader(blob + '\0'), CatalogueError);
}

TEST(Blob, RefusesFormsItDoesNotKnowAndReadingBeyondTheEnd) {
    EXPECT_THROW(BlobReader("\x03\x01"s), CatalogueError);
    const std::string cut = "\x01\x80"s;
    BlobReader in(cut);
    EXPECT_THROW(in.natural(), CatalogueError);
    // Ten bytes hold 70 bits.
    const std::string tooLong = "\x01"s + std::string(20, '\x80');
    BlobReader endless(tooLong);
    EXPECT_THROW(endless.natural(), CatalogueError);
    // A thousand things do not fit into the two bytes that follow.
    const std::string many = "\x01\xE8\x07\x01\x01"s;
    BlobReader greedy(many);
    EXPECT_THROW(greedy.count(), CatalogueError);
}

}  // namespace
}  // namespace catalogue
