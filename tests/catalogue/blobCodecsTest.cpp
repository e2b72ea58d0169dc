// SPDX-License-Identifier: MIT
#include "catalogue/blobCodecs.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "catalogue/CatalogueError.h"

namespace catalogue {
namespace {

using beatatlas::track::Beat;
using beatatlas::track::WavePoint;

constexpr int kRate = 44100;

void expectSame(const std::vector<Beat>& one, const std::vector<Beat>& other) {
    ASSERT_EQ(one.size(), other.size());
    for (std::size_t i = 0; i < one.size(); ++i) {
        EXPECT_EQ(one[i].frame, other[i].frame);
        EXPECT_EQ(one[i].numberInBar, other[i].numberInBar);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(one[i].bpm),
                  std::bit_cast<std::uint64_t>(other[i].bpm));
        EXPECT_EQ(std::bit_cast<std::uint64_t>(one[i].seconds),
                  std::bit_cast<std::uint64_t>(other[i].seconds));
    }
}

std::vector<Beat> steadyBeats(std::size_t count) {
    std::vector<Beat> beats;
    for (std::size_t i = 0; i < count; ++i) {
        const auto frame = static_cast<std::int64_t>(4410 + i * 22050);
        beats.push_back(
            {static_cast<double>(frame) / kRate, 120.0, frame, static_cast<int>(i % 4) + 1});
    }
    return beats;
}

TEST(BlobCodecs, GiveBackASteadyGridFromFewBytes) {
    const std::string blob = encodeBeats(steadyBeats(500), kRate);
    // A byte each for distance, number and tempo would be 1,500; they repeat.
    EXPECT_LT(blob.size(), 100U);
    expectSame(decodeBeats(blob, kRate), steadyBeats(500));
}

// The tempo of the automatic analysis puts beats between the frames.
TEST(BlobCodecs, GiveBackTimesBetweenFramesToTheBit) {
    std::vector<Beat> beats = steadyBeats(50);
    for (Beat& beat : beats) beat.seconds += 1e-6;
    beats[7].bpm = 119.97;
    expectSame(decodeBeats(encodeBeats(beats, kRate), kRate), beats);
}

TEST(BlobCodecs, GiveBackBeatsThatNoAnalysisMakes) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    std::mt19937_64 bits(1);
    for (int round = 0; round < 200; ++round) {
        std::vector<Beat> beats;
        for (int i = 0; i < 20; ++i)
            beats.push_back({std::bit_cast<double>(bits()), std::bit_cast<double>(bits()),
                             static_cast<std::int64_t>(bits()), static_cast<int>(bits())});
        beats.push_back({nan, infinity, std::numeric_limits<std::int64_t>::min(), -1});
        beats.push_back({-0.0, -0.0, std::numeric_limits<std::int64_t>::max(), 0});
        expectSame(decodeBeats(encodeBeats(beats, kRate), kRate), beats);
    }
}

void expectSame(const std::vector<WavePoint>& one, const std::vector<WavePoint>& other) {
    ASSERT_EQ(one.size(), other.size());
    for (std::size_t i = 0; i < one.size(); ++i) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(one[i].level),
                  std::bit_cast<std::uint32_t>(other[i].level));
        EXPECT_EQ(one[i].color, other[i].color);
    }
}

TEST(BlobCodecs, GiveBackAZoomWaveOfAByteAPoint) {
    std::vector<WavePoint> wave;
    std::mt19937 random(2);
    for (int i = 0; i < 3000; ++i)
        wave.push_back({static_cast<float>(random() % 32), static_cast<int>(random() % 8)});
    const std::string blob = encodeWave(wave);
    // Noise cannot be compressed: form, count in two bytes, kind, and a byte each.
    EXPECT_EQ(blob.size(), 1U + 2U + 1U + 3000U);
    expectSame(decodeWave(blob), wave);
}

TEST(BlobCodecs, GiveBackLevelsOfAnyKind) {
    const std::vector<WavePoint> wave = {{0.0F, 0},
                                         {-0.0F, 7},
                                         {31.0F, -1},
                                         {31.5F, 8},
                                         {32.0F, std::numeric_limits<int>::max()},
                                         {std::numeric_limits<float>::infinity(), 5},
                                         {std::numeric_limits<float>::quiet_NaN(), 5}};
    expectSame(decodeWave(encodeWave(wave)), wave);
}

TEST(BlobCodecs, MakeNothingOfNothing) {
    EXPECT_EQ(encodeBeats({}, kRate), "");
    EXPECT_EQ(encodeWave({}), "");
    EXPECT_TRUE(decodeBeats("", kRate).empty());
    EXPECT_TRUE(decodeWave("").empty());
}

TEST(BlobCodecs, RefuseEveryShortenedBlob) {
    std::vector<Beat> beats = steadyBeats(5);
    beats[2].seconds += 1e-6;
    const std::string grid = encodeBeats(beats, kRate);
    for (std::size_t length = 1; length < grid.size(); ++length)
        EXPECT_THROW(decodeBeats(grid.substr(0, length), kRate), CatalogueError) << length;
    EXPECT_THROW(decodeBeats(grid + "x", kRate), CatalogueError);
    const std::string wave = encodeWave({{1.5F, 2}, {2.5F, 3}});
    for (std::size_t length = 1; length < wave.size(); ++length)
        EXPECT_THROW(decodeWave(wave.substr(0, length)), CatalogueError) << length;
    EXPECT_THROW(decodeWave(wave + "x"), CatalogueError);
}

}  // namespace
}  // namespace catalogue
