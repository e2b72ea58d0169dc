// SPDX-License-Identifier: MIT
#include "media/end/packetLength.h"

#include <array>

#include <gtest/gtest.h>

namespace media {
namespace {

using Bytes = std::array<std::uint8_t, 8>;

// 144 × 128,000 / 44,100 = 417.96, and one byte more when padded.
TEST(packetLength, OfMpegLayer3FollowsFromBitRateAndRate) {
    EXPECT_EQ(mpegAudioPacketLength(Bytes{0xFF, 0xFB, 0x90, 0x00}), 417U);
    EXPECT_EQ(mpegAudioPacketLength(Bytes{0xFF, 0xFB, 0x92, 0x00}), 418U);
    EXPECT_EQ(mpegAudioPacketLength(Bytes{0xFF, 0xFB, 0xE4, 0x00}),
              960U);  // 320 kbit/s at 48,000 Hz
}

// 72 × 64,000 / 22,050 = 208.98; 72 × 8,000 / 8,000 = 72.
TEST(packetLength, OfMpeg2IsHalfOfThat) {
    EXPECT_EQ(mpegAudioPacketLength(Bytes{0xFF, 0xF3, 0x80, 0x00}), 208U);
    EXPECT_EQ(mpegAudioPacketLength(Bytes{0xFF, 0xE3, 0x18, 0x00}), 72U);
}

// 144 × 160,000 / 44,100 = 522.4; 144 × 80,000 / 22,050 = 522.4: as long in MPEG-2.
TEST(packetLength, OfLayer2HasItsOwnBitRates) {
    EXPECT_EQ(mpegAudioPacketLength(Bytes{0xFF, 0xFD, 0x90, 0x00}), 522U);
    EXPECT_EQ(mpegAudioPacketLength(Bytes{0xFF, 0xF5, 0x90, 0x00}), 522U);
}

TEST(packetLength, OfOtherLayersAndBadHeadersIsUnknown) {
    EXPECT_EQ(mpegAudioPacketLength(Bytes{0xFF, 0xFF, 0x90, 0x00}), std::nullopt);  // layer I
    EXPECT_EQ(mpegAudioPacketLength(Bytes{0xFF, 0xFB, 0x00, 0x00}),
              std::nullopt);                                                        // free bit rate
    EXPECT_EQ(mpegAudioPacketLength(Bytes{0xFF, 0xFB, 0x9C, 0x00}), std::nullopt);  // no such rate
    EXPECT_EQ(mpegAudioPacketLength(Bytes{'T', 'A', 'G', 0}), std::nullopt);
    EXPECT_EQ(mpegAudioPacketLength({}), std::nullopt);
}

TEST(packetLength, OfAdtsStandsInItsHeader) {
    // Thirteen bits across three bytes: 3, 0x2A, 5 is 11 00101010 101, or 6485.
    EXPECT_EQ(adtsPacketLength(Bytes{0xFF, 0xF1, 0x50, 0x83, 0x2A, 0xBF, 0xFC}), 6485U);
    EXPECT_EQ(adtsPacketLength(Bytes{0xFF, 0xFB, 0x90, 0x00}), std::nullopt);  // MPEG layer III
    EXPECT_EQ(adtsPacketLength({}), std::nullopt);
}

}  // namespace
}  // namespace media
