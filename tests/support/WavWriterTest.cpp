// SPDX-License-Identifier: MIT
#include "support/WavWriter.h"

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <limits>

#include <gtest/gtest.h>

namespace beatatlas::test {
namespace {

class WavWriterTest : public ::testing::Test {
protected:
    void TearDown() override { std::filesystem::remove(path_); }

    std::vector<unsigned char> fileBytes() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    // One file per test: ctest runs them at the same time.
    std::string path_ = (std::filesystem::temp_directory_path() /
                         (std::string("beatatlas-") +
                          ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".wav"))
                            .string();
};

TEST_F(WavWriterTest, WritesHeaderAndLittleEndianSamples) {
    const std::vector<float> left = {1.0F, -1.0F, 40000.0F};
    const std::vector<float> right = {258.0F, 0.9F, -40000.0F};
    WavWriter writer;
    ASSERT_TRUE(writer.open(path_, 44100, 3));
    writer.write(left.data(), right.data(), 2);
    writer.write(left.data() + 2, right.data() + 2, 1);
    ASSERT_TRUE(writer.close());
    // 3 frames of 4 bytes are 12 (0x0C); 36 + 12 = 48 (0x30). 44,100 is 0xAC44, four times that
    // 0x02B110.
    const std::vector<unsigned char> expected = {
        'R',  'I',  'F',  'F',  0x30, 0,    0,    0,    'W',  'A',  'V',  'E',  'f',  'm',
        't',  ' ',  16,   0,    0,    0,    1,    0,    2,    0,    0x44, 0xAC, 0,    0,
        0x10, 0xB1, 0x02, 0,    4,    0,    16,   0,    'd',  'a',  't',  'a',  0x0C, 0,
        0,    0,    0x01, 0x00, 0x02, 0x01, 0xFF, 0xFF, 0x00, 0x00, 0xFF, 0x7F, 0x01, 0x80};
    EXPECT_EQ(fileBytes(), expected);
}

TEST_F(WavWriterTest, RefusesWhatAWavFileCannotHold) {
    WavWriter writer;
    EXPECT_FALSE(writer.open(path_, 44100, -1));
    EXPECT_FALSE(writer.open(path_, 44100, std::int64_t{1} << 30));
    EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(WavWriterTest, RefusesAPathThatCannotBeMade) {
    WavWriter writer;
    EXPECT_FALSE(writer.open("/nonexistent/folder/x.wav", 44100, 1));
}

}  // namespace
}  // namespace beatatlas::test
